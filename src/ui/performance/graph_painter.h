/// Draws the performance graphs on any painter.
#pragma once

#include "ui/performance/graph_geometry.h"

#include <QColor>
#include <QFont>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

class QPainter;

namespace busquill {

/// How graphs look on a screen or on paper. Lengths are those of the geometry.
struct GraphStyle {
    QFont font;
    QColor background;
    QColor ink; // of axes and texts
    double lineWidth = 1;

    /// The width of the widest label.
    [[nodiscard]] int LabelWidth() const;
};
[[nodiscard]] GraphStyle ScreenGraphStyle();

/// What both graphs are drawn from.
struct GraphFrame {
    GraphGeometry geometry;
    GraphStyle style;
    QString unit;
};

/// The results of one item that are shown, at most a page.
struct TimeLine {
    std::uint32_t color = 0; // 0x00BBGGRR
    std::int32_t style = 0;  // 0 to 4: solid, dash, dot, dash-dot, dash-dot-dot; others are solid
    std::vector<std::int32_t> values;
};

/// Draws the whole time graph; without `lines`, axes only.
void DrawTimeGraph(QPainter& painter, const GraphFrame& frame, const std::vector<TimeLine>& lines);

/// The range of one item.
struct ValueRange {
    std::size_t item = 0;
    std::uint32_t color = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::optional<std::int32_t> average = std::nullopt;
};

/// Draws the whole graph of ranges, with a letter for each item.
void DrawMinMaxAverageGraph(QPainter& painter, const GraphFrame& frame,
                            const std::vector<ValueRange>& ranges);
/// The same graph as a pie, which has no slices.
void DrawMinMaxAveragePie(QPainter& painter, const GraphFrame& frame);

/// A pen with one of the five styles.
[[nodiscard]] QPen GraphPen(std::uint32_t color, std::int32_t style, double width);

} // namespace busquill
