#include "tour.h"

#include "menu_entry.h"
#include "signals/signal_list.h"
#include "ui/shell/main_frame.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace busquill {

void Tour::Picture(QWidget& window, const QString& name) {
    QApplication::processEvents();
    const QString path = folder_ + "/" + name + ".png";
    if (window.grab().save(path)) {
        std::printf("%s\n", qPrintable(path));
    } else {
        Fail("cannot write " + path);
    }
}

void Tour::Choose(CMainFrame& frame, const QString& path, const QString& name) {
    QAction* action = FindEntry(*frame.menuBar(), path);
    if (action == nullptr) {
        Fail("no menu entry " + path);
        return;
    }
    modalName_ = name;
    action->trigger();
    QApplication::processEvents();
}

void Tour::Click(QAbstractButton& button, const QString& name,
                 const std::map<QString, QString>& inside) {
    modalName_ = name;
    inside_ = inside;
    button.click();
    QApplication::processEvents();
}

void Tour::Click(QAbstractButton& button, Answers answers) {
    answers_ = std::move(answers);
    answered_ = nullptr;
    button.click();
    QApplication::processEvents();
}

void Tour::Choose(CMainFrame& frame, const QString& path, Answers answers) {
    answers_ = std::move(answers);
    answered_ = nullptr;
    Choose(frame, path, "message");
}

void Tour::PressLater(QAbstractButton& button) {
    QTimer::singleShot(0, &button, &QAbstractButton::click);
}

void Tour::ClickLater(QWidget& widget, const QPoint& place, Qt::MouseButton button) {
    QTimer::singleShot(0, &widget, [&widget, place, button] {
        const QPoint onScreen = widget.mapToGlobal(place);
        QMouseEvent press(QEvent::MouseButtonPress, place, onScreen, button, button, {});
        QApplication::sendEvent(&widget, &press);
        QMouseEvent release(QEvent::MouseButtonRelease, place, onScreen, button, {}, {});
        QApplication::sendEvent(&widget, &release);
    });
}

void Tour::ChooseOn(QWidget& widget, const QPoint& place, const QString& menu, const QString& entry,
                    const QString& dialog) {
    menuName_ = menu;
    menuEntry_ = entry;
    modalName_ = dialog;
    ClickLater(widget, place, Qt::RightButton);
    if (!WaitFor([this] { return menuEntry_.isEmpty(); }, 5000)) {
        Fail("no menu with " + entry);
    }
    WaitFor([] { return false; }, 300); // until the dialog has closed
}

void Tour::WatchMenu(QWidget& popup) {
    auto* menu = qobject_cast<QMenu*>(&popup);
    QAction* entry = menu == nullptr ? nullptr : FindEntry(*menu, menuEntry_);
    if (entry == nullptr) {
        return;
    }
    Picture(*menu, menuName_);
    menuEntry_.clear();
    QTimer::singleShot(0, menu, [menu, entry] {
        menu->close();
        entry->trigger();
    });
}

void Tour::WatchModal() {
    if (QWidget* popup = QApplication::activePopupWidget();
        popup != nullptr && !menuEntry_.isEmpty()) {
        WatchMenu(*popup);
        return;
    }
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || !modal->isVisible()) {
        return;
    }
    if (!answers_.empty()) {
        if (modal == answered_) {
            return; // it has not closed yet
        }
        answered_ = modal;
        const auto answer = std::move(answers_.front());
        answers_.pop_front();
        answer(*modal);
        return;
    }
    if (modal != pictured_) {
        Picture(*modal, modalName_);
    }
    for (auto* button : modal->findChildren<QAbstractButton*>()) {
        const auto found = std::find_if(inside_.begin(), inside_.end(), [&](const auto& each) {
            return button->objectName() == each.first || button->text() == each.first;
        });
        if (found != inside_.end()) {
            modalName_ = found->second;
            inside_.erase(found);
            pictured_ = modal; // it remains open
            QTimer::singleShot(0, button, &QAbstractButton::click);
            return;
        }
    }
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        box->accept();
    } else {
        qobject_cast<QDialog*>(modal)->reject();
    }
}

void Tour::Fail(const QString& why) {
    failed_ = true;
    std::fprintf(stderr, "%s\n", qPrintable(why));
}

bool WaitFor(const std::function<bool()>& holds, int limit) {
    QElapsedTimer time;
    time.start();
    while (!holds() && time.elapsed() < limit) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return holds();
}

QAbstractButton& ButtonOf(const QWidget& window, const QString& text) {
    for (auto* button : window.findChildren<QAbstractButton*>()) {
        if (button->text().remove('&') == text || button->objectName() == text) {
            return *button;
        }
    }
    std::fprintf(stderr, "no button %s\n", qPrintable(text));
    std::exit(1);
}

void SetCommand(CSignalList& list, std::uint32_t pattern, std::string_view label) {
    for (const auto& signal : list.All()) {
        if (signal->decoded == nullptr || signal->decoded->name != "COMMAND") {
            continue;
        }
        const auto& values = signal->decoded->values;
        const auto found = std::find_if(values.begin(), values.end(), [&](const auto& value) {
            return value.label != nullptr && value.label == label;
        });
        if (found != values.end()) {
            list.ApplyDecodedValue(signal.get(), pattern,
                                   static_cast<std::size_t>(found - values.begin()));
        }
        return;
    }
}

} // namespace busquill
