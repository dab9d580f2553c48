#include "capture/trace_search.h"

#include "capture/trace_document.h"
#include "link/exchange.h"
#include "platform/prompts.h"
#include "tracesetup/setup_encoding.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>

namespace busquill {

namespace {

constexpr const char* noMatch = "No match found.";
constexpr std::time_t searchLimit = 6; // seconds

// Of the first byte of the search status.
constexpr std::uint8_t searchHit = 0x01;
constexpr std::uint8_t searchHitAfter = 0x02; // on the trigger or behind it

using Words = std::array<std::uint64_t, 3>;

/// The processor foresees a walk upward by itself; that of a backward search it does not.
void FetchAhead(std::span<const SampleRecord> records, std::size_t before) noexcept {
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
        FetchAhead(records, first);
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

std::int64_t SearchStart(const CTesselDoc& document, SearchDirection direction,
                         std::int64_t firstShown) {
    const std::int64_t marker = document.Marker(1, false);
    if (marker == -1) {
        return firstShown;
    }
    return direction == SearchDirection::Forward ? marker + 1
                                                 : std::max<std::int64_t>(marker - 1, 0);
}

bool CanSearch(const CTesselDoc& document) {
    return !document.IsRealTime() || !document.CaptureActive();
}

bool CanFilter(const CTesselDoc& document) {
    return CanSearch(document) && (!document.IsRealTime() || !document.GetStore().IsUploading());
}

void SearchHost(CTesselDoc& document, SearchDirection direction, std::int64_t start,
                Prompts& prompts) {
    const RecordPattern pattern(document.searchPattern);
    const auto records = document.GetStore().GetData(false);
    const auto hit = direction == SearchDirection::Forward ? FindForward(records, pattern, start)
                                                           : FindBackward(records, pattern, start);
    if (hit) {
        document.SetMarker(1, *hit);
    } else {
        prompts.Message(noMatch);
    }
}

void SearchOnAnalyzer(CAnalyzerLink& link, CTesselDoc& document, SearchDirection direction,
                      std::int64_t start, Prompts& prompts) {
    // A step that fails says so, and the next goes out all the same while there is a board.
    bool isGone = false;
    const auto step = [&](LinkRequestPtr request, const char* what) {
        isGone = isGone ||
                 (!ExchangeOrTell(link, std::move(request), prompts, what) && link.IsBoardGone());
    };
    const std::int64_t before = document.GetStore().SamplesBefore();
    const bool isAfter = start >= before;
    const auto distance = static_cast<std::uint32_t>(isAfter ? start - before : before - start);
    step(WritePayload(CmdSearchControl, [&] { return BuildSearchControl(distance, isAfter); }),
         "Error sending search sample to analyzer.");
    step(WritePayload(CmdSearchSample, [&] { return BuildEventRows(document.searchPattern, 1); }),
         "Error sending search condition to analyzer.");
    step(WritePayload(CmdSearchCondition, OneByte(static_cast<std::uint8_t>(direction))),
         "Error sending search control to analyzer.");
    step(RunCommand(CmdStartSearch), "Error sending start search to analyzer.");
    if (isGone) {
        return;
    }

    const std::time_t begun = link.Time();
    std::array<std::uint8_t, 4> status{};
    while (true) {
        if (!ReadOrTell(link, RegisterSearchControl, status, prompts,
                        "Error getting search status from analyzer.")) {
            return;
        }
        if ((status[0] & statusRunning) == 0) {
            break;
        }
        if (link.Time() - begun >= searchLimit) {
            prompts.Message("Search timeout occurred.");
            return;
        }
    }
    if ((status[0] & searchHit) == 0) {
        prompts.Message(noMatch);
        return;
    }
    const std::int64_t away = status[1] | status[2] << 8 | status[3] << 16;
    const std::int64_t hit = (status[0] & searchHitAfter) != 0 ? before + away : before - away;
    if (hit >= 0) { // a place that the capture does not have is no hit
        document.SetMarker(1, hit);
    }
}

} // namespace busquill
