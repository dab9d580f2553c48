#include "ui/display/state_painter.h"

#include "capture/trace_document.h"
#include "signals/value_text.h"
#include "ui/display/marker_glyphs.h"
#include "ui/display/state_geometry.h"
#include "ui/framework/painting.h"
#include "ui/patterns/columns.h"

#include <QPainter>

#include <algorithm>
#include <vector>

namespace busquill {

namespace {

const QColor lineColor(0, 0, 0);

/// A cell may be cut at its end and say so.
bool IsLeftAligned(const CSignal& signal) {
    return signal.decoded && signal.decoded->name == "RULE CHECK";
}

QString ToQt(const std::string& text) {
    return QString::fromStdString(text);
}

std::string BusOrBitText(const CSignal& signal, std::int64_t sample, bool zoom) {
    const auto index = static_cast<std::size_t>(sample);
    if (!signal.grouped) {
        const bool isBlank = signal.dataIndex < 0 || signal.data.empty();
        return isBlank ? "" : signal.Bit(index) ? "1" : "0";
    }
    const auto row = signal.GroupRow(index);
    return row.empty() ? "" : FormatValue(row, signal.groupWidth, signal.radix, {}, zoom);
}

std::string AccumulatedTime(const StateFrame& frame, std::int64_t sample) {
    const std::int64_t trigger = frame.document.Marker(0, frame.zoom);
    if (trigger == -1) {
        return {};
    }
    const std::string time = TimeBetween(trigger, sample, frame.list, frame.zoom);
    return sample < trigger && !time.empty() ? "-" + time : time;
}

/// Times since the trigger, row by row.
class AccumulatedTimes {
public:
    explicit AccumulatedTimes(const StateFrame& frame)
        : frame_(frame), sums_(frame.timeSums != nullptr ? *frame.timeSums : ownSums_),
          trigger_(frame.document.Marker(0, frame.zoom)) {
        for (const auto& signal : frame.list.All()) {
            if (signal->IsGroupStart() && signal->permanent && signal->baseName == "TIME") {
                time_ = signal.get();
                break;
            }
        }
    }
    AccumulatedTimes(const AccumulatedTimes&) = delete;
    AccumulatedTimes& operator=(const AccumulatedTimes&) = delete;

    std::string At(std::int64_t sample) {
        if (trigger_ == -1 || time_ == nullptr || time_->groupData.empty()) {
            return {};
        }
        if (!upToTrigger_) {
            upToTrigger_ = sums_.UpTo(*time_, trigger_);
        }
        const std::int64_t sum = sums_.UpTo(*time_, sample) - *upToTrigger_;
        const bool before = sample < trigger_;
        const std::string text = FormatTime(before ? -sum : sum, frame_.zoom);
        return before ? "-" + text : text;
    }

private:
    const StateFrame& frame_;
    TimeSums ownSums_;
    TimeSums& sums_;
    const CSignal* time_ = nullptr;
    const std::int64_t trigger_;
    std::optional<std::int64_t> upToTrigger_;
};

class Drawing {
public:
    Drawing(QPainter& painter, const StateFrame& frame)
        : painter_(painter), frame_(frame), accumulated_(frame),
          columns_(VisibleColumns(ColumnWidths(frame.list), frame.sampleColumn, frame.offset,
                                  frame.size.width())) {}

    std::optional<std::int64_t> Draw() {
        painter_.fillRect(QRect(QPoint(0, 0), frame_.size), ColorOf(frame_.colors.background));
        DrawHeader();
        painter_.setClipping(false);
        DrawRows();
        return firstMissing_;
    }

    void DrawHeaderOnly() {
        painter_.setClipping(false);
        painter_.fillRect(0, 0, frame_.size.width(), stateHeaderLine,
                          ColorOf(frame_.colors.background));
        DrawHeader();
    }

private:
    void Line(int x, int y, int width, int height) {
        painter_.fillRect(x, y, width, height, lineColor);
    }

    void ClipToColumns() {
        const int left = frame_.sampleColumn + 1;
        painter_.setClipRect(QRect(left, 0, frame_.size.width() - left, frame_.size.height()));
    }

    void DrawHeader() {
        Line(0, stateHeaderLine, frame_.size.width(), 1);
        Line(frame_.sampleColumn, 0, 1, frame_.size.height());
        painter_.setFont(frame_.headerFont);
        painter_.setPen(lineColor);
        const QRect sampleCell(QPoint(1, 1), QPoint(frame_.sampleColumn - 1, stateHeaderLine - 1));
        DrawEdge(painter_, sampleCell, Edge::Raised);
        DrawHeaderText(painter_, sampleCell, "SAMPLE");
        ClipToColumns();
        for (const TableColumn& column : columns_) {
            DrawColumnTitle(painter_, frame_.list[column.signal], column, stateHeaderLine,
                            frame_.size.height(), ColorOf(frame_.colors.background));
        }
    }

    void DrawRows() {
        painter_.setFont(frame_.bodyFont);
        std::int64_t row = frame_.topRow;
        std::int64_t previous = 0;
        for (int y = stateFirstRow; y < frame_.size.height() && row < RowCount();
             y += stateRowPitch, ++row) {
            const std::int64_t sample = frame_.document.RowToSample(row, frame_.zoom);
            if (sample < 0) {
                continue;
            }
            const bool valid = frame_.document.IsValidSample(sample, frame_.zoom);
            if (!valid && !firstMissing_) {
                firstMissing_ = sample;
            }
            DrawRow(y, row, sample, previous, valid);
            previous = sample;
        }
    }

    [[nodiscard]] std::int64_t RowCount() const { return frame_.document.RowCount(frame_.zoom); }

    /// The colour of a row's stripe, if it has one. Stripes go by sample, so that they stay with
    /// their samples under a filter.
    [[nodiscard]] std::optional<std::uint32_t> RowColor(std::int64_t sample) const {
        for (int which = 0; which < 3; ++which) {
            if (frame_.document.Marker(which, frame_.zoom) == sample) {
                return frame_.colors.Mark(which);
            }
        }
        return sample % 2 != 0 ? std::optional(frame_.colors.alternate) : std::nullopt;
    }

    void DrawRow(int y, std::int64_t row, std::int64_t sample, std::int64_t previous, bool valid) {
        const auto color = RowColor(sample);
        const QRect numberCell(1, y, frame_.sampleColumn - 1, stateRowPitch - 1);
        painter_.setClipping(false);
        if (color) {
            painter_.fillRect(numberCell, ColorOf(*color));
        }
        painter_.setPen(lineColor);
        DrawCellText(painter_, numberCell,
                     QString::number(frame_.document.FirstSampleNumber(frame_.zoom) + sample),
                     CellAlign::Center, false);
        if (!valid) {
            return;
        }
        ClipToColumns();
        for (const TableColumn& column : columns_) {
            const QRect cell(column.left + 1, y, column.width - 1, stateRowPitch - 1);
            if (color) {
                painter_.fillRect(cell, ColorOf(*color));
            }
            DrawCell(cell, frame_.list[column.signal], row, sample, previous);
        }
    }

    void DrawCell(const QRect& cell, const CSignal& signal, std::int64_t row, std::int64_t sample,
                  std::int64_t previous) {
        painter_.setPen(ColorOf(signal.color));
        const bool left = IsLeftAligned(signal);
        const bool isAccum = signal.decoded && signal.decoded->decodeKind == DecodeKind::Accum;
        const std::string text =
            isAccum ? accumulated_.At(sample) : CellText(frame_, signal, sample, previous);
        DrawCellText(painter_, cell.adjusted(2, 0, -2, 0), ToQt(text),
                     left ? CellAlign::Left : CellAlign::Center, left);
        if (signal.decoded && signal.decoded->decodeKind == DecodeKind::Delta) {
            DrawDelta(cell, row, sample);
        }
    }

    /// Marks of trigger and markers in the DELTA column, and the span between the markers.
    void DrawDelta(const QRect& cell, std::int64_t row, std::int64_t sample) {
        const auto marker = [&](int which) { return frame_.document.Marker(which, frame_.zoom); };
        const int cy = cell.top() + cell.height() / 2;
        const int top = cy - glyphHalf;
        const auto xAt = [&](int k) { return cell.left() + cell.width() * k / 6; };
        const bool isTrigger = marker(0) == sample;
        int k = 3;
        if (isTrigger) {
            DrawMarkerGlyph(painter_, 0, xAt(k), top);
            k = 1;
        }
        if (marker(1) == sample) {
            DrawMarkerGlyph(painter_, 1, xAt(k), top);
            k = isTrigger ? 5 : 1;
        }
        if (marker(2) == sample) {
            DrawMarkerGlyph(painter_, 2, xAt(k), top);
        }
        const bool marked = isTrigger || marker(1) == sample || marker(2) == sample;
        if (!marked && marker(1) != -1 && marker(2) != -1) {
            DrawSpan(cell, row, sample);
        }
    }

    void DrawSpan(const QRect& cell, std::int64_t row, std::int64_t sample) {
        const std::int64_t first = frame_.document.Marker(1, frame_.zoom);
        const std::int64_t second = frame_.document.Marker(2, frame_.zoom);
        const std::int64_t middle = (frame_.document.SampleToRow(first, frame_.zoom) +
                                     frame_.document.SampleToRow(second, frame_.zoom)) /
                                    2;
        if (row == middle) {
            DrawCellText(painter_, cell, ToQt(TimeBetween(first, second, frame_.list, frame_.zoom)),
                         CellAlign::Center, false);
        } else if (sample > std::min(first, second) && sample < std::max(first, second)) {
            Line(cell.center().x(), cell.top(), 1, stateRowPitch); // meets that of the next row
        }
    }

    QPainter& painter_;
    const StateFrame& frame_;
    AccumulatedTimes accumulated_;
    const std::vector<TableColumn> columns_;
    std::optional<std::int64_t> firstMissing_;
};

} // namespace

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
            sum += timeOf(at);
        }
        sums_.push_back(sum);
    }
    if (sample != lastSample_) {
        // Rows follow one another, so most sums go on from the one before.
        const std::int64_t kept = sample / span * span;
        const bool goesOn = lastSample_ >= kept && lastSample_ < sample;
        std::int64_t sum = goesOn ? lastSum_ : sums_[static_cast<std::size_t>(sample / span)];
        for (std::int64_t at = (goesOn ? lastSample_ : kept) + 1; at <= sample; ++at) {
            sum += timeOf(at);
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

std::string CellText(const StateFrame& frame, const CSignal& signal, std::int64_t sample,
                     std::int64_t previous) {
    if (!signal.decoded) {
        return BusOrBitText(signal, sample, frame.zoom);
    }
    const char* label = signal.Label(static_cast<std::size_t>(sample));
    switch (signal.decoded->decodeKind) {
    case DecodeKind::Delta:
        return {};
    case DecodeKind::Accum:
        return AccumulatedTime(frame, sample);
    case DecodeKind::Label:
        return label == nullptr ? "" : label;
    case DecodeKind::Time:
        if (!frame.zoom && frame.document.IsFiltered()) {
            return TimeBetween(sample, previous, frame.list, frame.zoom);
        }
        break;
    default:
        break;
    }
    const auto record = frame.document.GetSample(sample, frame.zoom);
    return !record ? ""
                   : FormatDecodedValue(frame.board, signal, sample,
                                        frame.document.FirstSampleNumber(frame.zoom),
                                        *signal.decoded, label, *record, frame.zoom);
}

void DrawStateHeader(QPainter& painter, const StateFrame& frame) {
    Drawing(painter, frame).DrawHeaderOnly();
}

std::optional<std::int64_t> DrawState(QPainter& painter, const StateFrame& frame) {
    return Drawing(painter, frame).Draw();
}

} // namespace busquill
