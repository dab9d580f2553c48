/// What the columns of table windows look like.
#pragma once

#include "ui/patterns/column_geometry.h"

#include <QColor>
#include <QRect>
#include <QString>

#include <vector>

class QFont;
class QPainter;

namespace busquill {

class CSignal;
class CSignalList;

/// The width of each signal's column; 0 for one that takes none.
[[nodiscard]] std::vector<int> ColumnWidths(const CSignalList& list);
[[nodiscard]] QString ColumnTitle(const CSignal& signal);
/// The width that a signal's title and values need.
[[nodiscard]] int NeededWidth(const CSignal& signal, const QFont& bodyFont);

/// A title at the bottom centre of a header cell, squeezed where the cell is narrower.
void DrawHeaderText(QPainter& painter, const QRect& cell, const QString& text);
/// The header of a column, in the painter's font, with the line at its left over `height` pixels.
/// `line` is where the header ends.
void DrawColumnTitle(QPainter& painter, const CSignal& signal, const TableColumn& column, int line,
                     int height, const QColor& background);

} // namespace busquill
