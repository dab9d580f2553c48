#include "link/payloads.h"

#include <array>

namespace busquill {

namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint8_t LowByte(std::uint32_t value) noexcept {
    return static_cast<std::uint8_t>(value);
}

/// Byte 0 of the trace parameters. The first two steps of the scale are swapped.
std::uint8_t FirstTraceCode(std::uint32_t value) noexcept {
    switch (value) {
    case 1:
        return 2;
    case 3:
        return 1;
    default:
        return value >= 4 && value <= 16 ? LowByte(value - 1) : 0;
    }
}

std::uint8_t SecondTraceCode(std::uint32_t value) noexcept {
    switch (value) {
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

std::uint8_t ThirdTraceCode(std::uint32_t value) noexcept {
    return value >= 1 && value <= 8 ? LowByte(value - 1) : 0;
}

Bytes CopyOfData(const LinkRequest& request, std::size_t count) {
    const auto* bytes = request.DataAs<const std::uint8_t>();
    return bytes == nullptr ? Bytes(count) : Bytes(bytes, bytes + count);
}

Bytes MakePayload(const LinkRequest& request, const CommandRow& row,
                  const PayloadEncoders& encoders) {
    const std::uint32_t address = Number(request.Address());
    const std::uint32_t length = Number(request.Length());
    switch (row.payload) {
    case PayloadKind::None:
    case PayloadKind::Caller:
        return {};
    case PayloadKind::CopyLength:
        return CopyOfData(request, length);
    case PayloadKind::Copy:
        return CopyOfData(request, row.bytes);
    case PayloadKind::BaudCode:
        return {BaudCode(static_cast<std::int32_t>(address))};
    case PayloadKind::LowByte:
        return {LowByte(address)};
    case PayloadKind::TraceParams:
        return {FirstTraceCode(address), SecondTraceCode(length),
                ThirdTraceCode(Number(request.Data()))};
    case PayloadKind::SearchControl:
        return {LowByte(length * 2), LowByte(address), LowByte(address >> 8),
                LowByte(address >> 16)};
    case PayloadKind::Encoded:
        break;
    }
    const auto encoder = encoders.find(row.command);
    Bytes payload = encoder == encoders.end() ? Bytes() : encoder->second(request);
    // The board takes a fixed count, also where fewer rows are in use.
    payload.resize(row.bytes);
    return payload;
}

} // namespace

std::uint8_t BaudCode(std::int32_t rate) noexcept {
    constexpr std::array<std::int32_t, 6> rates{19200, 28800, 38400, 57600, 115200, 750000};
    for (std::size_t i = 0; i < rates.size(); ++i) {
        if (rates[i] == rate) {
            return static_cast<std::uint8_t>(i + 1);
        }
    }
    return 0;
}

void PreparePayload(LinkRequest& request, const PayloadEncoders& encoders) {
    const CommandRow* row = FindCommand(request.command);
    if (row == nullptr) {
        return;
    }
    request.payload = MakePayload(request, *row, encoders);
    if (row->bytes != 0) {
        request.Address() = row->address;
        request.Length() = row->bytes;
    }
}

} // namespace busquill
