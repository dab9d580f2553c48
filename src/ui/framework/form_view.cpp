#include "ui/framework/form_view.h"

#include "ui/framework/display_colors.h"
#include "ui/framework/painting.h"

#include <QApplication>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>

namespace busquill {

namespace {

constexpr QSize buttonSize(70, 25);
constexpr int buttonBottom = 5; // below the buttons
constexpr int rowPitch = 25;
constexpr int rowHeight = 20;
constexpr int firstRow = 45; // from the bottom of the view to the bottom of row 0

} // namespace

QRect Form::ButtonPlace(int left, int viewHeight) noexcept {
    return {{left, viewHeight - buttonBottom - buttonSize.height()}, buttonSize};
}

QRect Form::FieldPlace(int row, int left, int width, int viewHeight) noexcept {
    return {left, viewHeight - firstRow - rowHeight - row * rowPitch, width, rowHeight};
}

QRect Form::GroupPlace(int left, int width, int top, int bottom, int viewHeight) noexcept {
    return {left, viewHeight - top, width, top - bottom};
}

QPushButton& CFormView::AddButton(const QString& text, int left, std::function<void()> act) {
    auto* button = new QPushButton(text, this);
    connect(button, &QPushButton::clicked, this, std::move(act));
    button->setGeometry(Form::ButtonPlace(left, height()));
    if (isVisible()) {
        button->show(); // otherwise it is shown with the view
    }
    buttons_.push_back({button, left});
    return *button;
}

void CFormView::AddLabel(const QString& text, const QWidget& field, const QRect& place) {
    labels_.push_back({text, &field, place});
}

void CFormView::LayOutAgain() {
    labels_.clear();
    groups_.clear();
    LayOut();
    update();
}

void CFormView::AddGroup(const QString& title, const QRect& place) {
    groups_.push_back({title, place});
}

void CFormView::resizeEvent(QResizeEvent* event) {
    CView::resizeEvent(event);
    for (const Button& each : buttons_) {
        each.button->setGeometry(Form::ButtonPlace(each.left, height()));
    }
    LayOutAgain();
}

/// Fields without a ground of their own take the colour of their text from the form.
void CFormView::FollowColors() {
    const QPalette wanted = FormPalette(settings_, QApplication::palette());
    if (palette().color(QPalette::WindowText) != wanted.color(QPalette::WindowText)) {
        setPalette(wanted);
        for (auto* bar : findChildren<QScrollBar*>()) {
            KeepUsualText(*bar); // the colour of its arrows
        }
    }
}

void CFormView::paintEvent(QPaintEvent* /*event*/) {
    FollowColors();
    QPainter painter(this);
    painter.fillRect(rect(), ViewBackground(settings_));
    for (const Group& group : groups_) {
        DrawGroupBox(painter, *this, group.place, group.title);
    }
    for (const Label& label : labels_) {
        if (label.field != nullptr && label.field->isVisibleTo(this)) {
            const auto colors = label.field->isEnabled() ? QPalette::Active : QPalette::Disabled;
            painter.setPen(palette().color(colors, QPalette::WindowText));
            painter.drawText(label.place, Qt::AlignVCenter | Qt::AlignLeft, label.text);
        }
    }
}

} // namespace busquill
