#include "capture/listing.h"

#include "signals/value_text.h"

#include <algorithm>

namespace busquill {

TraceListing::TraceListing(CSignalList& list, Capture capture)
    : list_(list), capture_(std::move(capture)), time_(SampleTime(list)) {
    for (const auto& signal : list.All()) {
        if (signal->VisibleWidth() > 0) {
            columns_.push_back(signal.get());
            const auto* def = signal->decoded.get();
            showsTime_ = showsTime_ || (def != nullptr && def->decodeKind == DecodeKind::Time);
            showsAccum_ = showsAccum_ || (def != nullptr && def->decodeKind == DecodeKind::Accum);
        }
    }
}

std::size_t TraceListing::WidthOf(const CSignal& column) {
    constexpr std::size_t longestTime = 10; // longer times, in hours, shift their row
    const bool isTime = column.decoded && (column.decoded->decodeKind == DecodeKind::Time ||
                                           column.decoded->decodeKind == DecodeKind::Accum);
    const std::size_t digits = isTime           ? longestTime
                               : column.decoded ? column.decoded->labelWidth
                               : column.grouped ? DigitsFor(column.groupWidth, column.radix)
                                                : 1;
    return std::max(column.RowName().size(), digits);
}

void TraceListing::Load(const SampleRows& rows) {
    rows_ = &rows;
    unpacked_ = false;
    if (!time_.Known()) {
        return;
    }
    sums_.clear();
    for (std::size_t i = 0; i < rows.Size(); ++i) {
        time_.Add(rows.records[i]);
        sums_.push_back(time_.Sum());
        if (rows.numbers[i] == capture_.first) {
            sumAbove_ = time_.Sum(); // the first row counts from the first sample
        }
    }
}

RowTimes TraceListing::TimesOf(std::size_t row) {
    RowTimes times;
    times.rowsLeftOut = !capture_.zoom && capture_.hasGaps;
    if (!time_.Known()) {
        return times;
    }
    const std::int64_t sum = sums_[row];
    if (showsTime_ && times.rowsLeftOut) {
        times.sinceAbove = FormatTime(AddTimes(sum, -sumAbove_), capture_.zoom);
    }
    if (showsAccum_) {
        times.sinceTrigger = FormatTimeSince(AddTimes(sum, -capture_.timeToTrigger),
                                             rows_->numbers[row] < capture_.trigger, capture_.zoom);
    }
    sumAbove_ = sum;
    return times;
}

void TraceListing::Cells(std::size_t row, std::vector<std::string>& cells) {
    if (!unpacked_) {
        unpacked_ = true;
        list_.ResizeSamples(static_cast<std::uint32_t>(rows_->Size()));
        list_.LoadSamples(0, rows_->records);
    }
    const ListedSample sample{row, rows_->numbers[row], &rows_->records[row], TimesOf(row)};
    cells.resize(columns_.size());
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        cells[i] = CellText(capture_.board, *columns_[i], sample, capture_.zoom);
    }
}

} // namespace busquill
