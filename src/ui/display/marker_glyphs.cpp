#include "ui/display/marker_glyphs.h"

#include <QPainter>

namespace busquill {

void DrawMarkerGlyph(QPainter& painter, int which, int x, int top, const QColor& color) {
    constexpr int side = 2 * glyphHalf;
    if (which == 0) {
        painter.fillRect(x - glyphHalf, top - 1, side + 1, 2, color);
        painter.fillRect(x, top, 1, side, color);
    } else if (which == 1) {
        painter.fillRect(x - glyphHalf, top, side, side, color);
    } else {
        painter.setPen(color);
        painter.setBrush(color);
        painter.drawPolygon(
            QPolygon({{x, top}, {x - glyphHalf, top + side}, {x + glyphHalf, top + side}}));
    }
}

} // namespace busquill
