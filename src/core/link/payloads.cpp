#include "link/payloads.h"

#include <algorithm>

namespace busquill {

namespace {

enum class Payload { Caller, Encoded, Copy, LowAddress, BaudCode, TraceParams, SearchControl };

struct CommandRow {
    std::int32_t command;
    std::uint32_t address;
    std::uint32_t bytes;
    Payload payload;
};

// Commands that are not listed take address, length and buffer from the caller, or have none.
// clang-format off
constexpr CommandRow fixedRows[] = {
    {CmdSetBaudRate,               15,   1, Payload::BaudCode},
    {CmdTraceControl,             260, 160, Payload::Encoded},
    {CmdTraceEvents,               20, 240, Payload::Encoded},
    {CmdTraceParams,              420,   3, Payload::TraceParams},
    {CmdSearchControl,            441,   4, Payload::SearchControl},
    {CmdSearchCondition,          440,   1, Payload::LowAddress},
    {CmdSearchSample,             445,  30, Payload::Encoded},
    {CmdPerformanceSetup,         499, 241, Payload::Encoded},
    {CmdAnomalyChecklist,        1532,  16, Payload::Copy},
    {CmdConfigScanControl,      0x352,   1, Payload::LowAddress},
    {CmdComplianceControl,       1516,   1, Payload::LowAddress},
    {CmdComplianceTestId,        1518,   4, Payload::Copy},
    {CmdMasterSetup,              802,  48, Payload::Copy},
    {CmdMasterAddress,            804,   9, Payload::Copy},
    {CmdMasterControl,            800,   1, Payload::LowAddress},
    {CmdMasterFileData,           816,  32, Payload::Copy},
    {CmdStimulusControl,         1410,  80, Payload::Encoded},
    {CmdStimulusCondition,        930, 480, Payload::Encoded},
    {CmdComplianceTargetAddress, 1522,   8, Payload::Copy},
    {CmdSetBusConfig,              18,   2, Payload::Encoded},
    {CmdMasterAttributes,         924,   4, Payload::Copy},
    {CmdStimulusEvents,          1600, 240, Payload::Encoded},
    {CmdTargetSetup,             1490,  12, Payload::Copy},
    {CmdTargetAddress,           1503,  11, Payload::Copy},
    {CmdBackplaneSignals,        1552,  28, Payload::Copy},
    {CmdBackplaneSensitivity,    1550,   1, Payload::LowAddress},
};
// clang-format on

using Bytes = std::vector<std::uint8_t>;

std::uint8_t BaudCode(std::uint32_t rate) noexcept {
    switch (rate) {
    case 19200:
        return 1;
    case 28800:
        return 2;
    case 38400:
        return 3;
    case 57600:
        return 4;
    case 115200:
        return 5;
    case 750000:
        return 6;
    default:
        return 0;
    }
}

// The first two values are swapped against the rest of the scale.
std::uint8_t SampleClockCode(std::uint32_t index) noexcept {
    if (index == 1) {
        return 2;
    }
    if (index == 3) {
        return 1;
    }
    return index >= 4 && index <= 16 ? static_cast<std::uint8_t>(index - 1) : 0;
}

std::uint8_t TriggerPositionCode(std::uint32_t index) noexcept {
    switch (index) {
    case 1:
        return 3;
    case 2:
        return 4;
    case 4:
        return 1;
    case 5:
        return 2;
    default:
        return 0;
    }
}

std::uint8_t ZoomClockCode(std::uint32_t index) noexcept {
    return index >= 1 && index <= 8 ? static_cast<std::uint8_t>(index - 1) : 0;
}

Bytes CopyOf(std::uintptr_t data, std::size_t count) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(data);
    return bytes == nullptr ? Bytes() : Bytes(bytes, bytes + count);
}

Bytes MakePayload(const CommandRow& row, LinkRequest& request, const EncoderMap& encoders) {
    const auto address = static_cast<std::uint32_t>(request.Address());
    const auto length = static_cast<std::uint32_t>(request.Length());
    switch (row.payload) {
    case Payload::Encoded: {
        const auto encoder = encoders.find(row.command);
        return encoder == encoders.end() ? Bytes() : encoder->second(request);
    }
    case Payload::Copy:
        return CopyOf(request.Data(), row.bytes);
    case Payload::LowAddress:
        return {static_cast<std::uint8_t>(address)};
    case Payload::BaudCode:
        return {BaudCode(address)};
    case Payload::TraceParams:
        return {SampleClockCode(address), TriggerPositionCode(length),
                ZoomClockCode(static_cast<std::uint32_t>(request.Data()))};
    case Payload::SearchControl:
        return {static_cast<std::uint8_t>(length * 2), static_cast<std::uint8_t>(address),
                static_cast<std::uint8_t>(address >> 8), static_cast<std::uint8_t>(address >> 16)};
    case Payload::Caller:
        break;
    }
    return {};
}

} // namespace

void EncodeParameters(LinkRequest& request, const EncoderMap& encoders) {
    request.payload.clear();
    if (request.command == CmdTargetData || request.command == CmdDownloadRecord) {
        request.payload = CopyOf(request.Data(), static_cast<std::uint32_t>(request.Length()));
        return;
    }
    const auto* row =
        std::find_if(std::begin(fixedRows), std::end(fixedRows), [&](const CommandRow& candidate) {
            return candidate.command == request.command;
        });
    if (row == std::end(fixedRows)) {
        return;
    }
    request.payload = MakePayload(*row, request, encoders);
    // What an encoder leaves out goes to the board as zeros.
    request.payload.resize(row->bytes);
    request.Address() = row->address;
    request.Length() = row->bytes;
    if (request.command == CmdSetBaudRate) {
        request.Data() = request.payload.front();
    }
}

} // namespace busquill
