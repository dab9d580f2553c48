#include "ui/patterns/columns.h"

#include "signals/signal_list.h"
#include "signals/value_text.h"
#include "ui/framework/painting.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace busquill {

namespace {

constexpr int leastStretch = 60;           // percent
constexpr std::size_t longestTitle = 1000; // characters; longer titles are cut
constexpr int widestTitle = 1000;          // pixels
constexpr int marginDigits = 2;

QString ColumnTitle(const CSignal& signal) {
    return QString::fromStdString(signal.RowName().substr(0, longestTitle));
}

/// The part of a title's cell that its text may take.
QRect TitleRoom(const QRect& whole, const DrawStyle& style) {
    const int margin = style.Length(2);
    return whole.adjusted(margin, 0, -margin, -style.Length(1));
}

/// The font, condensed if the room is narrower than the text.
QFont TitleFont(const QFont& font, int room, const QString& text) {
    QFont squeezed = font;
    const int width = QFontMetrics(font).horizontalAdvance(text);
    if (width > room && room > 0) {
        squeezed.setStretch(std::max(room * 100 / width - 1, leastStretch));
    }
    return squeezed;
}

/// Draws at the bottom centre of the cell.
void DrawTitle(QPainter& painter, const DrawStyle& style, const QRect& whole, const QString& text) {
    const QRect cell = TitleRoom(whole, style);
    const QFont font = painter.font();
    const int width = painter.fontMetrics().horizontalAdvance(text);
    if (width > cell.width()) {
        painter.setFont(TitleFont(font, cell.width(), text));
    }
    DrawCellText(painter, cell, text, CellAlign::Center, false);
    painter.setFont(font);
}

} // namespace

TableFonts ScreenFonts() {
    return {FontOfCellHeight(14, QFont::Normal, FontFace::Fixed),
            FontOfCellHeight(15, QFont::Bold, FontFace::Proportional)};
}

int TableFonts::DigitWidth() const {
    return QFontMetrics(body).horizontalAdvance('0');
}

std::vector<int> ColumnWidths(const CSignalList& list) {
    std::vector<int> widths;
    widths.reserve(list.Size());
    for (const auto& signal : list.All()) {
        widths.push_back(signal->VisibleWidth());
    }
    return widths;
}

int NeededWidth(const CSignal& signal, const QFont& bodyFont) {
    const QFontMetrics metrics(bodyFont);
    unsigned digits = 1;
    if (signal.decoded) {
        digits = signal.decoded->labelWidth;
    } else if (signal.grouped) {
        digits = DigitsFor(signal.groupWidth, signal.radix);
    }
    const int digitWidth = metrics.horizontalAdvance('0');
    const int title = metrics.horizontalAdvance(ColumnTitle(signal));
    return std::max(std::min(title, widestTitle), digitWidth * static_cast<int>(digits)) +
           marginDigits * digitWidth;
}

bool IsTitleCut(const CSignal& signal, const QRect& title, const TableStyle& style) {
    const int room = TitleRoom(title, style.draw).width();
    const QString text = ColumnTitle(signal);
    return QFontMetrics(TitleFont(style.fonts.header, room, text)).horizontalAdvance(text) > room;
}

void DrawTableHeader(QPainter& painter, const TableHeader& header) {
    const TableColumns& columns = header.columns;
    const DrawStyle& style = header.style.draw;
    const int line = header.style.headerLine;
    painter.fillRect(0, line, columns.clientWidth, style.line, header.ink);
    painter.setFont(header.style.fonts.header);
    painter.setPen(header.ink);
    if (columns.fixedColumn > 0) {
        const QRect title = columns.FixedTitle(line);
        painter.fillRect(columns.fixedColumn, 0, style.line, header.height, header.ink);
        if (style.edges) {
            DrawEdge(painter, title, Edge::Raised);
        }
        DrawTitle(painter, style, title, header.title);
    }
    painter.setClipRect(columns.fixedColumn + 1, 0, columns.Room(), header.height);
    for (const TableColumn& column : columns.Visible()) {
        const CSignal& signal = header.list[column.signal];
        const QRect title = column.Title(line);
        painter.fillRect(column.left, 0, style.line, header.height, header.ink);
        if (style.fills) {
            painter.fillRect(title, signal.selected ? QColor(Qt::white) : header.background);
        }
        if (style.edges) {
            DrawEdge(painter, title, signal.selected ? Edge::Sunken : Edge::Raised);
        }
        painter.setPen(signal.selected && style.fills ? QColor(Qt::black) : header.ink);
        DrawTitle(painter, style, title, ColumnTitle(signal));
    }
}

} // namespace busquill
