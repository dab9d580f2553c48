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
};

} // namespace busquill
