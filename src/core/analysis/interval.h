#pragma once

#include "analysis/transaction_index.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace busquill {

class CSignal;

/// What lies between two samples of a capture: from the first of them to just before the second, so
/// that samples, times and transactions of neighbouring intervals add up.
struct IntervalFigures {
    std::int64_t samples = 0; // from one to the other
    std::int64_t time = 0;    // ns
    /// Periods of the bus clock; nothing if the samples are not all one period apart.
    std::optional<std::int64_t> clocks;
    bool hasGaps = false; // samples are missing, so that all other figures are too small

    /// Nothing on a connector.
    std::optional<std::uint64_t> transactions; // whose address is between the two
    std::uint64_t bytes = 0;

    /// Bytes in a second; nothing if there is no time.
    [[nodiscard]] std::optional<double> Throughput() const noexcept {
        return transactions && time > 0
                   ? std::optional(static_cast<double>(bytes) * 1e9 / static_cast<double>(time))
                   : std::nullopt;
    }

    friend bool operator==(const IntervalFigures&, const IntervalFigures&) = default;
};

/// Goes through the samples of an interval in as many pieces as the caller likes.
class IntervalWalk {
public:
    /// From the record at index `from` to that at `to`, in either order. `isBusClock`: the samples
    /// were taken at the clock of the bus. The tables outlive the walk.
    IntervalWalk(const BoardTraits& board, const SignalTables& tables, std::size_t from,
                 std::size_t to, bool isBusClock);

    /// Goes on for `count` records. `samples` are the same in each piece, wherever they lie.
    void Advance(const CapturedSamples& samples, std::size_t count);
    [[nodiscard]] bool IsDone() const noexcept { return next_ > end_; }
    /// Where the next piece begins: an index from `from` to just after `to`.
    [[nodiscard]] std::size_t Next() const noexcept { return next_; }
    /// Of all records of the interval, once it is done.
    [[nodiscard]] IntervalFigures Figures() const;

private:
    const std::size_t begin_;
    const std::size_t end_;
    std::size_t next_;
    const bool isBusClock_;
    TransactionFollower follower_;
    std::uint64_t transactions_ = 0; // that have ended
    std::uint64_t bytes_ = 0;
    bool hasGaps_ = false;
    RunningTime time_;
    std::int64_t leastTime_ = std::numeric_limits<std::int64_t>::max(); // of a sample, ns
    std::int64_t mostTime_ = 0;
};

/// The figures of a whole interval at once.
[[nodiscard]] IntervalFigures FiguresOf(const BoardTraits& board, const SignalTables& tables,
                                        const CapturedSamples& samples, std::size_t from,
                                        std::size_t to, bool isBusClock);

/// How often a signal changes.
struct EdgeCount {
    std::uint64_t changes = 0;
    /// Those of a single line; 0 for a group.
    std::uint64_t rising = 0;
    std::uint64_t falling = 0;

    EdgeCount& operator+=(const EdgeCount& other) noexcept {
        changes += other.changes;
        rising += other.rising;
        falling += other.falling;
        return *this;
    }
    friend bool operator==(const EdgeCount&, const EdgeCount&) = default;
};

/// The changes of a signal, or of its group, after sample `from` up to sample `to`, in either
/// order. Between a missing sample and its neighbours none is counted.
[[nodiscard]] EdgeCount EdgesOf(const CSignal& signal, const CapturedSamples& samples,
                                std::size_t from, std::size_t to);

} // namespace busquill
