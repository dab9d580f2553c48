/// What painted windows have in common: colours, edges, fonts and texts in cells.
#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QSize>
#include <QString>

#include <cstdint>

class QPainter;
class QWidget;

namespace busquill {

/// A colour from 0x00BBGGRR.
[[nodiscard]] QColor ColorOf(std::uint32_t color);
/// The opposite.
[[nodiscard]] std::uint32_t NumberOf(const QColor& color);

enum class Edge { Raised, Sunken };

/// A two-pixel edge inside the rectangle.
void DrawEdge(QPainter& painter, const QRect& rect, Edge edge);

/// Draws the focus mark of a button that draws itself: inside its edge, while it has the keyboard.
void DrawFocusMark(QPainter& painter, const QWidget& button);

enum class FontFace { Proportional, Fixed };

/// A font whose cell (ascent and descent) is `cellHeight` pixels high.
[[nodiscard]] QFont FontOfCellHeight(int cellHeight, QFont::Weight weight, FontFace face);

/// The size in pixels of `across` by `down` dialog units. A unit is a quarter of the widget's
/// average character width across, an eighth of its font's height down.
[[nodiscard]] QSize DialogUnits(const QWidget& widget, int across, int down);

/// Draws the frame and the title of a group box as the widget's style does.
void DrawGroupBox(QPainter& painter, const QWidget& widget, const QRect& place,
                  const QString& title);

enum class CellAlign { Left, Center };

/// Draws one line at the bottom of a cell, cut to the cell's width; with `ellipsis`, a cut text
/// ends in one.
void DrawCellText(QPainter& painter, const QRect& cell, const QString& text, CellAlign align,
                  bool ellipsis);

} // namespace busquill
