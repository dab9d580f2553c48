#include "ui/display/marker_glyphs.h"

#include "ui/framework/draw_style.h"

#include <QPainter>

namespace busquill {

int GlyphSide(const DrawStyle& style) noexcept {
    constexpr int pixels = 6;
    return style.Length(pixels);
}

void DrawMarkerGlyph(QPainter& painter, const DrawStyle& style, int which, int x, int top, int side,
                     const QColor& color) {
    const int left = x - side / 2;
    if (which == 0) {
        painter.fillRect(left, top - style.line, side + 1, 2 * style.line, color);
        painter.fillRect(x, top, style.line, side, color);
    } else if (which == 1) {
        painter.fillRect(left, top, side, side, color);
    } else {
        painter.setPen(color);
        painter.setBrush(color);
        painter.drawPolygon(QPolygon({{x, top}, {left, top + side}, {left + side, top + side}}));
    }
}

void DrawBookmarkCorner(QPainter& painter, const QRect& cell, const QColor& color) {
    constexpr int side = 7;
    for (int i = 0; i < side; ++i) {
        painter.fillRect(cell.left(), cell.top() + i, side - i, 1, color);
    }
}

void DrawBookmarkFlag(QPainter& painter, int x, int height, const QColor& color) {
    painter.fillRect(x, 1, 1, height - 1, color);
    for (int i = 0; i < bookmarkFlagWidth - 1; ++i) {
        const int half = (bookmarkFlagWidth - 1 - i) / 2;
        painter.fillRect(x + 1 + i, 1 + 3 - half, 1, 2 * half + 1, color);
    }
}

} // namespace busquill
