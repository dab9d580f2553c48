#include "testsuites/config_scan.h"

#include "link/exchange.h"
#include "platform/prompts.h"

#include <array>

namespace busquill {

namespace {

constexpr const char* controlFailed = "Error sending configuration scan control to analyzer.";
constexpr const char* startFailed = "Error sending start configuration command to analyzer.";
constexpr const char* dataFailed = "Error reading configuration data from analyzer.";
constexpr const char* noDevice = "No device found.";
constexpr const char* timedOut = "Timeout while waiting for configuration scan to complete.";

constexpr std::time_t scanLimit = 10; // seconds
constexpr StatusRegister scanStatus = {RegisterConfigScanStatus, 0, std::chrono::milliseconds(100),
                                       "Error reading configuration scan status from analyzer."};
constexpr std::uint8_t deviceFound = 0x01;

std::uint8_t ControlByte(ScanDirection direction) {
    switch (direction) {
    case ScanDirection::Next:
        return 2;
    case ScanDirection::Back:
        return 4;
    case ScanDirection::First:
        break;
    }
    return 1;
}

/// The status at the end of the scan; nothing when the time is up, which is reported. A status that
/// cannot be read ends the scan without a device.
std::optional<std::uint8_t> AwaitScan(CAnalyzerLink& link, Prompts& prompts) {
    const std::time_t begun = link.Time();
    std::array<std::uint8_t, 1> status{};
    while (true) {
        if (!ReadStatus(link, scanStatus, status, prompts)) {
            return 0;
        }
        if ((status[0] & statusRunning) == 0) {
            return status[0];
        }
        link.Pause(scanStatus.period);
        if (link.Time() - begun > scanLimit) {
            prompts.Message(timedOut);
            return std::nullopt;
        }
    }
}

} // namespace

std::optional<int> ScanForDevice(CAnalyzerLink& link, ScanDirection direction,
                                 CConfigSpaceData& data, Prompts& prompts) {
    std::vector<RunStep> steps;
    steps.push_back(
        {WritePayload(CmdConfigScanControl, OneByte(ControlByte(direction))), controlFailed});
    steps.push_back({RunCommand(CmdStartConfigScan), startFailed});
    if (SendSteps(link, std::move(steps), prompts) == Sent::Ended) {
        return std::nullopt;
    }
    const std::optional<std::uint8_t> status = AwaitScan(link, prompts);
    if (!status) {
        return std::nullopt;
    }
    if ((*status & deviceFound) == 0) {
        prompts.Message(noDevice);
        return std::nullopt;
    }
    std::array<std::uint8_t, configBlockBytes> block{};
    if (!ReadOrReport(link, RegisterConfigScanResults, block, prompts, dataFailed)) {
        return std::nullopt;
    }
    data.Import(block);
    return *status >> 1 & 7;
}

} // namespace busquill
