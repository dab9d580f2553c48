#include "ui/display/marker_glyphs.h"

#include <QPainter>

namespace busquill {

void DrawMarkerGlyph(QPainter& painter, int which, int x, int top) {
    const QColor black(Qt::black);
    constexpr int side = 2 * glyphHalf;
    if (which == 0) {
        painter.fillRect(x - glyphHalf, top - 1, side + 1, 2, black);
        painter.fillRect(x, top, 1, side, black);
    } else if (which == 1) {
        painter.fillRect(x - glyphHalf, top, side, side, black);
    } else {
        painter.setPen(black);
        painter.setBrush(black);
        painter.drawPolygon(
            QPolygon({{x, top}, {x - glyphHalf, top + side}, {x + glyphHalf, top + side}}));
    }
}

} // namespace busquill
