#include "ui/framework/message_boxes.h"

#include <QApplication>
#include <QMessageBox>

namespace busquill {

namespace {

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

Answer ShowBox(const Box& box) {
    const bool question =
        box.buttons == BoxButtons::YesNo || box.buttons == BoxButtons::YesNoCancel;
    QMessageBox window(question ? QMessageBox::Question : QMessageBox::Warning,
                       QApplication::applicationName(), QString::fromStdString(box.text),
                       ButtonsOf(box.buttons), QApplication::activeWindow());
    window.setTextFormat(Qt::PlainText);
    window.setInformativeText(QString::fromStdString(box.hint));
    window.setWindowModality(Qt::ApplicationModal);
    window.setWindowFlag(Qt::WindowStaysOnTopHint, box.topmost);
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
