/// The commands as the board's manual lists them, with what each sends and returns. The compiler
/// checks calls against this table.
#pragma once

#include "link/analyzer_commands.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace busquill {

/// What a command sends and returns.
enum class CommandKind : std::uint8_t {
    Function, // nothing: no address, no length
    Register, // writes a payload of fixed size to a register
    Memory,   // writes a payload to an address
    Bytes,    // reads bytes from an address
    Samples,  // reads samples from a distance to the trigger
};

struct CommandRow {
    LinkCommand command;
    std::string_view name;
    CommandKind kind;
    std::uint32_t address; // of the register
    std::uint32_t bytes;   // written there, whatever the size of the payload
};

/// The row of a command; null for a number that is not a command.
[[nodiscard]] const CommandRow* FindCommand(std::int32_t command) noexcept;

/// The command's readable name, for logs and failed tests.
[[nodiscard]] std::string_view LinkCommandName(std::int32_t command) noexcept;

// clang-format off
inline constexpr auto commandRows = [] {
    using enum CommandKind;
    return std::array<CommandRow, linkCommandCount>{{
        {CmdDownloadRecord,          "CmdDownloadRecord",          Memory,   0,                            0},
        {CmdSetBaudRate,             "CmdSetBaudRate",             Register, RegisterBaudCode,             1},
        {CmdReadMemory,              "CmdReadMemory",              Bytes,    0,                            0},
        {CmdReadSamplesBefore,       "CmdReadSamplesBefore",       Samples,  0,                            0},
        {CmdReadSamplesAfter,        "CmdReadSamplesAfter",        Samples,  0,                            0},
        {CmdTraceControl,            "CmdTraceControl",            Register, RegisterTraceControl,         160},
        {CmdTraceEvents,             "CmdTraceEvents",             Register, RegisterTraceEvents,          240},
        {CmdTraceParams,             "CmdTraceParams",             Register, RegisterTraceParams,          3},
        {CmdStartTrace,              "CmdStartTrace",              Function, 0,                            0},
        {CmdStopTrace,               "CmdStopTrace",               Function, 0,                            0},
        {CmdSearchControl,           "CmdSearchControl",           Register, RegisterSearchControl,        4},
        {CmdSearchCondition,         "CmdSearchCondition",         Register, RegisterSearchCondition,      1},
        {CmdSearchSample,            "CmdSearchSample",            Register, RegisterSearchSample,         30},
        {CmdStartSearch,             "CmdStartSearch",             Function, 0,                            0},
        {CmdPerformanceSetup,        "CmdPerformanceSetup",        Register, RegisterPerformanceSetup,     241},
        {CmdStartPerformance,        "CmdStartPerformance",        Function, 0,                            0},
        {CmdStopPerformance,         "CmdStopPerformance",         Function, 0,                            0},
        {CmdAnomalyChecklist,        "CmdAnomalyChecklist",        Register, RegisterAnomalyChecklist,     16},
        {CmdStartAnomaly,            "CmdStartAnomaly",            Function, 0,                            0},
        {CmdStopAnomaly,             "CmdStopAnomaly",             Function, 0,                            0},
        {CmdStartConfigScan,         "CmdStartConfigScan",         Function, 0,                            0},
        {CmdStopConfigScan,          "CmdStopConfigScan",          Function, 0,                            0},
        {CmdConfigScanControl,       "CmdConfigScanControl",       Register, RegisterConfigScanControl,    1},
        {CmdComplianceControl,       "CmdComplianceControl",       Register, RegisterComplianceControl,    1},
        {CmdComplianceTestId,        "CmdComplianceTestId",        Register, RegisterComplianceTestId,     4},
        {CmdStartCompliance,         "CmdStartCompliance",         Function, 0,                            0},
        {CmdStopCompliance,          "CmdStopCompliance",          Function, 0,                            0},
        {CmdMasterSetup,             "CmdMasterSetup",             Register, RegisterMasterSetup,          48},
        {CmdMasterAddress,           "CmdMasterAddress",           Register, RegisterMasterAddress,        9},
        {CmdMasterControl,           "CmdMasterControl",           Register, RegisterMasterControl,        1},
        {CmdMasterFileData,          "CmdMasterFileData",          Register, RegisterMasterFileData,       32},
        {CmdExerciserGo,             "CmdExerciserGo",             Function, 0,                            0},
        {CmdExerciserStop,           "CmdExerciserStop",           Function, 0,                            0},
        {CmdStartStimulus,           "CmdStartStimulus",           Function, 0,                            0},
        {CmdStopStimulus,            "CmdStopStimulus",            Function, 0,                            0},
        {CmdStimulusControl,         "CmdStimulusControl",         Register, RegisterStimulusControl,      80},
        {CmdStimulusCondition,       "CmdStimulusCondition",       Register, RegisterStimulusCondition,    480},
        {CmdComplianceTargetAddress, "CmdComplianceTargetAddress", Register, RegisterComplianceTarget,     8},
        {CmdReadZoomBefore,          "CmdReadZoomBefore",          Samples,  0,                            0},
        {CmdReadZoomAfter,           "CmdReadZoomAfter",           Samples,  0,                            0},
        {CmdSetBusConfig,            "CmdSetBusConfig",            Register, RegisterBusConfig,            2},
        {CmdMasterAttributes,        "CmdMasterAttributes",        Register, RegisterMasterAttributes,     4},
        {CmdStimulusEvents,          "CmdStimulusEvents",          Register, RegisterStimulusEvents,       240},
        {CmdTargetSetup,             "CmdTargetSetup",             Register, RegisterTargetSetup,          12},
        {CmdTargetAddress,           "CmdTargetAddress",           Register, RegisterTargetAddress,        11},
        {CmdTargetRead,              "CmdTargetRead",              Bytes,    0,                            0},
        {CmdTargetData,              "CmdTargetData",              Memory,   0,                            0},
        {CmdStartBackplane,          "CmdStartBackplane",          Function, 0,                            0},
        {CmdStopBackplane,           "CmdStopBackplane",           Function, 0,                            0},
        {CmdBackplaneSignals,        "CmdBackplaneSignals",        Register, RegisterBackplaneSignals,     28},
        {CmdBackplaneSensitivity,    "CmdBackplaneSensitivity",    Register, RegisterBackplaneSensitivity, 1},
        {CmdUsbKeepAlive,            "CmdUsbKeepAlive",            Function, 0,                            0},
    }};
}();
// clang-format on

static_assert([] {
    std::int32_t expected = 0;
    return std::ranges::all_of(commandRows,
                               [&](const CommandRow& row) { return row.command == ++expected; });
}());

consteval const CommandRow& RowOf(LinkCommand command) {
    return commandRows.at(static_cast<std::size_t>(command - 1));
}

/// A command of one kind, written as its name. A command of another kind does not compile.
template <CommandKind Kind>
class LinkCommandOf {
public:
    consteval LinkCommandOf(LinkCommand command) : command_(command) {
        if (RowOf(command).kind != Kind) {
            throw "the command is of another kind: see commandRows";
        }
    }
    constexpr operator LinkCommand() const noexcept { return command_; }

private:
    LinkCommand command_;
};
using FunctionCommand = LinkCommandOf<CommandKind::Function>;
using RegisterCommand = LinkCommandOf<CommandKind::Register>;
using MemoryCommand = LinkCommandOf<CommandKind::Memory>;
using SampleCommand = LinkCommandOf<CommandKind::Samples>;

} // namespace busquill
