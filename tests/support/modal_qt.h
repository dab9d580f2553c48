#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <QtTest/QTest>
#include <gtest/gtest.h>

#include <functional>

namespace busquill::test {

/// Calls `open`, which opens a dialog, and `act` on that dialog. A dialog that is still open then
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

/// Calls `open`, which opens a menu, and returns the texts of its entries, those with a mark after
/// "* ". Chooses the entry with a text by its key, or closes the menu if there is none.
inline QStringList AnswerMenu(const std::function<void()>& open, const QString& choice = {}) {
    QStringList entries;
    QTimer::singleShot(0, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        QAction* chosen = nullptr;
        for (QAction* action : menu->actions()) {
            entries << (action->isChecked() ? "* " : "") + action->text();
            chosen = !action->isSeparator() && action->text() == choice ? action : chosen;
        }
        if (chosen != nullptr) {
            menu->setActiveAction(chosen);
            QTest::keyClick(menu, Qt::Key_Return);
        } else {
            menu->close();
        }
    });
    open();
    EXPECT_FALSE(entries.empty()) << "no menu has opened";
    return entries;
}

/// The button with a text, without its mnemonic, or with an object name.
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

/// Clicks a radio button or a check box on its indicator.
inline void Tick(const QWidget& window, const QString& text) {
    QAbstractButton& button = ButtonOf(window, text);
    QTest::mouseClick(&button, Qt::LeftButton, {}, {8, button.height() / 2});
}

/// Pastes a name into a file dialog, which would complete typed text, and accepts it.
inline void GiveFileName(QFileDialog& files, const std::string& name) {
    auto* edit = files.findChild<QLineEdit*>("fileNameEdit");
    files.activateWindow();
    QApplication::processEvents();
    QTest::mouseClick(edit, Qt::LeftButton); // without the focus, its text would be ignored
    edit->selectAll();
    QApplication::clipboard()->setText(QString::fromStdString(name));
    QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    // The list of matching names may be open and take the Enter key.
    for (QAbstractButton* button : files.findChild<QDialogButtonBox*>("buttonBox")->buttons()) {
        if (!button->text().contains("Cancel")) {
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }
}

/// The same with the name of an existing file: the question whether to replace it is answered yes.
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
