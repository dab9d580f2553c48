/// Fonts, widths and header of the columns of table windows.
#pragma once

#include "ui/framework/draw_style.h"
#include "ui/patterns/column_geometry.h"

#include <QColor>
#include <QFont>
#include <QRect>
#include <QString>

#include <vector>

class QPainter;

namespace busquill {

class CSignal;
class CSignalList;

struct TableFonts {
    QFont body; // fixed pitch
    QFont header;

    /// Of the body font.
    [[nodiscard]] int DigitWidth() const;
};

[[nodiscard]] TableFonts ScreenFonts();

/// How a table is drawn; by itself, as on the screen.
struct TableStyle {
    TableFonts fonts;
    DrawStyle draw;
    int headerLine = tableHeaderLine; // y of the line below the header

    /// y of the first row.
    [[nodiscard]] int FirstRow() const noexcept { return headerLine + draw.line; }
};

/// The width of each signal's column; 0 for a signal without one.
[[nodiscard]] std::vector<int> ColumnWidths(const CSignalList& list);
/// The width that a signal's title and values need.
[[nodiscard]] int NeededWidth(const CSignal& signal, const QFont& bodyFont);

/// Whether the title of a signal's column does not show whole.
[[nodiscard]] bool IsTitleCut(const CSignal& signal, const QRect& title, const TableStyle& style);

/// Everything that the header of a table is drawn from.
struct TableHeader {
    const CSignalList& list;
    const TableColumns& columns;
    int height = 0; // of the whole table
    QString title;  // of the fixed column
    QColor background;
    QColor ink; // of lines, and of titles on the background
    TableStyle style;
};

/// Draws the header on the background that is there, and the lines between the columns over the
/// whole height of the table. Leaves the painter clipped to the columns.
void DrawTableHeader(QPainter& painter, const TableHeader& header);

} // namespace busquill
