#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>
#include <QtTest/QTest>
#include <gtest/gtest.h>

#include <functional>

namespace busquill::test {

/// Does something that opens a dialog, and something in the dialog. A dialog that then stands open
/// is cancelled.
template <class Dialog>
void AnswerDialog(const std::function<void()>& open, const std::function<void(Dialog&)>& act) {
    bool met = false;
    QTimer::singleShot(0, [&] {
        auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (auto* dialog = qobject_cast<Dialog*>(modal)) {
            met = true;
            act(*dialog);
        }
        if (modal != nullptr && modal->isVisible()) {
            modal->reject();
        }
    });
    open();
    EXPECT_TRUE(met) << "no such dialog has opened";
}

/// The button of a text, without its mnemonic, or of an object name.
inline QAbstractButton& ButtonOf(const QWidget& window, const QString& text) {
    for (auto* button : window.findChildren<QAbstractButton*>()) {
        if (button->text().remove('&') == text || button->objectName() == text) {
            return *button;
        }
    }
    throw std::runtime_error("no button " + text.toStdString());
}

inline void Press(const QWidget& window, const QString& text) {
    QAbstractButton& button = ButtonOf(window, text);
    ASSERT_TRUE(button.isEnabled()) << text.toStdString();
    QTest::mouseClick(&button, Qt::LeftButton);
}

/// A radio button or a check box, on its picture.
inline void Tick(const QWidget& window, const QString& text) {
    QAbstractButton& button = ButtonOf(window, text);
    QTest::mouseClick(&button, Qt::LeftButton, {}, {8, button.height() / 2});
}

/// Pastes a name into a file dialog, which would complete what is typed, and accepts it.
inline void GiveFileName(QFileDialog& files, const std::string& name) {
    auto* edit = files.findChild<QLineEdit*>("fileNameEdit");
    files.activateWindow();
    QApplication::processEvents();
    QTest::mouseClick(edit, Qt::LeftButton); // without the focus, its text would not count
    edit->selectAll();
    QApplication::clipboard()->setText(QString::fromStdString(name));
    QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    // The list of names that fit may stand open and take the Enter key.
    for (QAbstractButton* button : files.findChild<QDialogButtonBox*>("buttonBox")->buttons()) {
        if (!button->text().contains("Cancel")) {
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }
}

/// The same with the name of a file that is there: asked, it is to be replaced.
inline void ReplaceFile(QFileDialog& files, const std::string& name) {
    auto* timer = new QTimer(&files);
    QObject::connect(timer, &QTimer::timeout, timer, [timer] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            timer->stop();
            QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
        }
    });
    timer->start(5);
    GiveFileName(files, name);
}

} // namespace busquill::test
