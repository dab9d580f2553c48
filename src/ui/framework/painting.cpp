#include "ui/framework/painting.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStyleOptionGroupBox>
#include <QWidget>

namespace busquill {

QColor ColorOf(std::uint32_t color) {
    return {static_cast<int>(color & 0xFF), static_cast<int>(color >> 8 & 0xFF),
            static_cast<int>(color >> 16 & 0xFF)};
}

std::uint32_t NumberOf(const QColor& color) {
    return static_cast<std::uint32_t>(color.red() | color.green() << 8 | color.blue() << 16);
}

void DrawEdge(QPainter& painter, const QRect& rect, Edge edge) {
    const QColor light(0xFF, 0xFF, 0xFF);
    const QColor face(0xE0, 0xE0, 0xE0);
    const QColor shadow(0x80, 0x80, 0x80);
    const QColor dark(0x40, 0x40, 0x40);
    const bool raised = edge == Edge::Raised;
    const auto frame = [&](const QRect& r, const QColor& topLeft, const QColor& bottomRight) {
        if (r.width() < 1 || r.height() < 1) {
            return;
        }
        painter.fillRect(r.left(), r.top(), r.width(), 1, topLeft);
        painter.fillRect(r.left(), r.top(), 1, r.height(), topLeft);
        painter.fillRect(r.left(), r.bottom(), r.width(), 1, bottomRight);
        painter.fillRect(r.right(), r.top(), 1, r.height(), bottomRight);
    };
    frame(rect, raised ? face : shadow, raised ? dark : light);
    frame(rect.adjusted(1, 1, -1, -1), raised ? light : dark, raised ? shadow : face);
}

void DrawFocusMark(QPainter& painter, const QWidget& button) {
    if (!button.hasFocus()) {
        return;
    }
    constexpr int edge = 2; // its width
    QStyleOptionFocusRect focus;
    focus.initFrom(&button);
    focus.rect = button.rect().adjusted(edge, edge, -edge, -edge);
    focus.backgroundColor = button.palette().color(QPalette::Button);
    button.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, &button);
}

QFont FontOfCellHeight(int cellHeight, QFont::Weight weight, FontFace face) {
    QFont font;
    if (face == FontFace::Fixed) {
        font.setFamilies({"Courier New", "Liberation Mono", "DejaVu Sans Mono", "monospace"});
        font.setStyleHint(QFont::TypeWriter);
        font.setFixedPitch(true);
    } else {
        font.setFamilies({"Arial", "Liberation Sans", "DejaVu Sans", "sans-serif"});
        font.setStyleHint(QFont::SansSerif);
    }
    font.setWeight(weight);
    // The largest size whose cell does not exceed the height.
    for (int size = cellHeight; size > 1; --size) {
        font.setPixelSize(size);
        const QFontMetrics metrics(font);
        if (metrics.ascent() + metrics.descent() <= cellHeight) {
            break;
        }
    }
    return font;
}

void DrawGroupBox(QPainter& painter, const QWidget& widget, const QRect& place,
                  const QString& title) {
    QStyleOptionGroupBox option;
    option.initFrom(&widget);
    option.rect = QRect({}, place.size()); // styles place the title at the origin
    option.text = title;
    option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
    option.textAlignment = Qt::AlignLeft;
    painter.translate(place.topLeft());
    widget.style()->drawComplexControl(QStyle::CC_GroupBox, &option, &painter, &widget);
    painter.translate(-place.topLeft());
}

QSize DialogUnits(const QWidget& widget, int across, int down) {
    const QFontMetrics metrics = widget.fontMetrics();
    return {across * metrics.averageCharWidth() / 4, down * metrics.height() / 8};
}

void DrawCellText(QPainter& painter, const QRect& cell, const QString& text, CellAlign align,
                  bool ellipsis) {
    if (text.isEmpty() || cell.width() < 1) {
        return;
    }
    const QFontMetrics metrics = painter.fontMetrics();
    QString shown = text;
    int width = metrics.horizontalAdvance(shown);
    if (ellipsis && width > cell.width()) {
        shown = metrics.elidedText(text, Qt::ElideRight, cell.width());
        width = metrics.horizontalAdvance(shown);
    }
    // Of centred text that does not fit, the middle shows.
    const int x = align == CellAlign::Left ? cell.left() : cell.left() + (cell.width() - width) / 2;
    const int baseline = cell.bottom() + 1 - metrics.descent();
    if (width <= cell.width()) {
        painter.drawText(x, baseline, shown);
        return;
    }
    painter.save();
    painter.setClipRect(cell, Qt::IntersectClip);
    painter.drawText(x, baseline, shown);
    painter.restore();
}

} // namespace busquill
