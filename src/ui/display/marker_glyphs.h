/// The small marks of trigger and markers.
#pragma once

class QPainter;

namespace busquill {

constexpr int glyphHalf = 3; // pixels from the middle of a mark to its edge

/// A mark whose stem, square or triangle begins at `top`, about the pixel `x`: 0 is the trigger, 1
/// and 2 are the markers.
void DrawMarkerGlyph(QPainter& painter, int which, int x, int top);

} // namespace busquill
