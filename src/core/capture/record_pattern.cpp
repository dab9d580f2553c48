#include "capture/record_pattern.h"

#include "platform/bits.h"
#include "tracesetup/setup_encoding.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>

namespace busquill {

namespace {

using Words = std::array<std::uint64_t, 3>;

/// Prefetches records for a backward search; hardware prefetch follows forward walks only.
void Prefetch(std::span<const SampleRecord> records, std::size_t before) noexcept {
    constexpr std::size_t line = 64;
    constexpr std::size_t ahead = 8 * RecordPattern::blockSize;
    if (before >= ahead) {
        const auto* const bytes = records[before - ahead].bytes.data();
        for (std::size_t at = 0; at < sizeof(SampleRecord) * RecordPattern::blockSize; at += line) {
            __builtin_prefetch(bytes + at);
        }
    }
}

Words WordsOf(const SampleRecord& record) noexcept {
    Words words{};
    std::memcpy(words.data(), record.bytes.data(), record.bytes.size());
    return words;
}

SampleRecord And(const SampleRecord& a, const SampleRecord& b) noexcept {
    SampleRecord both;
    for (std::size_t i = 0; i < both.bytes.size(); ++i) {
        both.bytes[i] = a.bytes[i] & b.bytes[i];
    }
    return both;
}

} // namespace

RecordPattern::RecordPattern(const SampleRecord& value, const SampleRecord& care)
    : value_(WordsOf(And(value, care))), care_(WordsOf(care)) {}

RecordPattern::RecordPattern(const CSignalList& list) {
    const std::vector<std::uint8_t> row = BuildEventRows(list, 1);
    SampleRecord value;
    SampleRecord care;
    for (std::size_t i = 0; i < row.size() / 2; ++i) {
        value.bytes[i] = row[2 * i];
        care.bytes[i] = row[2 * i + 1];
    }
    *this = RecordPattern(value, care);
}

bool RecordPattern::Matches(const SampleRecord& record) const noexcept {
    return MatchesOf(std::span(&record, 1)) != 0;
}

template <bool Low, bool High, bool Top>
inline std::uint32_t RecordPattern::MatchBit(const SampleRecord& record) const noexcept {
    const std::uint8_t* const bytes = record.bytes.data();
    const auto differs = [&](std::size_t word, std::size_t size) {
        std::uint64_t present = 0;
        std::memcpy(&present, bytes + word * sizeof present, size);
        return (present & care_[word]) ^ value_[word];
    };
    std::uint64_t different = 0;
    if constexpr (Low) {
        different |= differs(0, sizeof(std::uint64_t));
    }
    if constexpr (High) {
        different |= differs(1, sizeof(std::uint64_t));
    }
    if constexpr (Top) {
        different |= differs(2, sizeof(std::uint16_t));
    }
    return static_cast<std::uint32_t>(different == 0);
}

template <bool Low, bool High, bool Top>
std::uint32_t RecordPattern::MatchesBy(std::span<const SampleRecord> records) const noexcept {
    constexpr std::size_t step = 8;
    std::uint32_t matches = 0;
    std::size_t at = 0;
    for (; at + step <= records.size(); at += step) {
        const SampleRecord* const group = records.data() + at;
        std::uint32_t bits = 0;
#pragma GCC unroll 8
        for (std::size_t i = 0; i < step; ++i) {
            bits |= MatchBit<Low, High, Top>(group[i]) << i;
        }
        matches |= bits << at;
    }
    for (; at < records.size(); ++at) {
        matches |= MatchBit<Low, High, Top>(records[at]) << at;
    }
    return matches;
}

std::uint32_t RecordPattern::MatchesOf(std::span<const SampleRecord> records) const noexcept {
    if (care_[2] != 0) {
        return MatchesBy<true, true, true>(records);
    }
    if (care_[1] == 0) {
        return MatchesBy<true, false, false>(records);
    }
    return care_[0] == 0 ? MatchesBy<false, true, false>(records)
                         : MatchesBy<true, true, false>(records);
}

std::optional<std::int64_t> FindForward(std::span<const SampleRecord> records,
                                        const RecordPattern& pattern, std::int64_t start) noexcept {
    const std::size_t count = records.size();
    for (auto at = static_cast<std::size_t>(std::max<std::int64_t>(start, 0)); at < count;
         at += RecordPattern::blockSize) {
        const std::uint32_t matches =
            pattern.MatchesOf(records.subspan(at, std::min(count - at, RecordPattern::blockSize)));
        if (matches != 0) {
            return static_cast<std::int64_t>(at) + std::countr_zero(matches);
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> FindBackward(std::span<const SampleRecord> records,
                                         const RecordPattern& pattern,
                                         std::int64_t start) noexcept {
    const auto count = static_cast<std::int64_t>(records.size());
    auto end = static_cast<std::size_t>(std::clamp<std::int64_t>(start + 1, 0, count));
    while (end > 1) {
        const std::size_t first =
            end > RecordPattern::blockSize ? end - RecordPattern::blockSize : 1;
        Prefetch(records, first);
        const std::uint32_t matches = pattern.MatchesOf(records.subspan(first, end - first));
        if (matches != 0) {
            return static_cast<std::int64_t>(first) + std::bit_width(matches) - 1;
        }
        end = first;
    }
    return std::nullopt;
}

void FindAll(std::span<const SampleRecord> records, const RecordPattern& pattern,
             std::span<const std::uint32_t> excluded, std::vector<std::uint32_t>& samples,
             std::vector<std::uint32_t>& bits) {
    constexpr std::size_t blockSize = RecordPattern::blockSize;
    samples.clear();
    samples.reserve(records.size());
    bits.clear();
    bits.reserve(records.size() / blockSize + 1);
    for (std::size_t first = 0; first < records.size(); first += blockSize) {
        const std::uint32_t candidates =
            bits.size() < excluded.size() ? ~excluded[bits.size()] : ~0U;
        if (candidates == 0) {
            bits.push_back(0);
            continue;
        }
        const std::uint32_t matches =
            candidates &
            pattern.MatchesOf(records.subspan(first, std::min(records.size() - first, blockSize)));
        bits.push_back(matches);
        std::size_t count = samples.size();
        samples.resize(count + static_cast<std::size_t>(std::popcount(matches)));
        if (matches == ~0U) {
            std::iota(samples.end() - static_cast<std::ptrdiff_t>(blockSize), samples.end(),
                      static_cast<std::uint32_t>(first));
            continue;
        }
        for (const std::size_t match : EachSetBit(matches)) {
            samples[count++] = static_cast<std::uint32_t>(first + match);
        }
    }
}

} // namespace busquill
