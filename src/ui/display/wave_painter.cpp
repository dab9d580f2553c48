#include "ui/display/wave_painter.h"

#include "capture/trace_document.h"
#include "signals/cell_text.h"
#include "ui/display/band_values.h"
#include "ui/display/marker_glyphs.h"
#include "ui/framework/painting.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace busquill {

namespace {

constexpr int railInset = 2; // pixels from a band's edges to its high and low level
constexpr int tickHeight = 7;
constexpr int spanMargin = 10; // free pixels around the text between the markers
constexpr int spanLift = 4;    // pixels of the line between them above the glyphs, on paper
constexpr std::uint32_t black = 0;
constexpr std::uint32_t white = 0xFFFFFF;

/// Rectangles of one colour, drawn in one call. A rectangle that continues the previous one to the
/// right is merged with it, so that a busy line costs no more than a block.
class Strokes {
public:
    void Add(int x, int y, int width, int height) {
        if (width < 1 || height < 1) {
            return;
        }
        if (!rects_.isEmpty()) {
            QRect& last = rects_.last();
            if (last.top() == y && last.height() == height && x >= last.left() &&
                x <= last.right() + 1) {
                last.setRight(std::max(last.right(), x + width - 1));
                return;
            }
        }
        rects_.append(QRect(x, y, width, height));
    }
    void Draw(QPainter& painter, const QColor& color) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawRects(rects_);
        rects_.clear();
    }

private:
    QList<QRect> rects_;
};

QRect LineInBand(const QRect& band, int lineHeight) {
    return {band.left(), band.top() + (band.height() - lineHeight) / 2, band.width(), lineHeight};
}

/// Texts in the runs of a band. The font has a fixed pitch, so the number of characters that fit is
/// found by a division.
class RunTexts {
public:
    RunTexts(QPainter& painter, const QFont& font)
        : painter_(painter), metrics_(font),
          pitch_(QFontMetricsF(font).horizontalAdvance("0000000000") / 10) {}

    /// Whether anything of a text shows in a run of `width` pixels.
    [[nodiscard]] bool ShowsAnything(int width) const { return width >= pitch_; }
    [[nodiscard]] int SmallestWidth() const { return static_cast<int>(std::ceil(pitch_)); }

    void Draw(int left, int width, int top, const std::string& text) {
        const auto room = static_cast<std::size_t>(width / pitch_);
        QString shown = QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
        if (text.size() > room) {
            shown.truncate(static_cast<qsizetype>(room) - 1);
            shown.append(QChar(0x2026));
        }
        const qreal x = left + (width - static_cast<qreal>(shown.size()) * pitch_) / 2;
        painter_.drawText(QPointF(std::floor(x), top + metrics_.ascent()), shown);
    }

private:
    QPainter& painter_;
    const QFontMetricsF metrics_;
    const qreal pitch_;
};

class WaveDrawing {
public:
    WaveDrawing(QPainter& painter, const WaveFrame& frame)
        : painter_(painter), frame_(frame), scale_(frame.Scale()), style_(frame.style.draw),
          headerLine_(frame.style.HeaderLine()), firstBand_(frame.style.FirstBand()),
          bands_(Bands(frame)),
          samples_(frame.document, frame.isZoom, frame.place.row, frame.DrawnSamples()),
          bodyHeight_(QFontMetrics(frame.style.body).height()),
          line_(style_.Color(ColorOf(frame.colors.Ink(black, frame.colors.background)))) {}

    void DrawTitles() {
        const int valueLeft = frame_.Names();
        const int waveLeft = frame_.Names() + frame_.Values();
        painter_.setClipping(false);
        Fill({0, 0, waveLeft, firstBand_}, Background());
        painter_.fillRect(0, headerLine_, frame_.size.width(), style_.line, line_);
        painter_.setFont(frame_.style.title);
        painter_.setPen(line_);
        DrawCellText(painter_, QRect(QPoint(1, 0), QPoint(valueLeft - 1, headerLine_ - 1)),
                     "Signal", CellAlign::Center, true);
        DrawCellText(painter_,
                     QRect(QPoint(valueLeft + 1, 0), QPoint(waveLeft - 1, headerLine_ - 1)),
                     "Value", CellAlign::Center, true);
        VerticalLine(valueLeft, 0, frame_.size.height(), line_);
        VerticalLine(waveLeft, 0, frame_.size.height(), line_);
    }

    void DrawNames() {
        const QRect column(0, firstBand_, frame_.Names(), frame_.size.height() - firstBand_);
        painter_.setClipRect(column);
        Fill(column, Background());
        painter_.setFont(frame_.style.name);
        for (const WaveBand& band : bands_) {
            const CSignal& signal = frame_.list[band.signal];
            const QRect cell(0, band.top, column.width(), band.height);
            Fill(cell, signal.selected ? QColor(Qt::white) : Background());
            if (style_.edges) {
                DrawEdge(painter_, cell, signal.selected ? Edge::Sunken : Edge::Raised);
            }
            painter_.setPen(signal.selected && style_.fills ? QColor(Qt::black) : line_);
            DrawCentered(cell.adjusted(1, 1, -1, -1), QString::fromStdString(signal.RowName()),
                         true);
        }
        Frame();
    }

    void DrawValues() {
        const QRect column(frame_.Names() + 1, firstBand_, frame_.Values() - 1,
                           frame_.size.height() - firstBand_);
        painter_.setClipRect(column);
        Fill(column, Background());
        const std::int64_t marker = frame_.document.Marker(1, frame_.isZoom);
        const bool isSet = marker >= 0 && marker < frame_.document.SampleCount(frame_.isZoom) &&
                           frame_.document.IsValidSample(marker, frame_.isZoom);
        painter_.setFont(frame_.style.body);
        for (const WaveBand& band : bands_) {
            const CSignal& signal = frame_.list[band.signal];
            const QRect cell(column.left(), band.top, column.width(), band.height);
            FillBand(band, cell.left(), cell.width());
            if (isSet && HasData(signal)) {
                painter_.setPen(style_.Color(InkOf(signal, band)));
                DrawCentered(
                    cell.adjusted(1, 0, -1, 0),
                    QString::fromStdString(BandText(samples_, frame_.board, signal, marker)),
                    false);
            }
        }
        Frame();
    }

    std::optional<std::int64_t> DrawWaves() {
        const QRect area(frame_.WaveLeft(), 0, frame_.size.width() - frame_.WaveLeft(),
                         frame_.size.height());
        painter_.setClipRect(area);
        Fill(area, Background());
        const auto missing = samples_.FirstMissing();
        const QRect belowHeader = area.adjusted(0, firstBand_, 0, 0);
        painter_.setClipRect(belowHeader);
        const QRect marked = MarkedPart(belowHeader);
        Fill(marked, ColorOf(MarkedGround(frame_.colors.background)));
        for (const WaveBand& band : bands_) {
            FillBand(band, area.left(), area.width());
            if (band.signal % 2 != 0) {
                Fill({marked.left(), band.top, marked.width(), band.height},
                     ColorOf(MarkedGround(frame_.colors.alternate)));
            }
            const CSignal& signal = frame_.list[band.signal];
            if (!missing && samples_.count > 0 && HasData(signal)) {
                DrawSignal(signal, band);
            }
        }
        painter_.setClipRect(area);
        painter_.fillRect(area.left(), headerLine_, area.width(), style_.line, line_);
        DrawTimeMarks();
        Frame();
        return missing;
    }

private:
    [[nodiscard]] QColor Background() const { return ColorOf(frame_.colors.background); }
    /// The colour of a signal on its band.
    [[nodiscard]] QColor InkOf(const CSignal& signal, const WaveBand& band) const {
        const DisplayColors& colors = frame_.colors;
        const std::uint32_t ground = !style_.fills          ? white // paper
                                     : band.signal % 2 != 0 ? colors.alternate
                                                            : colors.background;
        return ColorOf(colors.Ink(signal.color, ground));
    }

    [[nodiscard]] static std::vector<WaveBand> Bands(const WaveFrame& frame) {
        std::vector<int> heights = BandHeights(frame.list, frame.style.draw);
        heights.resize(std::min(heights.size(), frame.endSignal));
        return VisibleBands(heights, frame.top, frame.size.height(), frame.style.FirstBand());
    }

    void Fill(const QRect& place, const QColor& color) {
        if (style_.fills) {
            painter_.fillRect(place, color);
        }
    }
    void VerticalLine(int x, int top, int bottom, const QColor& color) {
        painter_.fillRect(x, top, style_.line, bottom - top, color);
    }

    /// Draws the lines at the right and the bottom of a window; a page has a frame of its own.
    void Frame() {
        if (!style_.edges) {
            return;
        }
        const int right = frame_.size.width() - 1;
        const int bottom = frame_.size.height() - 1;
        VerticalLine(right, 0, bottom + 1, line_);
        painter_.fillRect(0, bottom, right + 1, 1, line_);
    }

    /// The part of the waves that shows marked samples; empty if none does.
    [[nodiscard]] QRect MarkedPart(const QRect& waves) const {
        const auto& marked = frame_.document.MarkedSamples();
        if (!marked || frame_.isZoom || samples_.count == 0) {
            return {};
        }
        std::int64_t first = frame_.document.SampleToRow(marked->first, false);
        if (frame_.document.RowToSample(first, false) < marked->first) {
            ++first; // a filter hides it
        }
        const std::int64_t end = frame_.document.SampleToRow(marked->last, false) + 1;
        if (end <= std::max(first, frame_.place.row)) {
            return {};
        }
        const auto xOf = [&](std::int64_t row) {
            return scale_.XOf(std::clamp<std::int64_t>(row - frame_.place.row, 0, samples_.count));
        };
        const int left = xOf(first);
        const int least = first - frame_.place.row < samples_.count ? 1 : 0;
        return {left, waves.top(), std::max(xOf(end) - left, least), waves.height()};
    }

    /// Stripes depend on the signal, so that they scroll with it.
    void FillBand(const WaveBand& band, int left, int width) {
        if (band.signal % 2 != 0) {
            Fill({left, band.top, width, band.height}, ColorOf(frame_.colors.alternate));
        }
    }

    void DrawCentered(const QRect& cell, const QString& text, bool ellipsis) {
        DrawCellText(painter_, LineInBand(cell, painter_.fontMetrics().height()), text,
                     CellAlign::Center, ellipsis);
    }

    [[nodiscard]] int Inset() const { return style_.Length(railInset); }
    [[nodiscard]] static bool HasData(const CSignal& signal) {
        return signal.numSamples != 0 && !signal.IsBlank();
    }

    void DrawSignal(const CSignal& signal, const WaveBand& band) {
        if (signal.IsGroupStart()) {
            DrawBus(signal, band);
        } else {
            DrawBit(signal, band);
        }
        strokes_.Draw(painter_, InkOf(signal, band));
        if (signal.showValue) {
            DrawRuns(signal, band);
        }
    }

    [[nodiscard]] static BandValues::Kind TickKind(const CSignal& signal) {
        const bool isSample = signal.decoded && signal.decoded->decodeKind == DecodeKind::Sample;
        return isSample ? BandValues::Kind::Each : BandValues::Kind::Bytes;
    }

    /// Draws two rails, and a tick between them where the value changes.
    void DrawBus(const CSignal& signal, const WaveBand& band) {
        const int high = band.top + Inset();
        const int low = band.top + band.height - Inset();
        const int end = scale_.EndOf(frame_.EndRow() - frame_.place.row, frame_.Visible());
        strokes_.Add(scale_.left, high, end - scale_.left, style_.line);
        strokes_.Add(scale_.left, low, end - scale_.left, style_.line);
        const BandValues values(samples_, frame_.board, signal, TickKind(signal));
        std::int64_t k = values.NextChange(0);
        while (k < samples_.count) {
            const int x = scale_.XOf(k);
            strokes_.Add(x, high, style_.line, low - high + style_.line);
            // Skips further changes in the same pixel: the tick is already there.
            k = values.NextChange(std::max(k, scale_.FirstAfter(x) - 1));
        }
    }

    /// Draws a level up to each change, and an edge to the other level there.
    void DrawBit(const CSignal& signal, const WaveBand& band) {
        const int high = band.top + Inset();
        const int low = band.top + band.height - Inset();
        const BandValues values(samples_, frame_.board, signal, BandValues::Kind::Bit);
        const auto levelOf = [&](std::int64_t k) { return values.Bit(k) ? high : low; };
        std::int64_t k = 0;
        int x = scale_.left;
        while (true) {
            const int level = levelOf(k);
            k = values.NextChange(k);
            const int next = scale_.XOf(k);
            if (next - x > style_.line || x == scale_.left ||
                k >= samples_.count) { // else edges touch
                strokes_.Add(x, level, next - x + (k < samples_.count ? style_.line : 0),
                             style_.line);
            }
            if (k >= samples_.count) {
                return;
            }
            strokes_.Add(next, high, style_.line, low - high + style_.line);
            // Further edges in the same pixel fall on the same line: only the level after them
            // counts.
            k = std::clamp(scale_.FirstAfter(next) - 1, k, samples_.count - 1);
            x = next;
        }
    }

    /// Draws the values in the runs of equal samples.
    void DrawRuns(const CSignal& signal, const WaveBand& band) {
        painter_.setFont(frame_.style.body);
        painter_.setPen(style_.Color(InkOf(signal, band)));
        RunTexts texts(painter_, frame_.style.body);
        const BandValues values(samples_, frame_.board, signal, BandValues::KindOf(signal));
        const QRect line = LineInBand(QRect(0, band.top, 1, band.height), bodyHeight_);
        // Shorter runs show no text, so runs that share a pixel are skipped.
        const std::int64_t shortest =
            scale_.zoom < 0 ? std::int64_t{texts.SmallestWidth()} * -scale_.zoom : 1;
        for (std::int64_t k = 0; k < samples_.count;) {
            const std::int64_t next = values.NextChange(k);
            const int left = scale_.XOf(k);
            const int right = next < samples_.count ? scale_.XOf(next) - 1
                                                    : std::min(scale_.XOf(next), scale_.right);
            if (texts.ShowsAnything(right - left)) {
                const std::string text =
                    BandText(samples_, frame_.board, signal, samples_.SampleOf(k));
                if (text.find_first_not_of(' ') != std::string::npos) {
                    texts.Draw(left + 1, right - left, line.top(), text);
                }
                k = next;
            } else if (next < samples_.count && shortest > 1) {
                k = values.LastChange(next, std::min(next + shortest, samples_.count) - 1);
            } else {
                k = next;
            }
        }
    }

    // Ticks, the marks of trigger and markers, and the time between the markers.

    void DrawTimeMarks() {
        const int ticks = scale_.TickCount();
        for (int i = 0; i < ticks; ++i) {
            const int height = style_.Length(tickHeight);
            strokes_.Add(scale_.left + i * scale_.TickStep(), headerLine_ - height, style_.line,
                         height);
        }
        strokes_.Draw(painter_, line_);
        if (frame_.EndRow() <= frame_.place.row) {
            return;
        }
        lastRow_ = std::min(frame_.place.row + scale_.TickedRows(), frame_.EndRow() - 1);
        DrawBookmarks();
        for (int which = 0; which < 3; ++which) {
            DrawMark(which);
        }
        DrawSpan();
    }

    /// Flags with dashed lines, below all other marks. Paper shows none.
    void DrawBookmarks() {
        if (frame_.isZoom || !style_.fills) {
            return;
        }
        const CTesselDoc& document = frame_.document;
        const QColor color = ColorOf(BookmarkOn(frame_.colors.background));
        const std::int64_t first = document.FirstSampleNumber(false);
        const Bookmarks& all = document.GetBookmarks();
        const auto end = all.upper_bound(first + LastSample());
        int before = -1;
        for (auto each = all.lower_bound(first + FirstSample()); each != end; ++each) {
            const std::int64_t sample = each->first - first;
            const std::int64_t row = document.SampleToRow(sample, false);
            const auto x = static_cast<int>(scale_.MarkOf(row - frame_.place.row));
            if (document.IsRowSample(sample, false) && x > before && x >= scale_.left &&
                x < scale_.right - 1) {
                DrawBookmarkFlag(painter_, x, headerLine_, color);
                constexpr int dash = 4;
                for (int y = firstBand_; y < frame_.size.height() - 1; y += 2 * dash) {
                    strokes_.Add(x, y, 1, dash);
                }
                before = x;
            }
        }
        strokes_.Draw(painter_, color);
    }

    [[nodiscard]] int GlyphTop() const { return headerLine_ / 2 - GlyphSide(style_) / 2; }
    [[nodiscard]] std::int64_t Mark(int which) const {
        return frame_.document.Marker(which, frame_.isZoom);
    }
    [[nodiscard]] std::int64_t FirstSample() const { return samples_.SampleOf(0); }
    [[nodiscard]] std::int64_t LastSample() const {
        return frame_.document.RowToSample(lastRow_, frame_.isZoom);
    }

    /// The pixel at which a sample among those displayed has its mark.
    [[nodiscard]] int XOfMark(std::int64_t sample) const {
        std::int64_t row = frame_.place.row;
        while (row < lastRow_ && frame_.document.RowToSample(row, frame_.isZoom) < sample) {
            ++row;
        }
        return static_cast<int>(
            std::min<std::int64_t>(scale_.MarkOf(row - frame_.place.row), scale_.right));
    }

    void DrawMark(int which) {
        const std::int64_t sample = Mark(which);
        if (sample == -1 || sample <= FirstSample() || sample > LastSample()) {
            return;
        }
        const int x = XOfMark(sample);
        if (x >= scale_.right - 1) {
            return;
        }
        DrawMarkerGlyph(painter_, style_, which, x, GlyphTop(), GlyphSide(style_), line_);
        VerticalLine(x, firstBand_, frame_.size.height() - 1,
                     style_.Color(ColorOf(frame_.colors.Mark(which))));
    }

    enum class Side { Left, Inside, Right };

    [[nodiscard]] Side SideOf(std::int64_t sample) const {
        return sample < FirstSample()                                         ? Side::Left
               : sample > LastSample() || XOfMark(sample) >= scale_.right - 1 ? Side::Right
                                                                              : Side::Inside;
    }
    [[nodiscard]] int EndOf(std::int64_t sample, Side side) const {
        return side == Side::Left    ? scale_.left
               : side == Side::Right ? scale_.right - 1
                                     : std::max(XOfMark(sample), scale_.left);
    }

    /// Draws a line between the markers with the time between them; a marker outside the window
    /// counts as at the edge.
    void DrawSpan() {
        const std::int64_t first = Mark(1);
        const std::int64_t second = Mark(2);
        if (first == -1 || second == -1) {
            return;
        }
        const Side side1 = SideOf(first);
        const Side side2 = SideOf(second);
        if (side1 == side2 && side1 != Side::Inside) {
            return;
        }
        const auto [left, right] = std::minmax({EndOf(first, side1), EndOf(second, side2)});
        const bool isPaper = !style_.fills;
        const int lineTop = GlyphTop() - (isPaper ? spanLift * style_.line : 0);
        painter_.fillRect(left, lineTop, right - left, style_.line, line_);
        const QString text =
            QString::fromStdString(TimeBetween(first, second, frame_.list, frame_.isZoom));
        painter_.setFont(frame_.style.body);
        const int width = painter_.fontMetrics().horizontalAdvance(text);
        if (text.isEmpty() || width + spanMargin * style_.line >= right - left) {
            return;
        }
        const QRect line = LineInBand(
            QRect(QPoint(left + (right - left - width) / 2, isPaper ? 2 * style_.line : -2),
                  QPoint(left + (right - left - width) / 2 + width - 1, headerLine_ - 1)),
            bodyHeight_);
        painter_.fillRect(line.adjusted(-1, 0, 1, 0), isPaper ? QColor(Qt::white) : Background());
        painter_.setPen(line_);
        DrawCellText(painter_, line, text, CellAlign::Center, false);
    }

    QPainter& painter_;
    const WaveFrame& frame_;
    const WaveScale scale_;
    const DrawStyle style_;
    const int headerLine_;
    const int firstBand_;
    const std::vector<WaveBand> bands_;
    const BandSamples samples_;
    const int bodyHeight_;
    const QColor line_;        // of everything but the signals
    std::int64_t lastRow_ = 0; // the last row that the ticks cover
    Strokes strokes_;
};

} // namespace

std::int64_t WaveFrame::DrawnSamples() const {
    return std::clamp<std::int64_t>(EndRow() - place.row, 0, Scale().Count());
}

std::int64_t WaveFrame::EndRow() const {
    return lastRow < document.RowCount(isZoom) ? lastRow + 1 : document.RowCount(isZoom);
}

WaveStyle PaperWaves(double scale) {
    const auto font = [](double height, QFont::Weight weight, FontFace face) {
        return FontOfCellHeight(std::max(static_cast<int>(height), 1), weight, face);
    };
    return {font((scale - 0.3) * 14, QFont::Normal, FontFace::Fixed),
            font((scale - 0.2) * 16, QFont::Bold, FontFace::Proportional),
            font((scale - 0.2) * 15, QFont::Bold, FontFace::Proportional), PaperStyle(scale)};
}

std::vector<int> BandHeights(const CSignalList& list, const DrawStyle& style) {
    std::vector<int> heights;
    heights.reserve(list.Size());
    for (const auto& signal : list.All()) {
        heights.push_back(style.Length(signal->VisibleHeight()));
    }
    return heights;
}

void DrawWaveTitles(QPainter& painter, const WaveFrame& frame) {
    WaveDrawing(painter, frame).DrawTitles();
}

void DrawWaveNames(QPainter& painter, const WaveFrame& frame) {
    WaveDrawing(painter, frame).DrawNames();
}

void DrawWaveValues(QPainter& painter, const WaveFrame& frame) {
    WaveDrawing(painter, frame).DrawValues();
}

std::optional<std::int64_t> DrawWaves(QPainter& painter, const WaveFrame& frame) {
    return WaveDrawing(painter, frame).DrawWaves();
}

std::optional<std::int64_t> DrawWaveFrame(QPainter& painter, const WaveFrame& frame) {
    WaveDrawing drawing(painter, frame);
    drawing.DrawTitles();
    drawing.DrawNames();
    const auto missing = drawing.DrawWaves();
    drawing.DrawValues();
    return missing;
}

} // namespace busquill
