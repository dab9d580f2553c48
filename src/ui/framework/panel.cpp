#include "ui/framework/panel.h"

#include <QKeyEvent>
#include <QWheelEvent>

namespace busquill {

void Panel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        emit Left();
    }
    event->accept();
}

void Panel::wheelEvent(QWheelEvent* event) {
    event->accept();
}

} // namespace busquill
