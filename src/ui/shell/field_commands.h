#pragma once

#include "ui/framework/command_map.h"

#include <QObject>
#include <QPointer>

#include <vector>

class QLineEdit;
class QWidget;

namespace busquill {

class Panel;

/// The commands of what has the keyboard in a window: Cut, Copy and Paste of a text field, and
/// those of a panel. A field stays the one meant, with its selection, while a menu of the window is
/// open, and so does a panel, even one that floats: a click on the menu bar or the tool bar takes
/// the keyboard from its window. Main thread.
class FieldCommands final : public QObject {
    Q_OBJECT
public:
    explicit FieldCommands(QWidget& window);

    /// The commands of the field, then of the panel, which may be around it; none while neither has
    /// the keyboard.
    [[nodiscard]] std::vector<const CommandMap*> Maps() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void FocusChanged(QWidget* focus);
    void FollowFocus(QWidget* focus);

    QWidget& window_;
    CommandMap commands_;
    QPointer<QWidget> focus_; // the field, or what it is a part of
    QPointer<QLineEdit> field_;
    QPointer<Panel> panel_;
    QPointer<QWidget> next_; // has the keyboard, but the panel is still meant
};

} // namespace busquill
