#include "ui/display/trace_display.h"

#include "ui/framework/painting.h"

#include <QPainter>

namespace busquill {

TraceDisplay::TraceDisplay(QWidget* parent, const Settings& settings, const char* name)
    : QWidget(parent), settings_(settings), name_(name) {
    LoadColors();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
}

void TraceDisplay::LoadColors() {
    colors_ = LoadDisplayColors(settings_, name_);
}

void TraceDisplay::MakeBitmap() {
    const qreal ratio = devicePixelRatioF();
    bitmap_ = QPixmap(size() * ratio);
    bitmap_.setDevicePixelRatio(ratio);
    bitmap_.fill(ColorOf(colors_.background));
    Render(false);
}

void TraceDisplay::paintEvent(QPaintEvent* /*event*/) {
    if (bitmap_.devicePixelRatio() != devicePixelRatioF()) {
        MakeBitmap(); // the window has come to another screen
    } else if (LoadDisplayColors(settings_, name_) != colors_) {
        Render(false);
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, bitmap_);
}

void TraceDisplay::resizeEvent(QResizeEvent* /*event*/) {
    MakeBitmap();
}

} // namespace busquill
