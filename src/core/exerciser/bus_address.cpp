#include "exerciser/bus_address.h"

#include "platform/text.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace busquill {

namespace {

/// The bytes from `current` to `end`, modulo 2 to the power of 64, and whether the end lies below.
struct Span64 {
    BusAddress count;
    bool negative;
};

Span64 SpanOf(const BusAddress& current, const BusAddress& end) noexcept {
    Span64 span{};
    int borrow = 0;
    for (std::size_t i = 0; i < end.size(); ++i) {
        const int difference = end[i] - current[i] - borrow;
        borrow = difference < 0 ? 1 : 0;
        span.count[i] = static_cast<std::uint8_t>(difference);
    }
    span.negative = borrow != 0;
    AddToAddress(1, span.count);
    return span;
}

} // namespace

void AddToAddress(std::uint32_t count, BusAddress& address) noexcept {
    std::uint64_t carry = count;
    for (std::uint8_t& byte : address) {
        carry += byte;
        byte = static_cast<std::uint8_t>(carry);
        carry >>= 8;
    }
}

RangeStep StepLength(const BusAddress& current, const BusAddress& end,
                     std::uint8_t limit) noexcept {
    const Span64 span = SpanOf(current, end);
    if (span.negative) {
        return {0, true};
    }
    const bool many = std::any_of(span.count.begin() + 1, span.count.end(),
                                  [](std::uint8_t byte) { return byte != 0; });
    return {many ? limit : std::min(span.count[0], limit), false};
}

std::uint64_t RangeLength(const BusAddress& start, const BusAddress& end) noexcept {
    const Span64 span = SpanOf(start, end);
    std::uint64_t length = 0;
    for (std::size_t i = span.count.size(); i-- > 0;) {
        length = length << 8 | span.count[i];
    }
    return length;
}

std::string BusAddressText(const BusAddress& address) {
    std::string text;
    for (std::size_t i = address.size(); i-- > 0;) {
        text += Printf("%02x", address[i]);
    }
    return text;
}

BusAddress ParseBusAddress(std::string_view text) {
    BusAddress address{};
    for (std::size_t i = 0; i < address.size() && 2 * i + 1 < text.size(); ++i) {
        address[address.size() - 1 - i] = ParseHexByte(text.substr(2 * i, 2));
    }
    return address;
}

std::uint8_t ParseHexByte(std::string_view text) {
    return static_cast<std::uint8_t>(std::strtol(std::string(text).c_str(), nullptr, 16));
}

} // namespace busquill
