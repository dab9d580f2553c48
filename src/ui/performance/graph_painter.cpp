#include "ui/performance/graph_painter.h"

#include "ui/framework/painting.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPen>

#include <array>

namespace busquill {

namespace {

constexpr std::uint32_t background = 0xC0C0C0;
constexpr int fontHeight = 14;
constexpr int capReach = 3; // pixels on both sides of a range's line

/// The painter is as before when this goes.
class PainterState {
public:
    explicit PainterState(QPainter& painter) : painter_(painter) { painter_.save(); }
    ~PainterState() { painter_.restore(); }
    PainterState(const PainterState&) = delete;
    PainterState& operator=(const PainterState&) = delete;

private:
    QPainter& painter_;
};

/// Fills lines along the axes, so that they cover whole pixels at every scale.
class Strokes {
public:
    Strokes(QPainter& painter, QColor color, double width)
        : painter_(painter), color_(color), width_(width) {}

    /// From `left` up to but not including `right`.
    void Across(int left, int right, int y) const {
        painter_.fillRect(QRectF(left, y, right - left, width_), color_);
    }
    /// From `top` up to but not including `bottom`.
    void Down(int x, int top, int bottom) const {
        painter_.fillRect(QRectF(x, top, width_, bottom - top), color_);
    }

private:
    QPainter& painter_;
    QColor color_;
    double width_;
};

Strokes Ink(QPainter& painter, const GraphFrame& frame) {
    return {painter, frame.style.ink, frame.style.lineWidth};
}

void DrawGround(QPainter& painter, const GraphFrame& frame, const QString& title) {
    const QRect whole(QPoint(0, 0), frame.geometry.size);
    painter.setClipRect(whole, Qt::IntersectClip);
    painter.fillRect(whole, frame.style.background);
    painter.setFont(frame.style.font);
    painter.setPen(frame.style.ink);
    painter.drawText(frame.geometry.TitleRect(), Qt::AlignCenter | Qt::TextSingleLine, title);
}

void DrawAxes(QPainter& painter, const GraphFrame& frame) {
    const GraphGeometry& geometry = frame.geometry;
    const PlotArea plot = geometry.Plot();
    const Strokes ink = Ink(painter, frame);
    constexpr auto label =
        Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip;
    const int labelStep = geometry.LabelStep();
    ink.Down(plot.left, plot.top, plot.bottom);
    for (int k = 0; k < geometry.scale.ticks; ++k) {
        ink.Across(plot.left - graphTick, plot.left, geometry.TickY(k));
        if (k % labelStep == 0) {
            painter.drawText(geometry.LabelRect(k), label, QString::number(geometry.TickValue(k)));
        }
    }
    const int unitWidth = painter.fontMetrics().horizontalAdvance(frame.unit);
    painter.drawText(geometry.UnitRect(unitWidth), label, frame.unit);
    ink.Across(plot.left, plot.right, plot.bottom);
}

void DrawLine(QPainter& painter, const GraphFrame& frame, const TimeLine& line) {
    QPolygon points;
    for (const std::int32_t value : line.values) {
        points << QPoint(frame.geometry.TimeX(static_cast<int>(points.size())),
                         frame.geometry.ValueY(value));
    }
    painter.setPen(GraphPen(line.color, line.style, frame.style.lineWidth));
    if (points.size() == 1) {
        painter.drawPoint(points.front());
    } else {
        painter.drawPolyline(points);
    }
}

void DrawRange(QPainter& painter, const GraphFrame& frame, const ValueRange& range) {
    const GraphGeometry& geometry = frame.geometry;
    const Strokes strokes(painter, ColorOf(range.color), frame.style.lineWidth);
    const int x = geometry.ItemX(static_cast<int>(range.item));
    const int lowest = geometry.ValueY(range.minimum);
    const int highest = geometry.ValueY(range.maximum);
    const auto cap = [&](int y) { strokes.Across(x - capReach, x + capReach + 1, y); };
    strokes.Down(x, highest, lowest + 1);
    cap(lowest);
    cap(highest);
    if (range.average) {
        const int y = geometry.ValueY(*range.average);
        cap(y);
        cap(y + 1);
    }
}

} // namespace

int GraphStyle::LabelWidth() const {
    return QFontMetrics(font).horizontalAdvance("1000");
}

GraphStyle ScreenGraphStyle() {
    return {FontOfCellHeight(fontHeight, QFont::Normal, FontFace::Proportional),
            ColorOf(background), Qt::black, 1};
}

QPen GraphPen(std::uint32_t color, std::int32_t style, double width) {
    constexpr std::array styles = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine,
                                   Qt::DashDotDotLine};
    const bool known = style >= 0 && static_cast<std::size_t>(style) < styles.size();
    return {ColorOf(color), width, known ? styles[static_cast<std::size_t>(style)] : Qt::SolidLine,
            Qt::FlatCap};
}

void DrawTimeGraph(QPainter& painter, const GraphFrame& frame, const std::vector<TimeLine>& lines) {
    const GraphGeometry& geometry = frame.geometry;
    const PainterState state(painter);
    DrawGround(painter, frame, "Time Graph");
    if (geometry.Plot().IsEmpty()) {
        return;
    }
    DrawAxes(painter, frame);
    const int bottom = geometry.Plot().bottom;
    for (int k = 1; k <= graphPage; ++k) {
        Ink(painter, frame).Down(geometry.TimeX(k), bottom - graphTick, bottom);
    }
    for (const TimeLine& line : lines) {
        DrawLine(painter, frame, line);
    }
}

void DrawMinMaxAverageGraph(QPainter& painter, const GraphFrame& frame,
                            const std::vector<ValueRange>& ranges) {
    const PainterState state(painter);
    DrawGround(painter, frame, "Min/Max/Average Graph");
    if (frame.geometry.Plot().IsEmpty()) {
        return;
    }
    DrawAxes(painter, frame);
    for (int item = 0; item < static_cast<int>(performanceItems); ++item) {
        painter.drawText(frame.geometry.LetterRect(item), Qt::AlignCenter | Qt::TextDontClip,
                         QString(QChar('A' + item)));
    }
    for (const ValueRange& range : ranges) {
        DrawRange(painter, frame, range);
    }
}

void DrawMinMaxAveragePie(QPainter& painter, const GraphFrame& frame) {
    const PainterState state(painter);
    DrawGround(painter, frame, "Min/Max/Average Graph");
    if (frame.geometry.Plot().IsEmpty()) {
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(frame.style.ink, frame.style.lineWidth));
    painter.setBrush(Qt::NoBrush);
    const double half = frame.style.lineWidth / 2;
    painter.drawEllipse(QRectF(frame.geometry.CircleRect()).adjusted(half, half, -half, -half));
}

} // namespace busquill
