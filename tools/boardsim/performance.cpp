#include "performance.h"

#include <algorithm>
#include <numeric>

namespace boardsim {

namespace {

constexpr std::size_t rowBytes = 30;

enum Type : unsigned { Utilizations, TransferRates, Latencies, Bursts, Endings };

enum UtilizationItem : unsigned {
    BusBusy = 1,
    BusIdle,
    Transfers,
    AddressPhase,
    DataPhase,
    WaitStates,
    MasterEfficiency,
    TargetEfficiency,
};
enum TransferRateItem : unsigned { RateOfCycle = 1, RateOfGrant0, RateOfGrant3 = RateOfGrant0 + 3 };
enum LatencyItem : unsigned {
    LatencyOfMaster = 1,
    FirstOfTarget,
    LatencyOfTarget,
    LatencyOfArbitration,
};
enum BurstItem : unsigned { BurstOfCycle = 1 };
enum StatisticsItem : unsigned { ShareOfCycles = 1, FirstEnding, LastEnding = FirstEnding + 5 };

std::uint64_t WordOf(std::span<const std::uint8_t> bytes) {
    std::uint64_t word = 0;
    for (std::size_t i = 8; i-- > 0;) {
        word = word << 8 | bytes[i];
    }
    return word;
}

/// `part` of `whole`, of `scale`, rounded; 0 of nothing.
std::uint64_t Share(std::uint64_t part, std::uint64_t whole, std::uint64_t scale) {
    return whole == 0 ? 0 : (part * scale + whole / 2) / whole;
}

std::uint64_t Percent(std::uint64_t part, std::uint64_t whole) {
    return Share(part, whole, 100);
}

} // namespace

std::uint64_t Performance::Tally::Bytes() const noexcept {
    return std::accumulate(bytes.begin(), bytes.end(), std::uint64_t{0});
}

void Performance::Start(std::span<const std::uint8_t> setup) {
    running_ = true;
    type_ = setup[0];
    for (std::size_t n = 0; n < rows_.size(); ++n) {
        const auto bytes = setup.subspan(1 + n * rowBytes, rowBytes);
        Row& row = rows_[n] = {};
        row.low = WordOf(bytes.first(8));
        row.high = WordOf(bytes.subspan(8, 8));
        row.cycle = bytes[16];
        row.item = bytes[17];
    }
    phase_ = Phase::Idle;
    request_ = time_ = cycles_ = 0;
}

void Performance::Feed(const Record& record) {
    if (!running_ || follower_ == nullptr) {
        return;
    }
    Spend(TimeOfField(GetField(record, bitTime, timeBits)));
    const BusState state = follower_->Take(record);
    if (state.begins) {
        Begin(state);
    }
    phase_ = state.phase;
    for (Row& row : rows_) {
        if (row.counts) {
            row.tally.bytes[grant_] += state.bytes;
            ++row.tally.endings[static_cast<std::size_t>(state.ending)];
        }
    }
}

/// A sample has the time since the one before it, so this time belongs to the earlier state.
void Performance::Spend(std::uint64_t nanoseconds) {
    time_ += nanoseconds;
    request_ += phase_ == Phase::Request ? nanoseconds : 0;
    for (Row& row : rows_) {
        if (!row.counts) {
            continue;
        }
        Tally& tally = row.tally;
        switch (phase_) {
        case Phase::Address:
            tally.address += nanoseconds;
            break;
        case Phase::Wait:
            (moved_ ? tally.laterWait : tally.firstWait) += nanoseconds;
            break;
        case Phase::Transfer:
            tally.transfer += nanoseconds;
            break;
        case Phase::Idle:
        case Phase::Request:
            break;
        }
    }
    moved_ = moved_ || phase_ == Phase::Transfer;
}

void Performance::Begin(const BusState& state) {
    ++cycles_;
    grant_ = state.grant;
    moved_ = false;
    for (Row& row : rows_) {
        row.counts = row.item != 0 && row.cycle < 32 && (state.codes >> row.cycle & 1) != 0 &&
                     row.low <= state.address && state.address <= row.high;
        if (row.counts) {
            ++row.tally.cycles;
            row.tally.request += request_;
        }
    }
    request_ = 0;
}

Performance::Values Performance::Take() {
    Values values{};
    for (std::size_t n = 0; n < rows_.size(); ++n) {
        values[n] = static_cast<std::uint32_t>(ValueOf(rows_[n]));
        rows_[n].tally = {};
    }
    time_ = cycles_ = 0;
    return values;
}

std::uint64_t Performance::ValueOf(const Row& row) const {
    switch (type_) {
    case Utilizations:
        return Utilization(row);
    case TransferRates:
        return TransferRate(row);
    case Latencies:
        return Latency(row);
    case Bursts:
        return row.item == BurstOfCycle ? Share(row.tally.Bytes(), row.tally.cycles, 1) : 0;
    case Endings:
        return Statistics(row);
    default:
        return 0;
    }
}

std::uint64_t Performance::Utilization(const Row& row) const {
    const Tally& tally = row.tally;
    switch (row.item) {
    case BusBusy:
        return Percent(tally.Busy(), time_);
    case BusIdle:
        return time_ == 0 ? 0 : 100 - Percent(tally.Busy(), time_);
    case Transfers:
        return Percent(tally.transfer, time_);
    case AddressPhase:
        return Percent(tally.address, time_);
    case DataPhase:
        return Percent(tally.Data(), time_);
    case WaitStates:
        return Percent(tally.Wait(), time_);
    case MasterEfficiency:
        return Percent(tally.transfer, tally.Busy());
    case TargetEfficiency:
        return Percent(tally.transfer, tally.Data());
    default:
        return 0;
    }
}

std::uint64_t Performance::TransferRate(const Row& row) const {
    constexpr std::uint64_t perSecond = 1000; // a byte per nanosecond, in megabytes per second
    if (row.item == RateOfCycle) {
        return Share(row.tally.Bytes(), time_, perSecond);
    }
    if (row.item >= RateOfGrant0 && row.item <= RateOfGrant3) {
        return Share(row.tally.bytes[row.item - RateOfGrant0], time_, perSecond);
    }
    return 0;
}

std::uint64_t Performance::Latency(const Row& row) const {
    constexpr std::uint64_t millisecond = 1000; // in microseconds
    const Tally& tally = row.tally;
    switch (row.item) {
    case LatencyOfMaster:
        return Share(tally.address, time_, millisecond);
    case FirstOfTarget:
        return Share(tally.firstWait, time_, millisecond);
    case LatencyOfTarget:
        return Share(tally.laterWait, time_, millisecond);
    case LatencyOfArbitration:
        return Share(tally.request, time_, millisecond);
    default:
        return 0;
    }
}

std::uint64_t Performance::Statistics(const Row& row) const {
    const Tally& tally = row.tally;
    if (row.item == ShareOfCycles) {
        return Percent(tally.cycles, cycles_);
    }
    if (row.item >= FirstEnding && row.item <= LastEnding) {
        const unsigned ending = static_cast<unsigned>(Ending::MasterAbort) + row.item - FirstEnding;
        return Percent(tally.endings[ending], tally.cycles);
    }
    return 0;
}

} // namespace boardsim
