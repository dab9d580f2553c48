#include "ui/framework/dialog_titles.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QLayout>

#include <algorithm>

namespace busquill {

namespace {

constexpr int titleButtons = 130; // pixels for the picture and the buttons beside a title

/// The title's width in the title font, which is bold with most window managers.
int TitleWidth(const QString& title) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::TitleFont);
    font.setBold(true);
    return QFontMetrics(font).horizontalAdvance(title) + titleButtons;
}

/// The margins take the additional width, since a layout may decide the dialog's size.
void Widen(QDialog& dialog, int width) {
    const int missing = width - dialog.width();
    if (missing <= 0) {
        return;
    }
    if (QLayout* layout = dialog.layout()) {
        QMargins margins = layout->contentsMargins();
        margins.setLeft(margins.left() + missing / 2);
        margins.setRight(margins.right() + missing - missing / 2);
        layout->setContentsMargins(margins);
        layout->activate();
    }
    dialog.resize(std::max(dialog.width(), width), dialog.height());
}

class TitleWatch final : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && !event->spontaneous()) {
            if (auto* dialog = qobject_cast<QDialog*>(watched)) {
                Widen(*dialog, TitleWidth(dialog->windowTitle()));
            }
        }
        return false;
    }
};

} // namespace

void WidenDialogsToTitles(QObject& owner) {
    qApp->installEventFilter(new TitleWatch(&owner));
}

} // namespace busquill
