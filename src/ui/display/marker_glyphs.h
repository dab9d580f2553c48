/// The symbols of trigger and markers.
#pragma once

class QColor;
class QPainter;

namespace busquill {

struct DrawStyle;

/// The width and height of a mark.
[[nodiscard]] int GlyphSide(const DrawStyle& style) noexcept;

/// Draws the symbol of the trigger (0) or of a marker (1 or 2), centred at the pixel `x`, from
/// `top` down, `side` wide and high.
void DrawMarkerGlyph(QPainter& painter, const DrawStyle& style, int which, int x, int top, int side,
                     const QColor& color);

} // namespace busquill
