#pragma once

#include <cstdint>

namespace busquill {

/// How often each kind of line error has occurred; the counts wrap.
struct LineErrorCounts {
    std::uint32_t bufferOverrun = 0;
    std::uint32_t overrun = 0;
    std::uint32_t parity = 0;
    std::uint32_t frame = 0;
    std::uint32_t breaks = 0;
};

/// The error word for the errors between two readings of the counts: one bit for each kind.
[[nodiscard]] constexpr std::uint32_t LineErrorWord(const LineErrorCounts& before,
                                                    const LineErrorCounts& now) noexcept {
    // clang-format off
    return (now.bufferOverrun != before.bufferOverrun ? 0x01U : 0U) |
           (now.overrun       != before.overrun       ? 0x02U : 0U) |
           (now.parity        != before.parity        ? 0x04U : 0U) |
           (now.frame         != before.frame         ? 0x08U : 0U) |
           (now.breaks        != before.breaks        ? 0x10U : 0U);
    // clang-format on
}

} // namespace busquill
