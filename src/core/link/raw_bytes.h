/// The text form of bytes that a user sends to the port and receives from it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// The low bytes of the hexadecimal numbers in the first 256 characters, separated by blanks. A
/// piece that is not a number is 0.
[[nodiscard]] std::vector<std::uint8_t> ParseRawBytes(std::string_view text);
/// "2a 00 ".
[[nodiscard]] std::string FormatRawBytes(std::span<const std::uint8_t> bytes);
/// Lines of eight bytes, as numbers and as characters; a shorter last one is filled with blanks.
[[nodiscard]] std::vector<std::string> RawLines(std::span<const std::uint8_t> bytes);

} // namespace busquill
