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

/// A TIME field as a number: nanoseconds, or picoseconds for Power Zoom data.
[[nodiscard]] std::int64_t TimeField(std::span<const std::uint8_t> data, unsigned width) noexcept;

/// The sum of two times. A sum that no number holds stays at the longest one: fields of a damaged
/// file may add up to centuries.
[[nodiscard]] constexpr std::int64_t AddTimes(std::int64_t a, std::int64_t b) noexcept {
    constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max();
    if (b > 0 && a > longest - b) {
        return longest;
    }
    return b < 0 && a < -longest - b ? -longest : a + b;
}

/// A time with three significant digits or so; nanoseconds, or picoseconds with `zoom`.
[[nodiscard]] std::string FormatTime(std::int64_t t, bool zoom);

/// The text of one cell of a decoded signal. `label` may be null.
[[nodiscard]] std::string FormatDecodedValue(const BoardTraits& board, const CSignal& signal,
                                             std::int64_t sample, std::int64_t firstSample,
                                             const CDecodedSignalDef& def, const char* label,
                                             const SampleRecord& record, bool zoom);

/// What FormatDecodedValue looks at besides the value's own bits, its label and its number: with
/// the same surroundings the same value reads the same.
[[nodiscard]] std::uint16_t SurroundingsOf(const SampleRecord& record) noexcept;

/// Characters that a value of `width` bits takes in a radix, with its blanks; 0 for time.
[[nodiscard]] unsigned DigitsFor(unsigned width, std::int32_t radix) noexcept;

} // namespace busquill
