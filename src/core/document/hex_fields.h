/// Addresses and bytes as the files of the board's functions hold them, in hexadecimal.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace busquill {

/// The 16 lower-case digits of 8 bytes, of which the last is the most significant.
[[nodiscard]] std::string HexAddressText(const std::array<std::uint8_t, 8>& address);
/// Pairs of digits from the left go into the most significant bytes; missing pairs are 0, and a
/// single last digit does not count.
[[nodiscard]] std::array<std::uint8_t, 8> ParseHexAddress(std::string_view text);

/// "0f".
[[nodiscard]] std::string HexByteText(std::uint8_t value);
/// The low byte of the hexadecimal number at the beginning of a text; 0 when there is none.
[[nodiscard]] std::uint8_t ParseHexByte(std::string_view text);

} // namespace busquill
