#pragma once

#include "ui/framework/command_map.h"

#include <QWidget>

namespace busquill {

class CMDIChildWnd;

/// What a dock of the main window shows beside the documents.
class Panel : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;

    /// Called when the active window, the board or its bus may have changed; null if no window is
    /// active.
    virtual void Follow(CMDIChildWnd* active) = 0;

    /// Gives the keyboard to what the panel shows.
    virtual void TakeKeyboard() { setFocus(); }

    /// What the panel carries out while the keyboard is in it, before the active window is asked.
    CommandMap commands;

signals:
    /// Esc was pressed: the keyboard is to go back to the active window.
    void Left();

protected:
    // Keys and turns of the wheel that nothing in the panel uses end here.
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace busquill
