#include "ui/framework/go_stop_child.h"

#include "ui/framework/view.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPointer>
#include <QToolButton>

namespace busquill {

namespace {

constexpr int iconSize = 24;

QPixmap PictureOf(RunPicture picture) {
    const char* const names[] = {"idle", "running", "file"};
    return QIcon(QString(":/icons/status-%1.svg").arg(names[static_cast<int>(picture)]))
        .pixmap(iconSize, iconSize);
}

} // namespace

CGoStopChild::CGoStopChild(CDocument& document, const QString& title, const QString& icon,
                           QSize size)
    : CMDIChildWnd(document), status_(new QLabel) {
    setWindowTitle(title);
    setWindowIcon(QIcon(QString(":/icons/%1.svg").arg(icon)));
    resize(size);
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(5, 3, 5, 3);
    layout->setSpacing(3);
    layout->addStretch(); // aligns the three at the right edge
    layout->addWidget(status_);
    layout->addWidget(AddButton(*bar, "Go", &CGoStopChild::go));
    layout->addWidget(AddButton(*bar, "Stop", &CGoStopChild::stop));
    status_->setObjectName("Run State");
    status_->setPixmap(PictureOf(picture_));
    SetBar(bar);
}

QToolButton* CGoStopChild::AddButton(QWidget& bar, const char* name,
                                     std::function<void()> CGoStopChild::*act) {
    auto* button = new QToolButton(&bar);
    button->setObjectName(name);
    button->setToolTip(name);
    button->setIcon(QIcon(QString(":/icons/%1.svg").arg(QString(name).toLower())));
    button->setIconSize({iconSize, iconSize});
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QToolButton::clicked, this, [this, act] {
        const QPointer<CGoStopChild> self = this; // the window may be closed while a box is open
        (this->*act)();
        if (!self) {
            return;
        }
        setFocus();
        if (GetActiveView() != nullptr) {
            GetActiveView()->setFocus();
        }
    });
    return button;
}

void CGoStopChild::SetRunState(RunPicture picture) {
    if (picture != picture_) {
        picture_ = picture;
        status_->setPixmap(PictureOf(picture));
    }
}

} // namespace busquill
