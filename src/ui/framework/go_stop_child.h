#pragma once

#include "ui/framework/mdi_child.h"

class QLabel;
class QToolButton;

namespace busquill {

/// What the window of a function shows of its run.
enum class RunPicture { Stopped = 0, Running = 1, Other = 2 };

/// The window of a function that runs on the board: a bar with Go, Stop and a picture above the
/// view, which starts and stops it.
class CGoStopChild final : public CMDIChildWnd {
    Q_OBJECT
public:
    CGoStopChild(CDocument& document, const QString& title, QSize size);

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
