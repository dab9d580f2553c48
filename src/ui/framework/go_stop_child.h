#pragma once

#include "ui/framework/mdi_child.h"

#include <functional>

class QLabel;
class QToolButton;

namespace busquill {

/// What the window of a function shows of its run; a loaded result is one that was not run here.
enum class RunPicture { Stopped = 0, Running = 1, Loaded = 2 };

/// The window of a function that runs on the board: a bar with Go, Stop and a picture above the
/// view, which starts and stops it.
class CGoStopChild final : public CMDIChildWnd {
    Q_OBJECT
public:
    /// `icon` is the name of a picture among the resources, without its ending.
    CGoStopChild(CDocument& document, const QString& title, const QString& icon, QSize size);

    /// Set by who makes the view; the view has the focus again afterwards.
    std::function<void()> go = [] {};
    std::function<void()> stop = [] {};

    void SetRunState(RunPicture picture);
    [[nodiscard]] RunPicture RunState() const noexcept { return picture_; }

private:
    QToolButton* AddButton(QWidget& bar, const char* name,
                           std::function<void()> CGoStopChild::*act);

    QLabel* status_;
    RunPicture picture_ = RunPicture::Stopped;
};

} // namespace busquill
