#include "link/raw_bytes.h"

#include "platform/text.h"

#include <algorithm>
#include <cstdlib>

namespace busquill {

namespace {

constexpr std::size_t mostCharacters = 256;
constexpr std::size_t bytesInLine = 8;

/// Printable in plain ASCII, whatever the user's language.
char Printable(std::uint8_t byte) noexcept {
    return byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : ' ';
}

} // namespace

std::vector<std::uint8_t> ParseRawBytes(std::string_view text) {
    text = text.substr(0, mostCharacters);
    std::vector<std::uint8_t> bytes;
    while (true) {
        const std::size_t first = text.find_first_not_of(' ');
        if (first == std::string_view::npos) {
            return bytes;
        }
        text.remove_prefix(first);
        const std::string piece(text.substr(0, text.find(' ')));
        bytes.push_back(static_cast<std::uint8_t>(std::strtol(piece.c_str(), nullptr, 16)));
        text.remove_prefix(piece.size());
    }
}

std::string FormatRawBytes(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += Printf("%02x ", byte);
    }
    return text;
}

std::vector<std::string> RawLines(std::span<const std::uint8_t> bytes) {
    std::vector<std::string> lines;
    for (; !bytes.empty(); bytes = bytes.subspan(std::min(bytes.size(), bytesInLine))) {
        const auto line = bytes.first(std::min(bytes.size(), bytesInLine));
        std::string plain;
        std::transform(line.begin(), line.end(), std::back_inserter(plain), Printable);
        const std::size_t missing = bytesInLine - line.size();
        lines.push_back(FormatRawBytes(line) + std::string(3 * missing, ' ') + "   '" + plain +
                        std::string(missing, ' ') + "'");
    }
    return lines;
}

} // namespace busquill
