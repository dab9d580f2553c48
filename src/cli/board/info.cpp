// What the board is, and its bus configuration, which --set changes.

#include "cli/board/board_session.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board_facts.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/json.h"
#include "platform/near_names.h"
#include "platform/text.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

/// A change of the bus configuration.
struct BusChange {
    std::int32_t BusConfig::*field = nullptr;
    std::int32_t value = 0;
};

struct InfoOptions {
    BoardOptions board;
    std::vector<std::string> changes; // of the bus configuration
};

std::int32_t ModeOf(const std::string& text) {
    const auto names = BusModeNames();
    const auto found = std::ranges::find_if(
        names, [&](std::string_view each) { return EqualIgnoringCase(each, text); });
    if (found == names.end()) {
        WrongUse(Printf("no bus \"%s\"; there are %s", text.c_str(),
                        ListNearest(text, {names.begin(), names.end()}).c_str()));
    }
    return static_cast<std::int32_t>(found - names.begin());
}

std::int32_t WidthOf(const std::string& text) {
    if (text != "32" && text != "64") {
        WrongUse("width is 32 or 64; not \"" + text + "\"");
    }
    return text == "64" ? 1 : 0;
}

std::int32_t VoltageOf(const std::string& text) {
    const std::string volts = text.ends_with('V') ? text.substr(0, text.size() - 1) : text;
    if (volts != "5" && volts != "5.0" && volts != "3.3") {
        WrongUse("voltage is 5.0V or 3.3V; not \"" + text + "\"");
    }
    return volts == "3.3" ? 1 : 0;
}

std::int32_t FrequencyOf(const std::string& text) {
    constexpr std::int32_t highest = 255; // the board keeps one byte
    std::int32_t megahertz = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, megahertz);
    if (error != std::errc() || stop != end || megahertz < 0 || megahertz > highest) {
        WrongUse("frequency is a whole number of MHz up to 255; not \"" + text + "\"");
    }
    return megahertz;
}

struct Setting {
    std::string_view name;
    std::int32_t BusConfig::*field;
    std::int32_t (*parse)(const std::string& text);
};
constexpr Setting settings[] = {
    {"mode", &BusConfig::busMode, ModeOf},
    {"width", &BusConfig::busWidth, WidthOf},
    {"voltage", &BusConfig::busVoltage, VoltageOf},
    {"frequency", &BusConfig::busFrequency, FrequencyOf},
};

BusChange ParseChange(const std::string& text) {
    const auto equals = text.find('=');
    const auto setting =
        std::ranges::find(settings, ToLower(text.substr(0, equals)), &Setting::name);
    if (equals == std::string::npos || setting == std::end(settings)) {
        WrongUse("--set is mode=, width=, voltage= or frequency= with a value; not \"" + text +
                 "\"");
    }
    return {setting->field, setting->parse(text.substr(equals + 1))};
}

/// Writes the changed configuration and reads it back.
void Change(BoardSession& session, const std::vector<BusChange>& changes) {
    CAnalyzerLink& link = session.Link();
    BusConfig bus = link.Traits().bus;
    for (const BusChange& change : changes) {
        const auto modes = BusModesOf(link.Identity().modelId);
        if (change.field == &BusConfig::busMode &&
            std::ranges::find(modes, change.value) == modes.end()) {
            std::vector<std::string> names;
            for (const std::int32_t mode : modes) {
                names.emplace_back(BusModeName(mode));
            }
            WrongUse(Printf("%s has no bus %s; it has %s", link.Identity().modelString.c_str(),
                            std::string(BusModeName(change.value)).c_str(),
                            ListNearest("", {names.begin(), names.end()}).c_str()));
        }
        bus.*change.field = change.value;
    }
    link.WriteBusConfig(bus);
    BusConfig taken;
    link.ReadBusConfig(taken);
    if (session.PrintMessages() || !link.IsIdle()) {
        Fail("the board has not taken the bus configuration");
    }
    if (taken != bus) {
        Fail("the board has another bus configuration than it was given");
    }
}

int RunInfo(const InfoOptions& options) {
    std::vector<BusChange> changes;
    std::ranges::transform(options.changes, std::back_inserter(changes), ParseChange);
    BoardSession session(options.board);
    if (!changes.empty()) {
        Change(session, changes);
    }
    const auto facts = BoardFacts(session.Link().Identity(), session.Link().Traits().bus);
    LineOutput output;
    output.Write(options.board.json ? JsonLine(FactsAsJson(facts)) + "\n" : FactsAsText(facts));
    output.Close();
    return ExitStatus::Done;
}

} // namespace

void AddInfo(CLI::App& program) {
    const auto options = std::make_shared<InfoOptions>();
    CLI::App& command = AddCommand(program, "info", "the board and its bus, which --set changes",
                                   [options] { return RunInfo(*options); });
    AddBoardOptions(command, options->board);
    CompletedWithWords(AddTexts(command, "--set", options->changes, "NAME=VALUE",
                                "mode=PCI-X, width=64, voltage=3.3V or frequency=66; may be given "
                                "several times"),
                       {"mode=", "width=", "voltage=", "frequency="});
}

} // namespace busquill::cli::board
