#include "capture/row_map.h"

#include "capture/record_pattern.h"
#include "platform/bits.h"

#include <algorithm>

namespace busquill {

void RowMap::Reset(std::int64_t samples, std::int64_t firstNumber,
                   std::span<const std::uint32_t> excluded) {
    sampleCount_ = samples;
    firstSampleNumber_ = firstNumber;
    const auto count = static_cast<std::size_t>(samples);
    matchBits_.assign(WordsFor(count), ~0U);
    if (count % wordBits != 0) {
        matchBits_.back() = LowBits<std::uint32_t>(count % wordBits);
    }
    LeaveOut(excluded);
    MakeRows();
}

void RowMap::Keep(std::span<const std::uint32_t> bits, std::span<const std::uint32_t> excluded) {
    matchBits_.assign(bits.begin(), bits.end());
    matchBits_.resize(WordsFor(static_cast<std::size_t>(sampleCount_)));
    LeaveOut(excluded);
    MakeRows();
}

void RowMap::LeaveOut(std::span<const std::uint32_t> excluded) {
    for (std::size_t word = 0; word < std::min(matchBits_.size(), excluded.size()); ++word) {
        matchBits_[word] &= ~excluded[word];
    }
}

void RowMap::MakeRows() {
    rows_ = {};
    rows_.reserve(CountBits(matchBits_));
    for (std::size_t word = 0; word < matchBits_.size(); ++word) {
        for (const std::size_t bit : EachSetBit(matchBits_[word])) {
            rows_.push_back(static_cast<std::uint32_t>(word * wordBits + bit));
        }
    }
}

void RowMap::Filter(std::span<const SampleRecord> records, const RecordPattern& pattern,
                    std::span<const std::uint32_t> excluded) {
    FindAll(records, pattern, excluded, rows_, matchBits_);
}

std::int64_t RowMap::RowToSample(std::int64_t row) const noexcept {
    if (rows_.empty()) {
        return 0;
    }
    const bool inside = row >= 0 && row < RowCount();
    return inside ? std::int64_t{rows_[static_cast<std::size_t>(row)]} : -1;
}

std::int64_t RowMap::SampleToRow(std::int64_t sample) const noexcept {
    if (RowCount() == sampleCount_) {
        return sample;
    }
    const auto found = std::lower_bound(rows_.begin(), rows_.end(), sample);
    const std::int64_t row = found - rows_.begin();
    const bool exact = found != rows_.end() && *found == sample;
    return exact ? row : std::max<std::int64_t>(row - 1, 0);
}

bool RowMap::IsRowSample(std::int64_t sample) const noexcept {
    return sample >= 0 && TestBit(matchBits_, static_cast<std::size_t>(sample));
}

} // namespace busquill
