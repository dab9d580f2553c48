#pragma once

#include <QObject>

#include <functional>

class QWidget;

namespace busquill {

/// Handles F1 and Shift+F1 in all windows of the program, also in dialogs and message boxes. A
/// shortcut would not work while a modal dialog is open.
class HelpKey final : public QObject {
    Q_OBJECT
public:
    /// `showHelp` is called for F1, with the widget that has the focus; `showKeys` for Shift+F1.
    HelpKey(QObject* parent, std::function<void(const QWidget&)> showHelp,
            std::function<void()> showKeys);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const std::function<void(const QWidget&)> showHelp_;
    const std::function<void()> showKeys_;
};

} // namespace busquill
