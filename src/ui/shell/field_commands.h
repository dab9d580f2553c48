#pragma once

#include "ui/framework/command_map.h"

#include <QObject>
#include <QPointer>

class QLineEdit;
class QWidget;

namespace busquill {

/// Cut, Copy and Paste for the text field of a window that has the keyboard. A field stays the one
/// meant, with its selection, while a menu of the window is open. Main thread.
class FieldCommands final : public QObject {
    Q_OBJECT
public:
    explicit FieldCommands(QWidget& window);

    /// The commands of the field; null while none has the keyboard.
    [[nodiscard]] const CommandMap* Map() const { return field_ == nullptr ? nullptr : &commands_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void FollowFocus(QWidget* focus);

    QWidget& window_;
    CommandMap commands_;
    QPointer<QWidget> focus_; // the field, or what it is a part of
    QPointer<QLineEdit> field_;
};

} // namespace busquill
