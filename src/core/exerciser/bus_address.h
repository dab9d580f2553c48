/// Addresses on the bus, and ranges of them that are gone through in steps.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace busquill {

/// An address or a data value of 64 bits, least significant byte first, as the board takes it.
using BusAddress = std::array<std::uint8_t, 8>;

/// The low 32 bits.
[[nodiscard]] constexpr std::uint32_t LowAddress(const BusAddress& address) noexcept {
    return address[0] | std::uint32_t{address[1]} << 8 | std::uint32_t{address[2]} << 16 |
           std::uint32_t{address[3]} << 24;
}

/// A carry out of the top byte is lost.
void AddToAddress(std::uint32_t count, BusAddress& address) noexcept;

/// The next step through a range.
struct RangeStep {
    std::uint8_t length = 0;
    bool exhausted = false; // the end lies below the current address

    friend bool operator==(const RangeStep&, const RangeStep&) = default;
};

/// The step from `current` towards `end`, which belongs to the range, of at most `limit` bytes. The
/// whole range of 64 bits gives a length of 0.
[[nodiscard]] RangeStep StepLength(const BusAddress& current, const BusAddress& end,
                                   std::uint8_t limit) noexcept;

/// The bytes from `start` to `end`, modulo 2 to the power of 64.
[[nodiscard]] std::uint64_t RangeLength(const BusAddress& start, const BusAddress& end) noexcept;

/// 16 lower-case hexadecimal digits, the most significant first.
[[nodiscard]] std::string BusAddressText(const BusAddress& address);
/// Pairs of digits from the left go into the most significant bytes; missing pairs are 0, and a
/// single last digit does not count.
[[nodiscard]] BusAddress ParseBusAddress(std::string_view text);
/// The low byte of the hexadecimal number at the beginning of a text; 0 when there is none.
[[nodiscard]] std::uint8_t ParseHexByte(std::string_view text);

} // namespace busquill
