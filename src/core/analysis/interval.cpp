#include "analysis/interval.h"

#include "signals/signal.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace busquill {

namespace {

/// Whether times in whole nanoseconds can be those of one period.
class EvenTimes {
public:
    void Add(std::int64_t time) noexcept {
        least_ = std::min(least_, time);
        most_ = std::max(most_, time);
    }
    [[nodiscard]] bool Holds() const noexcept { return least_ > 0 && most_ - least_ <= 1; }

private:
    std::int64_t least_ = std::numeric_limits<std::int64_t>::max();
    std::int64_t most_ = 0;
};

} // namespace

IntervalFigures FiguresOf(const BoardTraits& board, const SignalTables& tables,
                          const CapturedSamples& samples, std::size_t from, std::size_t to,
                          bool isBusClock) {
    const auto [begin, end] = std::minmax(from, to);
    IntervalFigures figures;
    figures.samples = static_cast<std::int64_t>(end - begin);
    TransactionFollower follower(board, tables);
    if (begin > 0 && samples.Has(begin - 1)) { // it shows that an address is no second half
        follower.Resume({0, samples.first + static_cast<std::int64_t>(begin) - 1, 0,
                         &samples.records[begin - 1], std::nullopt, false});
    }
    std::uint64_t transactions = 0;
    const auto count = [&](const Transaction& transaction) {
        transactions += transaction.isHeadless ? 0 : 1;
        figures.bytes += transaction.bytes;
    };
    const SampleTime sampleTime;
    RunningTime time;
    EvenTimes times;
    for (std::size_t i = begin; i <= end; ++i) {
        if (!samples.Has(i)) {
            figures.hasGaps = true;
            continue;
        }
        const SampleRecord& record = samples.records[i];
        if (i > begin) {
            time.Add(record);
            times.Add(sampleTime.Of(record));
        }
        if (i < end) {
            std::ranges::for_each(
                follower.Add(samples.first + static_cast<std::int64_t>(i), record), count);
        }
    }
    if (const auto unfinished = follower.Unfinished()) {
        count(*unfinished);
    }
    figures.time = time.Sum();
    if (const BusTraffic* traffic = follower.Traffic()) {
        figures.transactions = transactions;
        if (isBusClock && traffic->HasClock() && !figures.hasGaps && times.Holds()) {
            figures.clocks = figures.samples;
        }
    }
    return figures;
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
