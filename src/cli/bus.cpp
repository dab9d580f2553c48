#include "cli/bus.h"

#include "cli/arguments.h"
#include "cli/exit_request.h"
#include "platform/near_names.h"
#include "platform/text.h"

#include <algorithm>

namespace busquill::cli {

namespace {

std::int32_t BusModeOf(const std::string& name) {
    const auto names = BusModeNames();
    const auto found = std::ranges::find_if(
        names, [&](std::string_view each) { return EqualIgnoringCase(each, name); });
    if (found == names.end()) {
        WrongUse(Printf("no bus \"%s\"; there are %s", name.c_str(),
                        ListNearest(name, {names.begin(), names.end()}).c_str()));
    }
    return static_cast<std::int32_t>(found - names.begin());
}

/// The model to assume if none is given: connectors have specific models, for all others the bus is
/// enough.
const char* ModelOf(std::int32_t busMode) {
    switch (busMode) {
    case BusVmeP2:
        return "VMEKiteP2";
    case BusVmeP0:
        return "VMEKiteP0";
    default:
        return "Demo Mode";
    }
}

bool Offers(const std::string& model, std::int32_t busMode) {
    const auto modes = BusModesOfModel(model);
    return std::ranges::find(modes, busMode) != modes.end();
}

BoardTraits TraitsOf(const Arguments& arguments) {
    const std::string bus = arguments.Value("bus");
    const std::string model = arguments.Value("model");
    const auto mode = arguments.Has("bus") ? std::optional(BusModeOf(bus)) : std::nullopt;
    auto traits = TraitsOfModel(!model.empty() ? model : ModelOf(mode.value_or(BusPci)));
    if (!traits) {
        const auto names = ModelNames();
        WrongUse(Printf("no model \"%s\"; there are %s", model.c_str(),
                        ListNearest(model, {names.begin(), names.end()}).c_str()));
    }
    if (mode && arguments.Has("model") && !Offers(traits->modelString, *mode)) {
        WrongUse(Printf("%s has no bus %s", traits->modelString.c_str(), bus.c_str()));
    }
    traits->bus.busMode = mode.value_or(traits->bus.busMode);
    traits->bus.busWidth = arguments.OneOf("width", {"32", "64"}) == "64" ? 1 : 0;
    return *traits;
}

} // namespace

Bus::Bus(const Arguments& arguments)
    : board_(TraitsOf(arguments)), tables_([this] { return board_; }, WorkingDirectory::AtStart()) {
    tables_.Load();
}

} // namespace busquill::cli
