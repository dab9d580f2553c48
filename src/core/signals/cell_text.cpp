#include "signals/cell_text.h"

#include "signals/value_text.h"

namespace busquill {

namespace {

std::string BusOrBitText(const CSignal& signal, std::size_t index, bool zoom) {
    if (!signal.grouped) {
        const bool isBlank = signal.dataIndex < 0 || signal.data.empty();
        return isBlank ? "" : signal.Bit(index) ? "1" : "0";
    }
    const auto row = signal.GroupRow(index);
    return row.empty() ? "" : FormatValue(row, signal.groupWidth, signal.radix, {}, zoom);
}

} // namespace

std::string CellText(const BoardTraits& board, const CSignal& signal, const ListedSample& sample,
                     bool zoom) {
    if (!signal.decoded) {
        return BusOrBitText(signal, sample.index, zoom);
    }
    const char* label = signal.Label(sample.index);
    switch (signal.decoded->decodeKind) {
    case DecodeKind::Delta:
        return {};
    case DecodeKind::Accum:
        return sample.times.sinceTrigger;
    case DecodeKind::Label:
        return label == nullptr ? "" : label;
    case DecodeKind::Time:
        if (sample.times.rowsLeftOut) {
            return sample.times.sinceAbove;
        }
        break;
    default:
        break;
    }
    if (sample.record == nullptr) {
        return {};
    }
    const auto index = static_cast<std::int64_t>(sample.index);
    return FormatDecodedValue(board, signal, index, sample.number - index, *signal.decoded, label,
                              *sample.record, zoom);
}

std::string FormatTimeSince(std::int64_t t, bool before, bool zoom) {
    return before ? "-" + FormatTime(-t, zoom) : FormatTime(t, zoom);
}

std::int64_t TimeSums::UpTo(const CSignal& time, std::int64_t sample) {
    constexpr std::int64_t span = 1024; // samples from one kept sum to the next
    const auto timeOf = [&time](std::int64_t at) {
        const auto row = time.GroupRow(static_cast<std::size_t>(at));
        return row.empty() ? 0 : TimeField(row, time.groupWidth);
    };
    if (&time != time_) {
        Forget();
        time_ = &time;
    }
    if (sums_.empty()) {
        sums_.push_back(timeOf(0));
    }
    while (static_cast<std::int64_t>(sums_.size()) <= sample / span) {
        const std::int64_t from = static_cast<std::int64_t>(sums_.size() - 1) * span;
        std::int64_t sum = sums_.back();
        for (std::int64_t at = from + 1; at <= from + span; ++at) {
            sum = AddTimes(sum, timeOf(at));
        }
        sums_.push_back(sum);
    }
    if (sample != lastSample_) {
        // Rows follow one another, so most sums go on from the one before.
        const std::int64_t kept = sample / span * span;
        const bool goesOn = lastSample_ >= kept && lastSample_ < sample;
        std::int64_t sum = goesOn ? lastSum_ : sums_[static_cast<std::size_t>(sample / span)];
        for (std::int64_t at = (goesOn ? lastSample_ : kept) + 1; at <= sample; ++at) {
            sum = AddTimes(sum, timeOf(at));
        }
        lastSample_ = sample;
        lastSum_ = sum;
    }
    return lastSum_;
}

void TimeSums::Forget() {
    time_ = nullptr;
    sums_.clear();
    lastSample_ = -1;
}

} // namespace busquill
