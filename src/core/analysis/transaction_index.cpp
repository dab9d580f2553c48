#include "analysis/transaction_index.h"

#include "signals/value_text.h"

#include <algorithm>

namespace busquill {

TransactionIndex::TransactionIndex(const BoardTraits& board, const SignalTables& tables)
    : follower_(board, tables), reader_(board, tables) {
    if (const auto def = tables.busSignals.FindByName("TIME")) {
        sampleTime_.emplace(*def);
    }
}

void TransactionIndex::Extend(const CapturedSamples& samples) {
    for (; followed_ < samples.records.size(); ++followed_) {
        if (followed_ % stride == 0) {
            known_.push_back({follower_.Time(), absentAt_});
        }
        if (!samples.Has(followed_)) {
            absentAt_ = static_cast<std::uint32_t>(followed_);
            continue;
        }
        if (!firstPresent_) {
            firstPresent_ = followed_;
        }
        const auto number = samples.first + static_cast<std::int64_t>(followed_);
        for (const Transaction& ended : follower_.Add(number, samples.records[followed_])) {
            if (ended.splitRequest) {
                splits_.emplace_back(static_cast<std::uint32_t>(starts_.size()),
                                     static_cast<std::uint32_t>(*ended.splitRequest - 1));
            }
            starts_.push_back(static_cast<std::uint32_t>(ended.sample - samples.first));
        }
    }
    const auto open = follower_.Unfinished();
    openStart_.reset();
    if (open) {
        openStart_ = static_cast<std::size_t>(open->sample - samples.first);
        openRequest_ = open->splitRequest;
    }
}

/// The time of the last sample before a record.
std::int64_t TransactionIndex::TimeBefore(std::size_t index, const CapturedSamples& samples) const {
    std::int64_t time = known_[index / stride].time;
    for (std::size_t i = index / stride * stride; sampleTime_ && i < index; ++i) {
        if (samples.Has(i) && i != firstPresent_) {
            time = AddTimes(time, sampleTime_->Of(samples.records[i]));
        }
    }
    return time;
}

/// Whether no record from `first` up to `end` is missing.
bool TransactionIndex::HasAll(std::size_t first, std::size_t end,
                              const CapturedSamples& samples) const {
    const std::size_t from = std::max(first, end / stride * stride);
    for (std::size_t i = from; i < end; ++i) {
        if (!samples.Has(i)) {
            return false;
        }
    }
    const auto absentAt = known_[end / stride].absentAt;
    return !absentAt || *absentAt < first;
}

/// Sets up the reader at the beginning of a transaction. `lastEnd` is when the one before ended.
void TransactionIndex::StartAt(std::size_t row, std::optional<std::int64_t> lastEnd,
                               const CapturedSamples& samples) {
    const std::size_t start = StartOf(row);
    if (start == firstPresent_) {
        reader_.Restart();
        return;
    }
    const bool follows = start > 0 && samples.Has(start - 1);
    const auto number = samples.first + static_cast<std::int64_t>(start);
    reader_.Resume({row, follows ? number - 1 : number - 2, TimeBefore(start, samples),
                    follows ? &samples.records[start - 1] : nullptr, lastEnd});
}

/// Follows one transaction up to its end.
Transaction TransactionIndex::Follow(std::size_t row, std::optional<std::int64_t> lastEnd,
                                     const CapturedSamples& samples) {
    const std::uint64_t number = row + 1;
    StartAt(row, lastEnd, samples);
    for (std::size_t i = StartOf(row); i < followed_; ++i) {
        if (!samples.Has(i)) {
            break;
        }
        const auto sample = samples.first + static_cast<std::int64_t>(i);
        for (const Transaction& ended : reader_.Add(sample, samples.records[i])) {
            if (ended.number == number) {
                return ended;
            }
        }
    }
    // If other samples follow the missing ones, it is over.
    const bool isLast = row == starts_.size();
    return reader_.Unfinished(isLast ? TransactionEnd::CutOff : TransactionEnd::Unknown)
        .value_or(Transaction());
}

/// When the transaction before a row ended; nothing if samples are missing since. The idle samples
/// between them are not read, since there may be millions.
std::optional<std::int64_t> TransactionIndex::EndBefore(std::size_t row,
                                                        const CapturedSamples& samples) {
    if (row == 0) {
        return std::nullopt;
    }
    reader_.KeepWords(0);
    const Transaction before = Follow(row - 1, std::nullopt, samples);
    const auto last = static_cast<std::size_t>(before.lastSample - samples.first);
    return HasAll(last, StartOf(row), samples) ? std::optional(before.lastTime) : std::nullopt;
}

Transaction TransactionIndex::Row(std::size_t row, const CapturedSamples& samples,
                                  std::size_t words) {
    const auto lastEnd = EndBefore(row, samples);
    reader_.KeepWords(words);
    Transaction found = Follow(row, lastEnd, samples);
    found.splitRequest = row < starts_.size() ? std::nullopt : openRequest_;
    const auto split = std::ranges::lower_bound(splits_, static_cast<std::uint32_t>(row), {},
                                                [](const auto& pair) { return pair.first; });
    if (split != splits_.end() && split->first == row) {
        found.splitRequest = split->second + 1U;
    }
    return found;
}

std::optional<std::size_t> TransactionIndex::RowAt(std::size_t index,
                                                   const CapturedSamples& samples) {
    const auto after = std::ranges::upper_bound(starts_, index);
    auto row = static_cast<std::size_t>(after - starts_.begin());
    if (openStart_ && *openStart_ <= index) {
        row = starts_.size() + 1;
    }
    if (row == 0) {
        return std::nullopt;
    }
    --row;
    const auto number = samples.first + static_cast<std::int64_t>(index);
    const bool isInside = samples.Has(index) && Row(row, samples, 0).lastSample >= number;
    return isInside ? std::optional(row) : std::nullopt;
}

std::size_t TransactionIndex::Bytes() const noexcept {
    return starts_.size() * sizeof starts_[0] + splits_.capacity() * sizeof splits_[0] +
           known_.capacity() * sizeof known_[0];
}

} // namespace busquill
