#include "ui/framework/mdi_child.h"

#include "ui/framework/icons.h"
#include "ui/framework/view.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <utility>

namespace busquill {

CMDIChildWnd::CMDIChildWnd(CDocument& document) : document_(document) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowIcon(IconOf("state"));
    auto* inside = new QWidget;
    layout_ = new QVBoxLayout(inside);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(0);
    setWidget(inside);
    commands.On(CommandId::FileClose, [this] { close(); });
}

CMDIChildWnd::~CMDIChildWnd() {
    // The view must leave the document first, since the document may be destroyed with this window.
    delete std::exchange(view_, nullptr);
    closed();
}

void CMDIChildWnd::SetView(CView* view) {
    CView* old = view_;
    view_ = view;
    layout_->addWidget(view, 1);
    widget()->setFocusProxy(view);
    delete old;
}

void CMDIChildWnd::SetBar(QWidget* bar) {
    layout_->insertWidget(0, bar);
}

CMDIChildWnd* CMDIChildWnd::FrameOf(QWidget& widget) {
    for (QWidget* each = &widget; each != nullptr; each = each->parentWidget()) {
        if (auto* frame = qobject_cast<CMDIChildWnd*>(each)) {
            return frame;
        }
    }
    return nullptr;
}

void CMDIChildWnd::closeEvent(QCloseEvent* event) {
    if (mayClose()) {
        QMdiSubWindow::closeEvent(event);
    } else {
        event->ignore();
    }
}

// Key and wheel events that nothing in the window uses stop here. The workspace would scroll on
// them, and move the windows when one extends beyond its edge.

void CMDIChildWnd::keyPressEvent(QKeyEvent* event) {
    QMdiSubWindow::keyPressEvent(event);
    event->accept();
}

void CMDIChildWnd::wheelEvent(QWheelEvent* event) {
    event->accept();
}

} // namespace busquill
