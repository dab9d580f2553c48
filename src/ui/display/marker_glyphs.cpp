#include "ui/display/marker_glyphs.h"

#include "ui/framework/draw_style.h"

#include <QPainter>

namespace busquill {

int GlyphHalf(const DrawStyle& style) noexcept {
    constexpr int side = 6;
    return style.Length(side) / 2;
}

void DrawMarkerGlyph(QPainter& painter, const DrawStyle& style, int which, int x, int top,
                     const QColor& color) {
    const int half = GlyphHalf(style);
    const int side = 2 * half;
    if (which == 0) {
        painter.fillRect(x - half, top - style.line, side + 1, 2 * style.line, color);
        painter.fillRect(x, top, style.line, side, color);
    } else if (which == 1) {
        painter.fillRect(x - half, top, side, side, color);
    } else {
        painter.setPen(color);
        painter.setBrush(color);
        painter.drawPolygon(QPolygon({{x, top}, {x - half, top + side}, {x + half, top + side}}));
    }
}

} // namespace busquill
