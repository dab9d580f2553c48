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

/// Waits for the end of the scan.
ScanEnd AwaitScan(CAnalyzerLink& link, Prompts& prompts, const std::function<bool()>& givesUp,
                  std::uint8_t& found) {
    const std::time_t begun = link.Time();
    std::array<std::uint8_t, 1> status{};
    while (true) {
        if (!ReadStatus(link, scanStatus, status, prompts)) {
            return ScanEnd::NoDevice;
        }
        if ((status[0] & statusRunning) == 0) {
            found = status[0];
            return (found & deviceFound) != 0 ? ScanEnd::Found : ScanEnd::NoDevice;
        }
        if (givesUp && givesUp()) {
            return ScanEnd::GivenUp;
        }
        link.Pause(scanStatus.period);
        if (link.Time() - begun > scanLimit) {
            prompts.Message(timedOut);
            return ScanEnd::Failed;
        }
    }
}

} // namespace

Scan FindDevice(CAnalyzerLink& link, ScanDirection direction, CConfigSpaceData& data,
                Prompts& prompts, const std::function<bool()>& givesUp) {
    std::vector<RunStep> steps;
    steps.push_back(
        {WritePayload(CmdConfigScanControl, OneByte(ControlByte(direction))), controlFailed});
    steps.push_back({RunCommand(CmdStartConfigScan), startFailed});
    if (SendSteps(link, std::move(steps), prompts) == Sent::Ended) {
        return {ScanEnd::Failed};
    }
    std::uint8_t status = 0;
    if (const ScanEnd end = AwaitScan(link, prompts, givesUp, status); end != ScanEnd::Found) {
        return {end};
    }
    std::array<std::uint8_t, configBlockBytes> block{};
    if (!ReadOrReport(link, RegisterConfigScanResults, block, prompts, dataFailed)) {
        return {ScanEnd::Failed};
    }
    data.Import(block);
    return {ScanEnd::Found, status >> 1 & 7};
}

std::optional<int> ScanForDevice(CAnalyzerLink& link, ScanDirection direction,
                                 CConfigSpaceData& data, Prompts& prompts) {
    const Scan scan = FindDevice(link, direction, data, prompts);
    if (scan.end == ScanEnd::NoDevice) {
        prompts.Message(noDevice);
    }
    return scan.end == ScanEnd::Found ? std::optional(scan.function) : std::nullopt;
}

} // namespace busquill
