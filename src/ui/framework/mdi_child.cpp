#include "ui/framework/mdi_child.h"

#include "ui/framework/view.h"

#include <QCloseEvent>
#include <QIcon>

namespace busquill {

CMDIChildWnd::CMDIChildWnd(CDocument& document) : document_(document) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowIcon(QIcon(":/icons/state.svg"));
}

CMDIChildWnd::~CMDIChildWnd() {
    // The view takes leave of the document, which may go with this window.
    delete view_;
    closed();
}

void CMDIChildWnd::SetView(CView* view) {
    CView* old = view_;
    view_ = view;
    setWidget(view);
    delete old;
}

void CMDIChildWnd::closeEvent(QCloseEvent* event) {
    if (mayClose()) {
        QMdiSubWindow::closeEvent(event);
    } else {
        event->ignore();
    }
}

} // namespace busquill
