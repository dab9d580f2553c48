#include "document/hex_fields.h"

#include "platform/text.h"

#include <cstdlib>

namespace busquill {

std::string HexAddressText(const std::array<std::uint8_t, 8>& address) {
    std::string text;
    for (std::size_t i = address.size(); i-- > 0;) {
        text += HexByteText(address[i]);
    }
    return text;
}

std::array<std::uint8_t, 8> ParseHexAddress(std::string_view text) {
    std::array<std::uint8_t, 8> address{};
    for (std::size_t i = 0; i < address.size() && 2 * i + 1 < text.size(); ++i) {
        address[address.size() - 1 - i] = ParseHexByte(text.substr(2 * i, 2));
    }
    return address;
}

std::string HexByteText(std::uint8_t value) {
    return Printf("%02x", value);
}

std::uint8_t ParseHexByte(std::string_view text) {
    return static_cast<std::uint8_t>(std::strtol(std::string(text).c_str(), nullptr, 16));
}

} // namespace busquill
