/// Where the value of a signal changes, found a word at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace busquill {

/// The first sample after `from` and before `end` whose bit differs from that of `from`, else
/// `end`. Samples past the words count as unchanged.
[[nodiscard]] std::size_t NextBitChange(std::span<const std::uint32_t> words, std::size_t from,
                                        std::size_t end) noexcept;

/// The same for consecutive values of `rowBytes` bytes each.
[[nodiscard]] std::size_t NextRowChange(std::span<const std::uint8_t> rows, std::size_t rowBytes,
                                        std::size_t from, std::size_t end) noexcept;

} // namespace busquill
