#include "ui/performance/pen_style_button.h"

#include "ui/framework/painting.h"
#include "ui/performance/graph_painter.h"

#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

#include <array>

namespace busquill {

namespace {

constexpr QSize entrySize(40, 15);
constexpr int margin = 4;
constexpr std::array styleNames = {"Solid", "Dash", "Dot", "Dash-Dot", "Dash-Dot-Dot"};

void DrawStyleLine(QPainter& painter, const QRect& rect, std::int32_t style, const QColor& color) {
    QPen pen = GraphPen(0, style, 1);
    pen.setColor(color);
    painter.setPen(pen);
    const int y = rect.center().y();
    painter.drawLine(rect.left() + margin, y, rect.right() - margin, y);
}

/// Draws entries as lines, by their texts, which are not shown.
class LineMenuStyle final : public QProxyStyle {
public:
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        return type == CT_MenuItem ? entrySize
                                   : QProxyStyle::sizeFromContents(type, option, size, widget);
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (element != CE_MenuItem || entry == nullptr) {
            QProxyStyle::drawControl(element, option, painter, widget);
            return;
        }
        const bool selected = entry->state.testFlag(State_Selected);
        painter->fillRect(entry->rect,
                          entry->palette.color(selected ? QPalette::Highlight : QPalette::Base));
        const QColor color =
            entry->palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
        for (std::size_t style = 0; style < styleNames.size(); ++style) {
            if (entry->text == styleNames[style]) {
                DrawStyleLine(*painter, entry->rect, static_cast<std::int32_t>(style), color);
            }
        }
    }
};

} // namespace

CPenStyleButton::CPenStyleButton(QWidget* parent) : QPushButton(parent) {
    setAccessibleName("Line Style");
    connect(this, &QPushButton::clicked, this, &CPenStyleButton::OpenMenu);
}

void CPenStyleButton::SetStyle(std::int32_t style) {
    style_ = style;
    update();
}

void CPenStyleButton::OpenMenu() {
    LineMenuStyle lines; // outlives the menu
    QMenu menu(this);
    menu.setStyle(&lines);
    for (std::size_t style = 0; style < styleNames.size(); ++style) {
        QAction* action = menu.addAction(styleNames[style]);
        action->setData(static_cast<int>(style));
        if (static_cast<std::int32_t>(style) == style_) {
            menu.setActiveAction(action);
        }
    }
    if (const QAction* chosen = menu.exec(mapToGlobal(rect().bottomLeft()))) {
        SetStyle(chosen->data().toInt());
    }
}

void CPenStyleButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Button));
    DrawFocusMark(painter, *this);
    DrawStyleLine(painter, rect().adjusted(margin, 0, -margin, 0), style_,
                  palette().color(QPalette::ButtonText));
    DrawEdge(painter, rect(), isDown() ? Edge::Sunken : Edge::Raised);
}

} // namespace busquill
