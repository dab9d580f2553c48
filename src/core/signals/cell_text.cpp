#include "signals/cell_text.h"

#include "signals/signal_list.h"
#include "signals/value_text.h"

#include <algorithm>

namespace busquill {

namespace {

std::string BusOrBitText(const CSignal& signal, std::size_t index, bool zoom) {
    if (!signal.grouped) {
        const bool isEmpty = signal.IsBlank() || signal.data.empty();
        return isEmpty ? "" : signal.Bit(index) ? "1" : "0";
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
    std::string text = FormatDecodedValue(board, signal, index, sample.number - index,
                                          *signal.decoded, label, *sample.record, zoom);
    if (text.find_first_not_of(' ') == std::string::npos) {
        text.clear(); // all byte lanes are off
    }
    return text;
}

std::string FormatTimeSince(std::int64_t t, bool before, bool zoom) {
    return before ? "-" + FormatTime(-t, zoom) : FormatTime(t, zoom);
}

std::string TimeBetween(std::int64_t a, std::int64_t b, const CSignalList& list, bool zoom) {
    const auto time = list.TimeFrom(std::min(a, b), std::max(a, b));
    return time ? FormatTime(*time, zoom) : std::string();
}

} // namespace busquill
