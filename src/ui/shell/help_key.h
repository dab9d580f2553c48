#pragma once

#include <QObject>

#include <functional>

class QWidget;

namespace busquill {

/// F1 in any window of the program, dialogs and message boxes included. A shortcut would be dead
/// while a modal dialog is open.
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
