#include "cli/bus.h"

#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "platform/near_names.h"
#include "platform/text.h"

#include <algorithm>

namespace busquill::cli {

namespace {

/// The mode with this name in any case.
std::optional<std::int32_t> BusModeOf(const std::string& name) {
    const auto names = BusModeNames();
    const auto found = std::ranges::find_if(
        names, [&](std::string_view each) { return EqualIgnoringCase(each, name); });
    return found == names.end() ? std::nullopt
                                : std::optional(static_cast<std::int32_t>(found - names.begin()));
}

bool Offers(const std::string& model, std::int32_t busMode) {
    const auto modes = BusModesOfModel(model);
    return std::ranges::find(modes, busMode) != modes.end();
}

BoardTraits TraitsOf(const BusOptions& options) {
    const std::string& model = options.model;
    auto traits = TraitsOfModel(!model.empty() ? std::string_view(model)
                                               : ModelForBus(options.mode.value_or(BusPci)));
    if (options.mode && !model.empty() && !Offers(traits->modelString, *options.mode)) {
        WrongUse(Printf("%s has no bus %s", traits->modelString.c_str(),
                        std::string(BusModeName(*options.mode)).c_str()));
    }
    traits->bus.busMode = options.mode.value_or(traits->bus.busMode);
    traits->bus.busWidth = options.width;
    return *traits;
}

/// The name of a model without the revision that boards tell after it, as in "PCIKite-3".
std::string WithoutRevision(const std::string& name) {
    const std::size_t minus = name.rfind('-');
    const bool hasRevision = minus != std::string::npos && minus + 1 < name.size() &&
                             name.find_first_not_of("0123456789", minus + 1) == std::string::npos;
    return hasRevision ? name.substr(0, minus) : name;
}

/// The texts of some names.
template <typename Names>
std::vector<std::string> TextsOf(const Names& names) {
    return {names.begin(), names.end()};
}

} // namespace

std::string NameOf(const BusOptions& options) {
    return options.mode ? "--bus " + std::string(BusModeName(*options.mode))
                        : "--model " + options.model;
}

void AddBusOptions(CLI::App& command, BusOptions& into) {
    CLI::Option& model = AddText(
        command, "--model",
        [&into](const std::string& text) { into.model = WithoutRevision(text); }, "NAME",
        "board that made the capture, such as VMEKite");
    Checked(model, [](const std::string& text) {
        return TraitsOfModel(WithoutRevision(text))
                   ? std::string()
                   : "knows no model \"" + text + "\"; there are " +
                         ListNearest(text, TextsOf(ModelNames()));
    });
    CompletedWithWords(model, TextsOf(ModelNames()));
    CLI::Option& bus = AddText(
        command, "--bus", [&into](const std::string& text) { into.mode = BusModeOf(text); }, "MODE",
        "bus that was captured, such as PCI-X (default PCI)");
    Checked(bus, [](const std::string& text) {
        return BusModeOf(text) ? std::string()
                               : "knows no bus \"" + text + "\"; there are " +
                                     ListNearest(text, TextsOf(BusModeNames()));
    });
    CompletedWithWords(bus, TextsOf(BusModeNames()));
    AddChoice<std::int32_t>(command, "--width", {{"32", 0}, {"64", 1}}, into.width, "32|64",
                            "width of the bus (default 32)");
}

Bus::Bus(const BusOptions& options)
    : board_(TraitsOf(options)), tables_([this] { return board_; }, WorkingDirectory::AtStart()) {
    tables_.Load();
}

} // namespace busquill::cli
