/// The command set of the board: numbers of commands, states, frames and the register map.
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

/// First byte of a frame: the meaning of its second byte, the parameter.
enum FrameOpcode : std::uint8_t {
    FrameFunction = 2,
    FrameAddressLow = 4,
    FrameAddressMiddle = 6,
    FrameAddressHigh = 8,
    FrameLengthLow = 10,
    FrameLengthHigh = 12,
};

/// The parameter of FrameFunction.
enum FunctionCode : std::uint8_t {
    FunctionReadMemory = 1,
    FunctionWriteMemory = 2,
    FunctionSamplesBefore = 3,
    FunctionSamplesAfter = 5,
    FunctionReadTarget = 9,
    FunctionWriteTarget = 10,
    FunctionStartTrace = 11,
    FunctionStopTrace = 12,
    FunctionStartSearch = 13,
    FunctionStartPerformance = 15,
    FunctionStopPerformance = 16,
    FunctionStartAnomaly = 17,
    FunctionStopAnomaly = 18,
    FunctionStartCompliance = 19,
    FunctionStopCompliance = 20,
    FunctionStartConfigScan = 21,
    FunctionStopConfigScan = 22,
    FunctionExerciserGo = 23,
    FunctionExerciserStop = 24,
    FunctionStartStimulus = 25,
    FunctionStopStimulus = 26,
    FunctionApplyBaudRate = 29,
    FunctionFirmwareRecord = 30,
    FunctionZoomBefore = 35,
    FunctionZoomAfter = 36,
    FunctionStartBackplane = 39,
    FunctionStopBackplane = 40,
};

/// The board sends this for a good frame or payload, and before and after its data.
constexpr std::uint8_t acknowledgement = '*';
constexpr std::int32_t framingBytes = 2; // the two acknowledgements around data

/// The board's registers, by address.
enum BoardRegister : std::uint32_t {
    RegisterStatusBlock = 0,
    RegisterBaudCode = 15, // inside the status block
    RegisterBusConfig = 18,
    RegisterTraceEvents = 20,
    RegisterTraceControl = 260,
    RegisterTraceParams = 420,
    RegisterLiveStatus = 425,
    RegisterSearchCondition = 440,
    RegisterSearchControl = 441,
    RegisterSearchSample = 445,
    RegisterPerformanceSetup = 499,
    RegisterPerformanceCounters = 748,
    RegisterMasterControl = 800,
    RegisterMasterStatus = 801,
    RegisterMasterSetup = 802,
    RegisterMasterAddress = 804,  // inside the master setup
    RegisterMasterFileData = 816, // inside the master setup
    RegisterConfigScanControl = 0x352,
    RegisterConfigScanStatus = 851,
    RegisterConfigScanResults = 852,
    RegisterMasterAttributes = 924,
    RegisterStimulusStatus = 929,
    RegisterStimulusCondition = 930,
    RegisterStimulusControl = 1410,
    RegisterTargetSetup = 1490,
    RegisterTargetAddress = 1503,
    RegisterComplianceControl = 1516,
    RegisterComplianceStatus = 1517,
    RegisterComplianceTestId = 1518,
    RegisterComplianceTarget = 1522,
    RegisterAnomalyChecklist = 1532,
    RegisterAnomalyResults = 1548,
    RegisterBackplaneSensitivity = 1550,
    RegisterBackplaneResult = 1551,
    RegisterBackplaneSignals = 1552,
    RegisterStimulusEvents = 1600,
};

/// What is sent in a state.
enum class StateSends : std::uint8_t {
    AddressLow,
    AddressMiddle,
    AddressHigh,
    LengthLow,
    LengthHigh,
    Function,
    Payload, // the prepared payload, which is then dropped
};

/// What the board replies: an acknowledgement, or data between two of them.
enum class StateReply : std::uint8_t { Acknowledgement, Bytes, Samples };

struct StateRow {
    std::int32_t state;
    StateSends sends;
    FunctionCode function; // only with StateSends::Function
    StateReply reply;
};

/// What a state sends and expects; null outside 1 to 38.
[[nodiscard]] const StateRow* FindState(std::int32_t state) noexcept;

/// One row of the CommandStateTable. The last row has command 0.
struct CommandStateRow {
    std::int32_t command;
    std::int32_t state;
    std::int32_t next;
};
[[nodiscard]] std::span<const CommandStateRow> CommandStateTable() noexcept;

/// The state that follows `state` in the command's sequence; 0 when the table has no such row.
[[nodiscard]] std::int32_t NextState(std::int32_t command, std::int32_t state) noexcept;

} // namespace busquill
