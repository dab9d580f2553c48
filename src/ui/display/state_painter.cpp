#include "ui/display/state_painter.h"

#include "capture/trace_document.h"
#include "signals/cell_text.h"
#include "signals/value_text.h"
#include "ui/display/marker_glyphs.h"
#include "ui/display/state_geometry.h"
#include "ui/framework/painting.h"

#include <QPainter>

#include <algorithm>
#include <utility>
#include <vector>

namespace busquill {

namespace {

constexpr std::uint32_t black = 0;

bool IsLeftAligned(const CSignal& signal) {
    return signal.decoded && signal.decoded->name == "RULE CHECK";
}

QString ToQt(const std::string& text) {
    return QString::fromStdString(text);
}

bool IsKind(const CSignal& signal, DecodeKind kind) {
    return signal.decoded && signal.decoded->decodeKind == kind;
}

/// The columns of a frame in the units of its device. Their left edges are scaled, so that the
/// fractions of their widths do not add up.
TableColumns ScaledColumns(const StateFrame& frame) {
    const DrawStyle& style = frame.style.draw;
    std::vector<int> widths = ColumnWidths(frame.list);
    double left = frame.sampleColumn + 1;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        if (widths[i] < 1 || i < frame.firstColumn || i >= frame.endColumn) {
            widths[i] = 0;
            continue;
        }
        const double right = left + widths[i];
        widths[i] = style.Length(right) - style.Length(left);
        left = right;
    }
    return {std::move(widths), style.Length(frame.sampleColumn), frame.offset, frame.size.width()};
}

class Drawing {
public:
    Drawing(QPainter& painter, const StateFrame& frame)
        : painter_(painter), frame_(frame), style_(frame.style.draw),
          columns_(ScaledColumns(frame)), visible_(columns_.Visible()), times_(frame) {}

    std::optional<std::int64_t> Draw() {
        Fill(QRect(QPoint(0, 0), frame_.size), frame_.colors.background);
        DrawHeader();
        painter_.setClipping(false);
        DrawRows();
        return firstMissing_;
    }

    void DrawHeaderOnly() {
        painter_.setClipping(false);
        Fill({0, 0, frame_.size.width(), frame_.style.headerLine}, frame_.colors.background);
        DrawHeader();
    }

private:
    /// The colour of text or a line on a ground.
    [[nodiscard]] QColor Ink(std::uint32_t color, std::uint32_t ground) const {
        return style_.Color(ColorOf(frame_.colors.Ink(color, ground)));
    }

    void Fill(const QRect& place, std::uint32_t color) {
        if (style_.fills) {
            painter_.fillRect(place, ColorOf(color));
        }
    }

    void ClipToColumns() {
        const int left = columns_.fixedColumn + 1;
        painter_.setClipRect(QRect(left, 0, frame_.size.width() - left, frame_.size.height()));
    }

    void DrawHeader() {
        DrawTableHeader(painter_, {frame_.list, columns_, frame_.size.height(), "SAMPLE",
                                   ColorOf(frame_.colors.background),
                                   Ink(black, frame_.colors.background), frame_.style});
    }

    void DrawRows() {
        painter_.setFont(frame_.style.fonts.body);
        std::int64_t row = frame_.topRow;
        std::int64_t previous = 0;
        for (int y = frame_.style.FirstRow(); y < frame_.size.height() && row < EndRow();
             y += frame_.style.rowPitch, ++row) {
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

    [[nodiscard]] std::int64_t EndRow() const {
        return std::min(frame_.document.RowCount(frame_.zoom), frame_.endRow);
    }

    /// The colour of a row's stripe, if it has one. It depends on the sample, so that a filter does
    /// not change it.
    [[nodiscard]] std::optional<std::uint32_t> RowColor(std::int64_t sample) const {
        for (int which = 0; which < 3; ++which) {
            if (frame_.document.Marker(which, frame_.zoom) == sample) {
                return frame_.colors.Mark(which);
            }
        }
        const auto usual = sample % 2 != 0 ? std::optional(frame_.colors.alternate) : std::nullopt;
        return IsMarked(sample) ? MarkedGround(usual.value_or(frame_.colors.background)) : usual;
    }

    /// Paper shows neither marked samples nor bookmarks.
    [[nodiscard]] bool IsMarked(std::int64_t sample) const {
        const auto& marked = frame_.document.MarkedSamples();
        return style_.fills && !frame_.zoom && marked && sample >= marked->first &&
               sample <= marked->last;
    }

    [[nodiscard]] bool HasBookmark(std::int64_t sample) const {
        return style_.fills && !frame_.zoom &&
               frame_.document.GetBookmarks().contains(frame_.document.FirstSampleNumber(false) +
                                                       sample);
    }

    void DrawRow(int y, std::int64_t row, std::int64_t sample, std::int64_t previous, bool valid) {
        const auto color = RowColor(sample);
        const QRect numberCell(1, y, columns_.fixedColumn - 1, frame_.style.rowText);
        painter_.setClipping(false);
        if (color) {
            Fill(numberCell, *color);
        }
        const std::uint32_t ground = color.value_or(frame_.colors.background);
        if (HasBookmark(sample)) {
            DrawBookmarkCorner(painter_, numberCell, ColorOf(BookmarkOn(ground)));
        }
        painter_.setPen(Ink(black, ground));
        DrawCellText(painter_, numberCell,
                     QString::number(frame_.document.FirstSampleNumber(frame_.zoom) + sample),
                     CellAlign::Center, true);
        if (!valid) {
            return;
        }
        const RowTexts texts(frame_, times_, sample, previous);
        ClipToColumns();
        for (const TableColumn& column : visible_) {
            const QRect cell = column.Cell(y, frame_.style.rowText);
            if (color) {
                Fill(cell, *color);
            }
            DrawCell(cell, frame_.list[column.signal], ground, row, sample, texts);
        }
    }

    void DrawCell(const QRect& cell, const CSignal& signal, std::uint32_t ground, std::int64_t row,
                  std::int64_t sample, const RowTexts& texts) {
        painter_.setPen(Ink(signal.color, ground));
        // A value without its sign or its first digits could be mistaken for another one.
        DrawCellText(painter_, cell.adjusted(style_.Length(2), 0, -style_.Length(2), 0),
                     ToQt(texts.Of(signal)),
                     IsLeftAligned(signal) ? CellAlign::Left : CellAlign::Center, true);
        if (IsKind(signal, DecodeKind::Delta)) {
            DrawDelta(cell, row, sample, Ink(black, ground));
        }
    }

    /// Draws the symbols of trigger and markers in the DELTA column, and the span between the
    /// markers.
    void DrawDelta(const QRect& cell, std::int64_t row, std::int64_t sample, const QColor& ink) {
        const auto marker = [&](int which) { return frame_.document.Marker(which, frame_.zoom); };
        const int cy = cell.top() + cell.height() / 2;
        const int half = GlyphSide(style_) / 2;
        const int top = cy - half;
        const auto xAt = [&](int k) { return cell.left() + cell.width() * k / 6; };
        const bool isTrigger = marker(0) == sample;
        int k = 3;
        if (isTrigger) {
            DrawMarkerGlyph(painter_, style_, 0, xAt(k), top, 2 * half, ink);
            k = 1;
        }
        if (marker(1) == sample) {
            DrawMarkerGlyph(painter_, style_, 1, xAt(k), top, 2 * half, ink);
            k = isTrigger ? 5 : 1;
        }
        if (marker(2) == sample) {
            DrawMarkerGlyph(painter_, style_, 2, xAt(k), top, 2 * half, ink);
        }
        const bool marked = isTrigger || marker(1) == sample || marker(2) == sample;
        if (!marked && marker(1) != -1 && marker(2) != -1) {
            DrawSpan(cell, row, sample, ink);
        }
    }

    void DrawSpan(const QRect& cell, std::int64_t row, std::int64_t sample, const QColor& ink) {
        const std::int64_t first = frame_.document.Marker(1, frame_.zoom);
        const std::int64_t second = frame_.document.Marker(2, frame_.zoom);
        const std::int64_t middle = (frame_.document.SampleToRow(first, frame_.zoom) +
                                     frame_.document.SampleToRow(second, frame_.zoom)) /
                                    2;
        if (row == middle) {
            DrawCellText(painter_, cell, ToQt(TimeBetween(first, second, frame_.list, frame_.zoom)),
                         CellAlign::Center, true);
        } else if (sample > std::min(first, second) && sample < std::max(first, second)) {
            // Joins the line of the next row.
            painter_.fillRect(cell.center().x(), cell.top(), style_.line, frame_.style.rowPitch,
                              ink);
        }
    }

    QPainter& painter_;
    const StateFrame& frame_;
    const DrawStyle style_;
    const TableColumns columns_;
    const std::vector<TableColumn> visible_;
    FrameTimes times_;
    std::optional<std::int64_t> firstMissing_;
};

} // namespace

StateStyle ScreenState(const TableFonts& fonts) {
    return {{fonts, {}}, stateRowPitch, stateRowPitch - 1};
}

StateStyle PaperState(double scale) {
    const DrawStyle draw = PaperStyle(scale);
    const int pitch = draw.Size(14);
    return {{{FontOfCellHeight(pitch, QFont::Normal, FontFace::Fixed),
              FontOfCellHeight(draw.Size(15), QFont::Bold, FontFace::Proportional)},
             draw,
             std::max(draw.Length(18) - draw.line, 0)},
            pitch,
            pitch};
}

FrameTimes::FrameTimes(const StateFrame& frame)
    : frame_(frame), trigger_(frame.document.Marker(0, frame.zoom)) {
    for (const auto& signal : frame.list.All()) {
        const bool shown = signal->VisibleWidth() > 0;
        showsAccum_ = showsAccum_ || (shown && IsKind(*signal, DecodeKind::Accum));
        showsTime_ = showsTime_ || (shown && IsKind(*signal, DecodeKind::Time));
    }
}

RowTimes FrameTimes::At(std::int64_t sample, std::int64_t above) const {
    RowTimes times;
    times.rowsLeftOut = !frame_.zoom && frame_.document.IsFiltered();
    if (showsTime_ && times.rowsLeftOut) {
        times.sinceAbove = TimeBetween(sample, above, frame_.list, frame_.zoom);
    }
    const auto sinceTrigger = showsAccum_ ? frame_.list.TimeFrom(trigger_, sample) : std::nullopt;
    if (sinceTrigger) {
        times.sinceTrigger = FormatTimeSince(*sinceTrigger, sample < trigger_, frame_.zoom);
    }
    return times;
}

RowTexts::RowTexts(const StateFrame& frame, const FrameTimes& times, std::int64_t sample,
                   std::int64_t above)
    : frame_(frame), record_(frame.document.GetSample(sample, frame.zoom)),
      listed_{static_cast<std::size_t>(sample),
              frame.document.FirstSampleNumber(frame.zoom) + sample, record_ ? &*record_ : nullptr,
              times.At(sample, above)} {}

void DrawStateHeader(QPainter& painter, const StateFrame& frame) {
    Drawing(painter, frame).DrawHeaderOnly();
}

std::optional<std::int64_t> DrawState(QPainter& painter, const StateFrame& frame) {
    return Drawing(painter, frame).Draw();
}

} // namespace busquill
