#include "signals/signal_changes.h"

#include "platform/bits.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace busquill {

std::size_t NextBitChange(std::span<const std::uint32_t> words, std::size_t from,
                          std::size_t end) noexcept {
    const std::size_t known = std::min(end, words.size() * wordBits);
    if (from >= known) {
        return end;
    }
    const std::uint32_t same = TestBit(words, from) ? ~0U : 0;
    for (std::size_t at = from + 1; at < known; at = (at / wordBits + 1) * wordBits) {
        const std::uint32_t changed = (words[at / wordBits] ^ same) >> (at % wordBits);
        if (changed != 0) {
            const std::size_t found = at + static_cast<std::size_t>(std::countr_zero(changed));
            return found < known ? found : end;
        }
    }
    return end;
}

std::size_t NextRowChange(std::span<const std::uint8_t> rows, std::size_t rowBytes,
                          std::size_t from, std::size_t end) noexcept {
    if (rowBytes == 0) {
        return end;
    }
    const std::size_t known = std::min(end, rows.size() / rowBytes);
    if (from + 1 >= known) {
        return end;
    }
    // Compares each byte with that of the next row: the first difference gives the row.
    const std::uint8_t* const data = rows.data();
    const std::size_t last =
        (known - 1) * rowBytes; // bytes that have a counterpart in the next row
    std::size_t at = from * rowBytes;
    for (; at + sizeof(std::uint64_t) <= last; at += sizeof(std::uint64_t)) {
        std::uint64_t here = 0;
        std::uint64_t there = 0;
        std::memcpy(&here, data + at, sizeof here);
        std::memcpy(&there, data + at + rowBytes, sizeof there);
        if (here != there) {
            break;
        }
    }
    while (at < last && data[at] == data[at + rowBytes]) {
        ++at;
    }
    return at < last ? at / rowBytes + 1 : end;
}

} // namespace busquill
