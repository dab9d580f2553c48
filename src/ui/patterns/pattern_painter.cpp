#include "ui/patterns/pattern_painter.h"

#include "signals/signal_list.h"
#include "ui/framework/painting.h"
#include "ui/patterns/pattern_cell.h"

#include <QPainter>

namespace busquill {

namespace {

constexpr int hotEdgeHeight = 17;

void DrawHeader(QPainter& painter, const PatternFrame& frame) {
    DrawTableHeader(painter, {frame.list,
                              frame.geometry.columns,
                              frame.geometry.clientHeight,
                              QString::fromStdString(frame.heading),
                              frame.style.background,
                              Qt::black,
                              {.fonts = frame.style.fonts, .draw = {}}});
}

void DrawHotEdge(QPainter& painter, const QRect& cell) {
    const int above = (cell.height() - hotEdgeHeight) / 2;
    DrawEdge(painter, {cell.left() + 2, cell.top() + above, cell.width() - 4, hotEdgeHeight},
             Edge::Sunken);
}

void DrawLabel(QPainter& painter, const PatternFrame& frame, int row) {
    if (frame.geometry.columns.fixedColumn > 0) {
        painter.drawText(frame.geometry.LabelRect(row), Qt::AlignCenter,
                         QString::asprintf(frame.rowFormat.c_str(), row + 1));
    }
}

} // namespace

void DrawPatternHeader(QPainter& painter, const PatternFrame& frame) {
    painter.fillRect(0, 0, frame.geometry.columns.clientWidth, tableHeaderLine,
                     frame.style.background);
    DrawHeader(painter, frame);
}

void DrawPatterns(QPainter& painter, const PatternFrame& frame) {
    const PatternGeometry& geometry = frame.geometry;
    painter.fillRect(0, 0, geometry.columns.clientWidth, geometry.clientHeight,
                     frame.style.background);
    DrawHeader(painter, frame);
    painter.setFont(frame.style.fonts.body);
    painter.setClipping(false);
    const auto shows = [&](int row) {
        return row < geometry.rows && geometry.RowTop(row) < geometry.clientHeight;
    };
    for (int row = geometry.topRow; shows(row); ++row) {
        DrawLabel(painter, frame, row);
    }
    painter.setClipping(true); // clip to the columns again
    for (const TableColumn& column : geometry.columns.Visible()) {
        for (int row = geometry.topRow; shows(row); ++row) {
            const QRect cell = column.Cell(geometry.RowTop(row), patternRowPitch);
            if (frame.hot == PatternCell{row, column.signal}) {
                DrawHotEdge(painter, cell);
            }
            painter.drawText(cell.adjusted(2, 0, -2, 0), Qt::AlignCenter,
                             QString::fromStdString(PatternText(frame.list[column.signal], row)));
        }
    }
}

} // namespace busquill
