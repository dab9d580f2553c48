#include "analysis/found_rows.h"

#include "platform/bits.h"

#include <algorithm>
#include <bit>

namespace busquill {

namespace {

constexpr std::size_t strideWords = 16;

std::vector<std::uint32_t> Shown(std::span<const std::uint32_t> words, std::size_t count,
                                 std::span<const std::uint32_t> shown) {
    std::vector<std::uint32_t> result(words.begin(), words.end());
    for (std::size_t word = 0; word < result.size(); ++word) {
        result[word] &= word < shown.size() ? shown[word] : 0;
    }
    result.resize(count);
    return result;
}

std::size_t Count(std::uint32_t word) noexcept {
    return static_cast<std::size_t>(std::popcount(word));
}

} // namespace

FoundRows::FoundRows(std::span<const std::uint32_t> findings, std::span<const std::uint32_t> hits)
    : FoundRows(findings, hits,
                std::vector<std::uint32_t>(std::max(findings.size(), hits.size()), ~0U)) {}

FoundRows::FoundRows(std::span<const std::uint32_t> findings, std::span<const std::uint32_t> hits,
                     std::span<const std::uint32_t> shown)
    : findings_(Shown(findings, std::max(findings.size(), hits.size()), shown)),
      hits_(Shown(hits, findings_.size(), shown)) {
    rowsBefore_.reserve(findings_.size() / strideWords + 2);
    std::size_t rows = 0;
    for (std::size_t word = 0; word < findings_.size(); ++word) {
        if (word % strideWords == 0) {
            rowsBefore_.push_back(rows);
        }
        rows += CountIn(word);
    }
    rowsBefore_.push_back(rows);
}

std::size_t FoundRows::CountIn(std::size_t word) const noexcept {
    return Count(findings_[word]) + Count(hits_[word]);
}

FoundRows::Row FoundRows::At(std::size_t row) const noexcept {
    const auto stride = std::ranges::upper_bound(rowsBefore_, row) - rowsBefore_.begin() - 1;
    std::size_t word = static_cast<std::size_t>(stride) * strideWords;
    std::size_t before = rowsBefore_[static_cast<std::size_t>(stride)];
    while (before + CountIn(word) <= row) {
        before += CountIn(word);
        ++word;
    }
    for (const std::size_t bit : EachSetBit(findings_[word] | hits_[word])) {
        for (const bool isHit : {false, true}) {
            const bool has = ((isHit ? hits_ : findings_)[word] >> bit & 1U) != 0;
            if (has && before++ == row) {
                return {word * wordBits + bit, isHit};
            }
        }
    }
    return {};
}

std::size_t FoundRows::CountBefore(std::size_t sample) const noexcept {
    const std::size_t last = sample / wordBits;
    if (last >= findings_.size()) {
        return Size();
    }
    std::size_t rows = rowsBefore_[last / strideWords];
    for (std::size_t word = last / strideWords * strideWords; word < last; ++word) {
        rows += CountIn(word);
    }
    const auto below = LowBits<std::uint32_t>(sample % wordBits);
    return rows + Count(findings_[last] & below) + Count(hits_[last] & below);
}

std::optional<std::size_t> FoundRows::Find(const Row& row) const noexcept {
    if (!TestBit(row.isHit ? hits_ : findings_, row.sample)) {
        return std::nullopt;
    }
    const bool isSecond = row.isHit && TestBit(findings_, row.sample);
    return CountBefore(row.sample) + (isSecond ? 1 : 0);
}

} // namespace busquill
