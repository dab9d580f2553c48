#include "ui/framework/painted_window.h"

#include <QPainter>

namespace busquill {

PaintedWindow::PaintedWindow(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
}

void PaintedWindow::Render() {
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
