#include "ui/controls/color_button.h"

#include "ui/framework/painting.h"

#include <QColorDialog>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace busquill {

namespace {

constexpr int margin = 5; // of the colour
constexpr int edge = 2;   // its width

} // namespace

std::optional<std::uint32_t> AskColor(QWidget* parent, std::uint32_t color) {
    const QColor chosen = QColorDialog::getColor(ColorOf(color), parent);
    if (!chosen.isValid()) {
        return std::nullopt;
    }
    return NumberOf(chosen);
}

ColorButton::ColorButton(QWidget* parent) : QPushButton(parent) {
    setAccessibleName("Color");
    connect(this, &QPushButton::clicked, this, &ColorButton::Choose);
}

void ColorButton::SetColor(std::uint32_t color) {
    color_ = color;
    update();
}

void ColorButton::Choose() {
    if (const auto chosen = AskColor(this, color_)) {
        SetColor(*chosen);
        emit ColorChosen();
    }
}

void ColorButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Button));
    if (hasFocus()) { // around the colour, which covers what the style draws there
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = rect().adjusted(edge, edge, -edge, -edge);
        focus.backgroundColor = palette().color(QPalette::Button);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
    painter.fillRect(rect().adjusted(margin, margin, -margin, -margin), ColorOf(color_));
    DrawEdge(painter, rect(), isDown() ? Edge::Sunken : Edge::Raised);
}

} // namespace busquill
