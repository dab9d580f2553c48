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
constexpr std::size_t longestTitle = 1000; // characters; none is wider
constexpr int widestTitle = 1000;          // pixels
constexpr int marginDigits = 2;

} // namespace

std::vector<int> ColumnWidths(const CSignalList& list) {
    std::vector<int> widths;
    widths.reserve(list.Size());
    for (const auto& signal : list.All()) {
        widths.push_back(signal->VisibleWidth());
    }
    return widths;
}

QString ColumnTitle(const CSignal& signal) {
    return QString::fromStdString(signal.RowName().substr(0, longestTitle));
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

void DrawHeaderText(QPainter& painter, const QRect& whole, const QString& text) {
    const QRect cell = whole.adjusted(2, 0, -2, -1);
    const QFont font = painter.font();
    const int width = painter.fontMetrics().horizontalAdvance(text);
    if (width > cell.width() && cell.width() > 0) {
        QFont squeezed = font;
        squeezed.setStretch(std::max(cell.width() * 100 / width - 1, leastStretch));
        painter.setFont(squeezed);
    }
    DrawCellText(painter, cell, text, CellAlign::Center, false);
    painter.setFont(font);
}

void DrawColumnTitle(QPainter& painter, const CSignal& signal, const TableColumn& column, int line,
                     int height, const QColor& background) {
    painter.fillRect(column.left, 0, 1, height, Qt::black);
    const QRect cell(QPoint(column.left + 1, 1), QPoint(column.left + column.width - 1, line - 1));
    painter.fillRect(cell, signal.selected ? QColor(Qt::white) : background);
    DrawEdge(painter, cell, signal.selected ? Edge::Sunken : Edge::Raised);
    DrawHeaderText(painter, cell, ColumnTitle(signal));
}

} // namespace busquill
