/// The text of one value as every view prints it.
#pragma once

#include "link/board_identity.h"
#include "signals/signal.h"

#include <cstdint>
#include <limits>
#include <span>
#include <string>

namespace busquill {

/// The digits of a value, most significant first. `data` and `mask` are little-endian, bit 0
/// first; an empty mask means that all bits are known. `zoom` is set for Power Zoom data.
[[nodiscard]] std::string FormatValue(std::span<const std::uint8_t> data, unsigned width,
                                      std::int32_t radix, std::span<const std::uint8_t> mask,
                                      bool zoom);

/// The value of a TIME field of at most 32 bits: a count, and its unit in the two lowest bits.
[[nodiscard]] constexpr std::int64_t TimeOfBits(std::uint32_t bits) noexcept {
    constexpr std::int64_t units[] = {1, 1000, 1000000, 1000000000};
    const auto count = static_cast<std::int32_t>(bits) >> 2;
    return count * units[bits & 3];
}

/// A TIME field as a number: nanoseconds, or picoseconds for Power Zoom data.
[[nodiscard]] std::int64_t TimeField(std::span<const std::uint8_t> data, unsigned width) noexcept;

/// The sum of two times. Overflows give the longest time: the fields of a damaged file may add up
/// to centuries.
[[nodiscard]] constexpr std::int64_t AddTimes(std::int64_t a, std::int64_t b) noexcept {
    constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max();
    if (b > 0 && a > longest - b) {
        return longest;
    }
    return b < 0 && a < -longest - b ? -longest : a + b;
}

/// The text of a time with about three significant digits; `t` is in nanoseconds, or picoseconds
/// with `zoom`.
[[nodiscard]] std::string FormatTime(std::int64_t t, bool zoom);

/// The bits of an address with this address modifier that the listing shows: 16, 24, 32 or 40.
[[nodiscard]] int VmeAddressWidth(std::uint64_t addressModifier) noexcept;

/// The text of one cell of a decoded signal. `label` may be null.
[[nodiscard]] std::string FormatDecodedValue(const BoardTraits& board, const CSignal& signal,
                                             std::int64_t sample, std::int64_t firstSample,
                                             const CDecodedSignalDef& def, const char* label,
                                             const SampleRecord& record, bool zoom);

/// The other bits of a record on which FormatDecodedValue depends: with equal surroundings, equal
/// values give equal text.
[[nodiscard]] std::uint16_t SurroundingsOf(const SampleRecord& record) noexcept;

/// Number of characters of a value of `width` bits in a radix, blanks included; 0 for times.
[[nodiscard]] unsigned DigitsFor(unsigned width, std::int32_t radix) noexcept;

} // namespace busquill
