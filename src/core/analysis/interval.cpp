#include "analysis/interval.h"

#include "signals/signal.h"

#include <algorithm>
#include <optional>

namespace busquill {

namespace {

void Count(const Transaction& transaction, std::uint64_t& transactions, std::uint64_t& bytes) {
    transactions += transaction.isHeadless ? 0 : 1;
    bytes += transaction.bytes;
}

} // namespace

IntervalWalk::IntervalWalk(const BoardTraits& board, const SignalTables& tables, std::size_t from,
                           std::size_t to, bool isBusClock)
    : begin_(std::min(from, to)), end_(std::max(from, to)), next_(begin_), isBusClock_(isBusClock),
      follower_(board, tables) {}

void IntervalWalk::Advance(const CapturedSamples& samples, std::size_t count) {
    if (next_ == begin_ && begin_ > 0 && samples.Has(begin_ - 1)) {
        // It shows that an address is no second half.
        follower_.Resume({0, samples.first + static_cast<std::int64_t>(begin_) - 1, 0,
                          &samples.records[begin_ - 1], std::nullopt, false});
    }
    const SampleTime sampleTime;
    const std::size_t stop = next_ + std::min(count, end_ + 1 - next_);
    for (; next_ < stop; ++next_) {
        if (!samples.Has(next_)) {
            hasGaps_ = true;
            continue;
        }
        const SampleRecord& record = samples.records[next_];
        if (next_ > begin_) {
            time_.Add(record);
            const std::int64_t time = sampleTime.Of(record);
            leastTime_ = std::min(leastTime_, time);
            mostTime_ = std::max(mostTime_, time);
        }
        if (next_ < end_) {
            for (const Transaction& each :
                 follower_.Add(samples.first + static_cast<std::int64_t>(next_), record)) {
                Count(each, transactions_, bytes_);
            }
        }
    }
}

IntervalFigures IntervalWalk::Figures() const {
    IntervalFigures figures;
    figures.samples = static_cast<std::int64_t>(end_ - begin_);
    figures.time = time_.Sum();
    figures.hasGaps = hasGaps_;
    figures.bytes = bytes_;
    std::uint64_t transactions = transactions_;
    if (const auto unfinished = follower_.Unfinished()) {
        Count(*unfinished, transactions, figures.bytes);
    }
    if (const BusTraffic* traffic = follower_.Traffic()) {
        figures.transactions = transactions;
        // Times in whole nanoseconds that can be those of one period.
        const bool isEven = leastTime_ > 0 && mostTime_ - leastTime_ <= 1;
        if (isBusClock_ && traffic->HasClock() && !hasGaps_ && isEven) {
            figures.clocks = figures.samples;
        }
    }
    return figures;
}

IntervalFigures FiguresOf(const BoardTraits& board, const SignalTables& tables,
                          const CapturedSamples& samples, std::size_t from, std::size_t to,
                          bool isBusClock) {
    IntervalWalk walk(board, tables, from, to, isBusClock);
    walk.Advance(samples, std::numeric_limits<std::size_t>::max());
    return walk.Figures();
}

EdgeCount EdgesOf(const CSignal& signal, const CapturedSamples& samples, std::size_t from,
                  std::size_t to) {
    const auto [begin, end] = std::minmax(from, to);
    EdgeCount edges;
    for (std::size_t i = begin + 1; i <= end; ++i) {
        if (!samples.Has(i) || !samples.Has(i - 1)) {
            continue;
        }
        if (signal.grouped) {
            edges.changes += std::ranges::equal(signal.GroupRow(i - 1), signal.GroupRow(i)) ? 0 : 1;
        } else if (const bool now = signal.Bit(i); now != signal.Bit(i - 1)) {
            ++edges.changes;
            ++(now ? edges.rising : edges.falling);
        }
    }
    return edges;
}

} // namespace busquill
