/// The symbols of trigger and markers.
#pragma once

class QColor;
class QPainter;
class QRect;

namespace busquill {

struct DrawStyle;

/// The width and height of a mark.
[[nodiscard]] int GlyphSide(const DrawStyle& style) noexcept;

/// Draws the symbol of the trigger (0) or of a marker (1 or 2), centred at the pixel `x`, from
/// `top` down, `side` wide and high.
void DrawMarkerGlyph(QPainter& painter, const DrawStyle& style, int which, int x, int top, int side,
                     const QColor& color);

/// The sign of a bookmark in the corner of a cell.
void DrawBookmarkCorner(QPainter& painter, const QRect& cell, const QColor& color);
/// A bookmark's flag on a line at the pixel `x`, at the top of a strip of the given height.
void DrawBookmarkFlag(QPainter& painter, int x, int height, const QColor& color);
/// The width of the flag with its line.
constexpr int bookmarkFlagWidth = 8;

} // namespace busquill
