#include "signals/group_rows.h"

#include <algorithm>

namespace busquill {

namespace {

using Words = ZeroedArray<std::uint32_t> CSignal::*;

/// Packs one byte of the rows of 32 samples from up to eight members.
void PackByte(std::span<const std::unique_ptr<CSignal>> members, Words words, std::size_t word,
              std::span<std::uint8_t> rows, std::size_t rowBytes) {
    for (std::size_t part = 0; part < 4; ++part) {
        std::uint64_t x = 0;
        for (std::size_t i = 0; i < members.size(); ++i) {
            const auto& source = (*members[i]).*words;
            if (word < source.size()) {
                x |= std::uint64_t{(source[word] >> (8 * part)) & 0xFF} << (8 * i);
            }
        }
        x = Transpose8(x);
        for (std::size_t i = 0; i < 8 && (part * 8 + i) * rowBytes < rows.size(); ++i) {
            rows[(part * 8 + i) * rowBytes] = static_cast<std::uint8_t>(x >> (8 * i));
        }
    }
}

void PackRows(std::span<const std::unique_ptr<CSignal>> members, Words words,
              std::span<std::uint8_t> rows, std::size_t firstWord, std::size_t endWord) {
    const std::size_t rowBytes = members.front()->RowBytes();
    members = members.first(std::min<std::size_t>(members.size(), members.front()->groupWidth));
    const std::size_t count = rowBytes == 0 ? 0 : rows.size() / rowBytes;
    endWord = std::min(endWord, WordsFor(count));
    for (std::size_t word = firstWord; word < endWord; ++word) {
        for (std::size_t byte = 0; byte < rowBytes; ++byte) {
            const std::size_t begin = std::min(byte * 8, members.size());
            const std::size_t size = std::min<std::size_t>(8, members.size() - begin);
            PackByte(members.subspan(begin, size), words, word,
                     rows.subspan(word * wordBits * rowBytes + byte), rowBytes);
        }
    }
}

} // namespace

void PackGroupRows(std::span<const std::unique_ptr<CSignal>> members, std::size_t firstWord,
                   std::size_t endWord) {
    CSignal& start = *members.front();
    PackRows(members, &CSignal::data, start.groupData, firstWord, endWord);
    PackRows(members, &CSignal::mask, start.groupMask, firstWord, endWord);
}

} // namespace busquill
