#include "analysis/sample_search.h"

#include "platform/bits.h"
#include "signals/value_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace busquill {

static_assert(RecordPattern::blockSize == wordBits);

SampleSearch::SampleSearch(Test test, std::optional<Times> times)
    : test_(std::move(test)), times_(std::move(times)) {}

void SampleSearch::Expect(std::size_t word) {
    if (word < present_.size() && !TestBit(expected_, word)) {
        SetBit(expected_, word);
        ++left_;
    }
}

void SampleSearch::Follow(const CapturedSamples& samples) {
    const std::size_t count = samples.records.size();
    present_.resize(WordsFor(count));
    found_.resize(present_.size());
    expected_.resize(WordsFor(present_.size()));
    bool anyNew = false;
    for (std::size_t word = 0; word < present_.size(); ++word) {
        const std::uint32_t absent = word < samples.absent.size() ? samples.absent[word] : 0;
        const std::uint32_t present = LowBits<std::uint32_t>(count - word * wordBits) & ~absent;
        if (std::exchange(present_[word], present) != present) {
            anyNew = true;
            Expect(word);
            Expect(word + 1); // its first sample has an edge only if the one before it is known
        }
    }
    if (anyNew && times_) { // all times further from the trigger have changed
        for (std::size_t word = 0; word < present_.size(); ++word) {
            Expect(word);
        }
    }
}

bool SampleSearch::Continue(const CapturedSamples& samples, std::size_t limit) {
    const std::size_t words = std::max<std::size_t>(limit / wordBits, 1);
    for (std::size_t done = 0; done < words && left_ > 0; ++done) {
        next_ = FirstSet(expected_, next_);
        if (next_ >= present_.size()) { // the rest is before it
            next_ = FirstSet(expected_);
        }
        found_[next_] = FoundIn(next_, samples);
        UnsetBit(expected_, next_);
        --left_;
    }
    return left_ == 0;
}

std::uint32_t SampleSearch::FoundIn(std::size_t word, const CapturedSamples& samples) const {
    const std::uint32_t present = present_[word];
    if (present == 0) {
        return 0;
    }
    const std::size_t first = word * wordBits;
    const auto firstPresent = first + static_cast<std::size_t>(std::countr_zero(present));
    std::array<std::int32_t, wordBits> numbers{};
    std::array<std::size_t, wordBits> places{};
    std::size_t count = 0;
    for (const std::size_t place : EachSetBit(present)) {
        numbers[count] =
            static_cast<std::int32_t>(samples.first + static_cast<std::int64_t>(first + place));
        places[count++] = place;
    }
    std::array<SampleRecord, wordBits> gathered;
    SampleBlock block{.records = samples.records.subspan(firstPresent, count),
                      .numbers = std::span(numbers).first(count)};
    const bool hasGaps = places[count - 1] - places.front() >= count;
    if (hasGaps) {
        for (std::size_t i = 0; i < count; ++i) {
            gathered[i] = samples.records[first + places[i]];
        }
        block.records = std::span(gathered).first(count);
    }
    if (firstPresent > 0 && TestBit(present_, firstPresent - 1)) {
        block.before = &samples.records[firstPresent - 1];
    }
    std::array<std::int64_t, wordBits> times{};
    if (times_) {
        times.front() = times_->sinceTrigger(firstPresent);
        for (std::size_t i = 1; i < count; ++i) {
            times[i] = AddTimes(times[i - 1], times_->sampleTime.Of(block.records[i]));
        }
        block.times = std::span(times).first(count);
    }
    std::uint32_t found = 0;
    for (const std::size_t match : EachSetBit(test_(block) & LowBits<std::uint32_t>(count))) {
        found |= 1U << places[match];
    }
    return found;
}

} // namespace busquill
