#include "ui/controls/color_button.h"

#include "ui/framework/painting.h"

#include <QColorDialog>
#include <QPainter>

namespace busquill {

namespace {

constexpr int margin = 5; // of the colour

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
    DrawFocusMark(painter, *this); // around the colour, which covers what the style draws there
    painter.fillRect(rect().adjusted(margin, margin, -margin, -margin), ColorOf(color_));
    DrawEdge(painter, rect(), isDown() ? Edge::Sunken : Edge::Raised);
}

} // namespace busquill
