/// The dump of memory that was read: rows of an address, bytes in hexadecimal, and the same bytes
/// as characters.
#pragma once

#include "platform/demo_random.h"

#include <cstdint>
#include <span>
#include <string>

namespace busquill {

/// A dump always has this many rows; those without bytes show their address alone.
inline constexpr int dumpRows = 1000;

/// The bytes of a row in a window, whose characters all have one width; each byte takes four
/// characters. 0 when the window has no room for any.
[[nodiscard]] int DumpBytesPerRow(int clientWidth, int charWidth) noexcept;

/// The bytes of a row; fewer than `bytesPerRow`, or none, at the end of the memory.
[[nodiscard]] std::span<const std::uint8_t> DumpRowBytes(std::span<const std::uint8_t> memory,
                                                         int row, int bytesPerRow) noexcept;

/// The text of a row: " 00001000  de ad             ..".
[[nodiscard]] std::string DumpRowText(std::uint32_t baseAddress, int row, int bytesPerRow,
                                      std::span<const std::uint8_t> rowBytes);

/// A byte of a row in Demo Mode, where rows are full and change whenever they are drawn; from a
/// random number of 0 to largestDemoRandom.
[[nodiscard]] constexpr std::uint8_t DemoDumpByte(int random) noexcept {
    return static_cast<std::uint8_t>(random * 255 / largestDemoRandom);
}

} // namespace busquill
