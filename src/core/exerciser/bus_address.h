/// Addresses on the bus, and ranges of them that are gone through in steps.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace busquill {

/// An address or a data value of 64 bits, least significant byte first, as the board takes it.
using BusAddress = std::array<std::uint8_t, 8>;

/// The low 32 bits.
[[nodiscard]] constexpr std::uint32_t LowAddress(const BusAddress& address) noexcept {
    return address[0] | std::uint32_t{address[1]} << 8 | std::uint32_t{address[2]} << 16 |
           std::uint32_t{address[3]} << 24;
}

/// An address as a number, and back.
[[nodiscard]] constexpr std::uint64_t NumberOf(const BusAddress& address) noexcept {
    std::uint64_t number = 0;
    for (std::size_t i = address.size(); i-- > 0;) {
        number = number << 8 | address[i];
    }
    return number;
}
[[nodiscard]] constexpr BusAddress AddressOf(std::uint64_t number) noexcept {
    BusAddress address{};
    for (std::uint8_t& byte : address) {
        byte = static_cast<std::uint8_t>(number);
        number >>= 8;
    }
    return address;
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

} // namespace busquill
