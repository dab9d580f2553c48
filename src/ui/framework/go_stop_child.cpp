#include "ui/framework/go_stop_child.h"

#include "ui/framework/icons.h"
#include "ui/framework/view.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QToolButton>

namespace busquill {

namespace {

constexpr int iconSize = 24;

QPixmap PictureOf(RunPicture picture) {
    const char* const names[] = {"idle", "running", "file"};
    return IconOf(QString("status-") + names[static_cast<int>(picture)]).pixmap(iconSize, iconSize);
}

} // namespace

CGoStopChild::CGoStopChild(CDocument& document, const QString& title, const QString& icon,
                           QSize size)
    : CMDIChildWnd(document), bar_(new QHBoxLayout), status_(new QLabel) {
    setWindowTitle(title);
    setWindowIcon(IconOf(icon));
    resize(size);
    auto* bar = new QWidget;
    bar->setLayout(bar_);
    bar_->setContentsMargins(5, 3, 5, 3);
    bar_->setSpacing(3);
    bar_->addStretch(); // aligns the three at the right edge
    bar_->addWidget(status_);
    bar_->addWidget(&MakeBarButton("Go", "go", "Go", [this] { go(); }));
    bar_->addWidget(&MakeBarButton("Stop", "stop", "Stop", [this] { stop(); }));
    status_->setObjectName("Run State");
    status_->setPixmap(PictureOf(picture_));
    SetBar(bar);
}

void CGoStopChild::AddToBar(QWidget& widget) {
    bar_->insertWidget(ownWidgets_++, &widget);
}

QToolButton& CGoStopChild::MakeBarButton(const QString& name, const QString& icon,
                                         const QString& tip, std::function<void()> act) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setIcon(IconOf(icon));
    button->setIconSize({iconSize, iconSize});
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QToolButton::clicked, this, [this, act = std::move(act)] {
        const QPointer<CGoStopChild> self = this; // the window may be closed while a box is open
        act();
        if (!self) {
            return;
        }
        setFocus();
        if (GetActiveView() != nullptr) {
            GetActiveView()->setFocus();
        }
    });
    return *button;
}

void CGoStopChild::SetRunState(RunPicture picture) {
    if (picture != picture_) {
        picture_ = picture;
        status_->setPixmap(PictureOf(picture));
    }
}

} // namespace busquill
