#include "capture/trace_search.h"

#include "capture/trace_document.h"
#include "link/analyzer_link.h"
#include "platform/clock.h"
#include "platform/prompts.h"
#include "tracesetup/setup_encoding.h"

#include <cstring>

namespace busquill {

namespace {

constexpr const char* noMatch = "No match found.";
constexpr std::time_t searchLimit = 6; // seconds

// Of the first byte of the search status.
constexpr std::uint8_t searchHit = 0x01;
constexpr std::uint8_t searchHitAfter = 0x02; // on the trigger or behind it
constexpr std::uint8_t searchBusy = 0x80;

struct Words {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
};

Words WordsOf(const SampleRecord& record) noexcept {
    Words words;
    std::memcpy(&words.low, record.bytes.data(), sizeof words.low);
    std::memcpy(&words.high, record.bytes.data() + sizeof words.low, sizeof words.high);
    return words;
}

} // namespace

RecordPattern::RecordPattern(const CSignalList& list) {
    const std::vector<std::uint8_t> row = BuildEventRows(list, 1);
    SampleRecord value;
    SampleRecord care;
    for (std::size_t i = 0; i < row.size() / 2; ++i) {
        care.bytes[i] = row[2 * i + 1];
        value.bytes[i] = row[2 * i] & care.bytes[i];
    }
    value_ = {WordsOf(value).low, WordsOf(value).high};
    care_ = {WordsOf(care).low, WordsOf(care).high};
}

bool RecordPattern::Matches(const SampleRecord& record) const noexcept {
    const Words words = WordsOf(record);
    return (((words.low & care_[0]) ^ value_[0]) | ((words.high & care_[1]) ^ value_[1])) == 0;
}

std::optional<std::int64_t> FindForward(std::span<const SampleRecord> records,
                                        const RecordPattern& pattern, std::int64_t start) noexcept {
    const auto count = static_cast<std::int64_t>(records.size());
    for (std::int64_t i = std::max<std::int64_t>(start, 0); i < count; ++i) {
        if (pattern.Matches(records[static_cast<std::size_t>(i)])) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> FindBackward(std::span<const SampleRecord> records,
                                         const RecordPattern& pattern,
                                         std::int64_t start) noexcept {
    const auto last = static_cast<std::int64_t>(records.size()) - 1;
    for (std::int64_t i = std::min(start, last); i > 0; --i) {
        if (pattern.Matches(records[static_cast<std::size_t>(i)])) {
            return i;
        }
    }
    return std::nullopt;
}

void FindAll(std::span<const SampleRecord> records, const RecordPattern& pattern,
             std::span<const std::uint32_t> excluded, std::vector<std::uint32_t>& samples,
             std::vector<std::uint32_t>& bits) {
    constexpr std::size_t wordBits = 32;
    samples.resize(records.size());
    bits.assign((records.size() + wordBits - 1) / wordBits, 0);
    std::uint32_t* const found = samples.data();
    std::size_t count = 0;
    for (std::size_t word = 0; word < bits.size(); ++word) {
        const std::size_t first = word * wordBits;
        const std::size_t end = std::min(first + wordBits, records.size());
        const std::uint32_t wanted = word < excluded.size() ? ~excluded[word] : ~0U;
        std::uint32_t matches = 0;
        for (std::size_t i = first; i < end; ++i) {
            // Written in any case and kept when it counts: cheaper than a branch that is missed.
            const std::uint32_t match =
                static_cast<std::uint32_t>(pattern.Matches(records[i])) & wanted >> (i - first);
            found[count] = static_cast<std::uint32_t>(i);
            count += match & 1;
            matches |= (match & 1) << (i - first);
        }
        bits[word] = matches;
    }
    samples.resize(count);
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
                      std::int64_t start, Prompts& prompts, const Clock& clock) {
    // A step that fails says so, and the next goes out all the same.
    const auto step = [&](std::int32_t command, const LinkWords& words, const char* what) {
        if (!link.Exchange(command, words)) {
            prompts.TopmostMessage(what);
        }
    };
    const std::int64_t before = document.GetStore().SamplesBefore();
    const bool isAfter = start >= before;
    const std::int64_t distance = isAfter ? start - before : before - start;
    step(CmdSearchControl,
         {.address = static_cast<std::uintptr_t>(distance),
          .length = static_cast<std::uintptr_t>(isAfter)},
         "Error sending search sample to analyzer.");
    step(CmdSearchSample, {.data = &document.searchPattern},
         "Error sending search condition to analyzer.");
    step(CmdSearchCondition, {.address = static_cast<std::uintptr_t>(direction)},
         "Error sending search control to analyzer.");
    step(CmdStartSearch, {}, "Error sending start search to analyzer.");

    const std::time_t begun = clock.Time();
    std::array<std::uint8_t, 4> status{};
    while (true) {
        if (!link.Exchange(CmdReadMemory, {RegisterSearchControl, status.size(), &status})) {
            prompts.TopmostMessage("Error getting search status from analyzer.");
            return;
        }
        if (status[0] < searchBusy) {
            break;
        }
        if (clock.Time() - begun >= searchLimit) {
            prompts.Message("Search timeout occurred.");
            return;
        }
    }
    if ((status[0] & searchHit) == 0) {
        prompts.Message(noMatch);
        return;
    }
    const std::int64_t away = status[1] | status[2] << 8 | status[3] << 16;
    document.SetMarker(1, (status[0] & searchHitAfter) != 0 ? before + away : before - away);
}

} // namespace busquill
