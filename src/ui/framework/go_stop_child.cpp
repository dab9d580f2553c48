#include "ui/framework/go_stop_child.h"

#include "ui/framework/bar_button.h"
#include "ui/framework/icons.h"
#include "ui/framework/view.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QToolButton>

#include <utility>

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
    bar_->addWidget(&CommandButton(CommandId::Go, "Go", [this] { go(); }));
    bar_->addWidget(&CommandButton(CommandId::Stop, "Stop", [this] { stop(); }));
    status_->setObjectName("Run State");
    status_->setPixmap(PictureOf(picture_));
    SetBar(bar);
}

void CGoStopChild::AddToBar(QWidget& widget) {
    bar_->insertWidget(ownWidgets_++, &widget);
}

QWidget& CGoStopChild::CommandButton(CommandId id, const QString& tip, std::function<void()> act) {
    commands.On(id, std::move(act));
    QToolButton* const button = MakeBarButton(id, tip, iconSize);
    connect(button, &QToolButton::clicked, this, [this, id] {
        const QPointer<CGoStopChild> self = this; // the window may be closed while a box is open
        commands.Do(id);
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
