#pragma once

#include "ui/framework/mdi_child.h"

#include <functional>

class QHBoxLayout;
class QLabel;

namespace busquill {

/// The state of a run that the window shows; Loaded: the result came from a file.
enum class RunPicture { Stopped = 0, Running = 1, Loaded = 2 };

/// The window of a function that runs on the board. A bar above the view has Go, Stop and a picture
/// of the run's state.
class CGoStopChild : public CMDIChildWnd {
    Q_OBJECT
public:
    /// `icon` names a picture in the resources, without its extension.
    CGoStopChild(CDocument& document, const QString& title, const QString& icon, QSize size);

    /// Called by the buttons and their keys; set by the creator of the view. Afterwards the view
    /// has the focus again.
    std::function<void()> go = [] {};
    std::function<void()> stop = [] {};

    void SetRunState(RunPicture picture);
    [[nodiscard]] RunPicture RunState() const noexcept { return picture_; }

protected:
    /// Puts a widget at the left of the bar, after those that are there already.
    void AddToBar(QWidget& widget);
    /// Makes the window carry out a command, and returns a button for it. After a click the view
    /// has the focus again.
    [[nodiscard]] QWidget& CommandButton(CommandId id, const QString& tip,
                                         std::function<void()> act);

private:
    QHBoxLayout* bar_;
    int ownWidgets_ = 0; // at the left of the bar
    QLabel* status_;
    RunPicture picture_ = RunPicture::Stopped;
};

} // namespace busquill
