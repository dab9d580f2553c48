#include "exerciser/memory_dump.h"

#include "platform/text.h"

#include <algorithm>

namespace busquill {

namespace {

/// Characters of a row that are not those of its bytes: the address and what stands around it.
constexpr int fixedChars = 12;
constexpr int charsOfAByte = 4;

bool IsPrintable(std::uint8_t byte) noexcept {
    return byte >= 0x20 && byte < 0x7F;
}

} // namespace

int DumpBytesPerRow(int clientWidth, int charWidth) noexcept {
    const int room = clientWidth - fixedChars * charWidth;
    return charWidth > 0 && room > 0 ? room / (charsOfAByte * charWidth) : 0;
}

std::span<const std::uint8_t> DumpRowBytes(std::span<const std::uint8_t> memory, int row,
                                           int bytesPerRow) noexcept {
    const std::size_t count = static_cast<std::size_t>(std::max(bytesPerRow, 0));
    const std::size_t first =
        std::min(static_cast<std::size_t>(std::max(row, 0)) * count, memory.size());
    return memory.subspan(first, std::min(count, memory.size() - first));
}

std::string DumpRowText(std::uint32_t baseAddress, int row, int bytesPerRow,
                        std::span<const std::uint8_t> rowBytes) {
    const auto address =
        baseAddress + static_cast<std::uint32_t>(row) * static_cast<std::uint32_t>(bytesPerRow);
    std::string text = Printf(" %08x  ", address);
    for (std::size_t i = 0; i < static_cast<std::size_t>(std::max(bytesPerRow, 0)); ++i) {
        text += i < rowBytes.size() ? Printf("%02x ", rowBytes[i]) : "   ";
    }
    text += ' ';
    for (const std::uint8_t byte : rowBytes) {
        text += IsPrintable(byte) ? static_cast<char>(byte) : '.';
    }
    return text;
}

} // namespace busquill
