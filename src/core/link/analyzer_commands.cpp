#include "link/analyzer_commands.h"

#include <array>

namespace busquill {

namespace {

constexpr std::string_view names[] = {
    "CmdDownloadRecord",       "CmdSetBaudRate",
    "CmdReadMemory",           "CmdReadSamplesBefore",
    "CmdReadSamplesAfter",     "CmdTraceControl",
    "CmdTraceEvents",          "CmdTraceParams",
    "CmdStartTrace",           "CmdStopTrace",
    "CmdSearchControl",        "CmdSearchCondition",
    "CmdSearchSample",         "CmdStartSearch",
    "CmdPerformanceSetup",     "CmdStartPerformance",
    "CmdStopPerformance",      "CmdAnomalyChecklist",
    "CmdStartAnomaly",         "CmdStopAnomaly",
    "CmdStartConfigScan",      "CmdStopConfigScan",
    "CmdConfigScanControl",    "CmdComplianceControl",
    "CmdComplianceTestId",     "CmdStartCompliance",
    "CmdStopCompliance",       "CmdMasterSetup",
    "CmdMasterAddress",        "CmdMasterControl",
    "CmdMasterFileData",       "CmdExerciserGo",
    "CmdExerciserStop",        "CmdStartStimulus",
    "CmdStopStimulus",         "CmdStimulusControl",
    "CmdStimulusCondition",    "CmdComplianceTargetAddress",
    "CmdReadZoomBefore",       "CmdReadZoomAfter",
    "CmdSetBusConfig",         "CmdMasterAttributes",
    "CmdStimulusEvents",       "CmdTargetSetup",
    "CmdTargetAddress",        "CmdTargetRead",
    "CmdTargetData",           "CmdStartBackplane",
    "CmdStopBackplane",        "CmdBackplaneSignals",
    "CmdBackplaneSensitivity", "CmdUsbKeepAlive",
};
static_assert(std::size(names) == linkCommandCount);

/// What follows the register frames (states 1 to 5), if the command has them.
struct Sequence {
    std::int32_t command;
    bool registers;
    std::array<std::int32_t, 3> states; // ended by 0; the final state follows
};

// clang-format off
constexpr Sequence sequences[] = {
    {CmdDownloadRecord,          true,  {6, 7}},
    {CmdSetBaudRate,             true,  {8, 9, 10}},
    {CmdReadMemory,              true,  {11}},
    {CmdReadSamplesBefore,       true,  {12}},
    {CmdReadSamplesAfter,        true,  {13}},
    {CmdTraceControl,            true,  {14, 15}},
    {CmdTraceEvents,             true,  {16, 17}},
    {CmdTraceParams,             true,  {14, 15}},
    {CmdStartTrace,              false, {18}},
    {CmdStopTrace,               false, {19}},
    {CmdSearchControl,           true,  {14, 15}},
    {CmdSearchCondition,         true,  {14, 15}},
    {CmdSearchSample,            true,  {16, 17}},
    {CmdStartSearch,             false, {20}},
    {CmdPerformanceSetup,        true,  {14, 15}},
    {CmdStartPerformance,        false, {21}},
    {CmdStopPerformance,         false, {22}},
    {CmdAnomalyChecklist,        true,  {14, 15}},
    {CmdStartAnomaly,            false, {23}},
    {CmdStopAnomaly,             false, {24}},
    {CmdStartConfigScan,         false, {25}},
    {CmdStopConfigScan,          false, {26}},
    {CmdConfigScanControl,       true,  {14, 15}},
    {CmdComplianceControl,       true,  {14, 15}},
    {CmdComplianceTestId,        true,  {14, 15}},
    {CmdStartCompliance,         false, {27}},
    {CmdStopCompliance,          false, {28}},
    {CmdMasterSetup,             true,  {14, 15}},
    {CmdMasterAddress,           true,  {14, 15}},
    {CmdMasterControl,           true,  {14, 15}},
    {CmdMasterFileData,          true,  {14, 15}},
    {CmdExerciserGo,             false, {29}},
    {CmdExerciserStop,           false, {30}},
    {CmdStartStimulus,           false, {31}},
    {CmdStopStimulus,            false, {32}},
    {CmdStimulusControl,         true,  {14, 15}},
    {CmdStimulusCondition,       true,  {16, 17}},
    {CmdComplianceTargetAddress, true,  {14, 15}},
    {CmdReadZoomBefore,          true,  {33}},
    {CmdReadZoomAfter,           true,  {34}},
    {CmdSetBusConfig,            true,  {14, 15}},
    {CmdMasterAttributes,        true,  {14, 15}},
    {CmdStimulusEvents,          true,  {16, 17}},
    {CmdTargetSetup,             true,  {14, 15}},
    {CmdTargetAddress,           true,  {14, 15}},
    {CmdTargetRead,              true,  {35}},
    {CmdTargetData,              true,  {36, 15}},
    {CmdStartBackplane,          false, {37}},
    {CmdStopBackplane,           false, {38}},
    {CmdBackplaneSignals,        true,  {14, 15}},
    {CmdBackplaneSensitivity,    true,  {14, 15}},
    {CmdUsbKeepAlive,            false, {1}},
};
// clang-format on
static_assert(std::size(sequences) == linkCommandCount);

struct StateRow {
    std::int32_t command;
    std::int32_t state;
    std::int32_t next;
};

template <class Row>
constexpr std::size_t WalkSequences(Row row) {
    std::size_t count = 0;
    for (const Sequence& sequence : sequences) {
        std::int32_t state = 0;
        const auto step = [&](std::int32_t next) {
            row(count++, StateRow{sequence.command, state, next});
            state = next;
        };
        for (std::int32_t frame = 1; sequence.registers && frame <= 5; ++frame) {
            step(frame);
        }
        for (const std::int32_t next : sequence.states) {
            if (next != 0) {
                step(next);
            }
        }
        step(finalState);
    }
    return count;
}

constexpr std::size_t rowCount = WalkSequences([](std::size_t, const StateRow&) {});

/// The CommandStateTable: what follows each state of each command, ended by a row of zeros.
constexpr auto stateTable = [] {
    std::array<StateRow, rowCount + 1> table{};
    WalkSequences([&](std::size_t i, const StateRow& row) { table[i] = row; });
    return table;
}();
static_assert(stateTable.back().command == 0);

} // namespace

std::string_view LinkCommandName(std::int32_t command) noexcept {
    if (command < 1 || command > linkCommandCount) {
        return "unknown command";
    }
    return names[command - 1];
}

std::int32_t NextState(std::int32_t command, std::int32_t state) noexcept {
    for (const StateRow& row : stateTable) {
        if (row.command == 0) {
            break;
        }
        if (row.command == command && row.state == state) {
            return row.next;
        }
    }
    return 0;
}

} // namespace busquill
