#pragma once

#include <QObject>

#include <functional>

class QWidget;

namespace busquill {

/// Handles F1 in all windows of the program, also in dialogs and message boxes. A shortcut would
/// not work while a modal dialog is open.
class HelpKey final : public QObject {
    Q_OBJECT
public:
    /// `show` is called with the widget that has the focus.
    HelpKey(QObject* parent, std::function<void(const QWidget&)> show);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const std::function<void(const QWidget&)> show_;
};

} // namespace busquill
