/// The command set of the board: commands, states, frames and the register map.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace busquill {

/// The numbered commands. The numbers are the board's.
enum LinkCommand : std::int32_t {
    CmdDownloadRecord = 1,
    CmdSetBaudRate,
    CmdReadMemory,
    CmdReadSamplesBefore,
    CmdReadSamplesAfter,
    CmdTraceControl,
    CmdTraceEvents,
    CmdTraceParams,
    CmdStartTrace,
    CmdStopTrace,
    CmdSearchControl,
    CmdSearchCondition,
    CmdSearchSample,
    CmdStartSearch,
    CmdPerformanceSetup,
    CmdStartPerformance,
    CmdStopPerformance,
    CmdAnomalyChecklist,
    CmdStartAnomaly,
    CmdStopAnomaly,
    CmdStartConfigScan,
    CmdStopConfigScan,
    CmdConfigScanControl,
    CmdComplianceControl,
    CmdComplianceTestId,
    CmdStartCompliance,
    CmdStopCompliance,
    CmdMasterSetup,
    CmdMasterAddress,
    CmdMasterControl,
    CmdMasterFileData,
    CmdExerciserGo,
    CmdExerciserStop,
    CmdStartStimulus,
    CmdStopStimulus,
    CmdStimulusControl,
    CmdStimulusCondition,
    CmdComplianceTargetAddress,
    CmdReadZoomBefore,
    CmdReadZoomAfter,
    CmdSetBusConfig,
    CmdMasterAttributes,
    CmdStimulusEvents,
    CmdTargetSetup,
    CmdTargetAddress,
    CmdTargetRead,
    CmdTargetData,
    CmdStartBackplane,
    CmdStopBackplane,
    CmdBackplaneSignals,
    CmdBackplaneSensitivity,
    CmdUsbKeepAlive,
};
constexpr std::int32_t linkCommandCount = 52;

constexpr std::int32_t finalState = 39;
constexpr std::size_t sampleRecordSize = 18;

/// The command's readable name, for logs and failed tests.
[[nodiscard]] std::string_view LinkCommandName(std::int32_t command) noexcept;

/// The state that follows `state` in the command's sequence; 0 when the table has no such row.
[[nodiscard]] std::int32_t NextState(std::int32_t command, std::int32_t state) noexcept;

} // namespace busquill
