/// The symbols of trigger and markers.
#pragma once

class QColor;
class QPainter;

namespace busquill {

struct DrawStyle;

/// The distance from the middle of a mark to its edge.
[[nodiscard]] int GlyphHalf(const DrawStyle& style) noexcept;

/// Draws the symbol of the trigger (0) or of a marker (1 or 2), centred at the pixel `x`, from
/// `top` down.
void DrawMarkerGlyph(QPainter& painter, const DrawStyle& style, int which, int x, int top,
                     const QColor& color);

} // namespace busquill
