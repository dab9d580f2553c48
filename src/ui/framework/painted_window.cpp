#include "ui/framework/painted_window.h"

#include <QHelpEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>

#include <utility>

namespace busquill {

namespace {

/// Keeps names and values that look like markup from being read as such.
QString PlainTip(const QString& text) {
    return Qt::mightBeRichText(text) ? "<p style='white-space:pre'>" + text.toHtmlEscaped() + "</p>"
                                     : text;
}

} // namespace

PaintedWindow::PaintedWindow(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
}

void PaintedWindow::Render() {
    HideTip();
    DrawAll();
    update();
}

void PaintedWindow::DrawAll() {
    if (!bitmap_.isNull()) {
        QPainter painter(&bitmap_);
        Draw(painter);
    }
}

void PaintedWindow::RenderPart(const QRect& part, const std::function<void(QPainter&)>& draw) {
    HideTip();
    if (!bitmap_.isNull()) {
        QPainter painter(&bitmap_);
        draw(painter);
        update(part);
    }
}

void PaintedWindow::MakeBitmap() {
    const qreal ratio = devicePixelRatioF();
    bitmap_ = QPixmap(size() * ratio);
    bitmap_.setDevicePixelRatio(ratio);
    DrawAll();
}

void PaintedWindow::HideTip() {
    if (std::exchange(showsTip_, false)) {
        QToolTip::hideText();
    }
}

bool PaintedWindow::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const PlaceTip tip = TipAt(help.pos());
    if (tip.text.isEmpty()) {
        HideTip();
        return QWidget::event(event);
    }
    QToolTip::showText(help.globalPos(), PlainTip(tip.text), this, tip.place);
    showsTip_ = true;
    return true;
}

void PaintedWindow::paintEvent(QPaintEvent* /*event*/) {
    if (bitmap_.devicePixelRatio() != devicePixelRatioF()) {
        MakeBitmap(); // the window has moved to another screen
    } else if (IsOutdated()) {
        DrawAll();
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, bitmap_);
}

void PaintedWindow::resizeEvent(QResizeEvent* /*event*/) {
    MakeBitmap();
}

} // namespace busquill
