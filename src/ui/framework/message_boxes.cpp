#include "ui/framework/message_boxes.h"

#include "ui/framework/wait_cursor.h"

#include <QApplication>
#include <QGridLayout>
#include <QMessageBox>

namespace busquill {

namespace {

constexpr int hintCharacters = 60;

QMessageBox::StandardButtons ButtonsOf(BoxButtons buttons) {
    switch (buttons) {
    case BoxButtons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case BoxButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case BoxButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case BoxButtons::Ok:
        break;
    }
    return QMessageBox::Ok;
}

/// A box is as wide as its text, so a hint below a short text would be broken into many lines.
void WidenFor(QMessageBox& window, int characters) {
    if (auto* grid = qobject_cast<QGridLayout*>(window.layout())) {
        const int width = window.fontMetrics().averageCharWidth() * characters;
        grid->addItem(new QSpacerItem(width, 0), grid->rowCount(), 0, 1, grid->columnCount());
    }
}

Answer ShowBox(const Box& box) {
    const bool question =
        box.buttons == BoxButtons::YesNo || box.buttons == BoxButtons::YesNoCancel;
    QMessageBox window(question ? QMessageBox::Question : QMessageBox::Warning,
                       QApplication::applicationName(), QString::fromStdString(box.text),
                       ButtonsOf(box.buttons), QApplication::activeWindow());
    window.setTextFormat(Qt::PlainText);
    if (!box.hint.empty()) {
        window.setInformativeText(QString::fromStdString(box.hint));
        WidenFor(window, hintCharacters);
    }
    window.setWindowModality(Qt::ApplicationModal);
    window.setWindowFlag(Qt::WindowStaysOnTopHint, box.topmost);
    const OverrideCursor arrow(Qt::ArrowCursor); // the user can answer, even if the program is busy
    switch (window.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        return Answer::Ok;
    }
}

} // namespace

void ShowBoxesAsWindows(MainThread& mainThread) {
    mainThread.SetPresenter(ShowBox, [&mainThread] {
        QMetaObject::invokeMethod(
            qApp, [&mainThread] { mainThread.ServeBoxes(); }, Qt::QueuedConnection);
    });
}

} // namespace busquill
