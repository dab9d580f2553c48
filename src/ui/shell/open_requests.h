#pragma once

#include "ui/framework/window_timer.h"

#include <QLocalServer>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

namespace busquill {

/// Passes files to the program if the user has it running; returns whether it is.
[[nodiscard]] bool HandOver(const std::vector<std::string>& files);

/// The files that the desktop asks a running program to open: its own at the start, and those that
/// later starts hand over through a socket in the user's runtime folder. Each is opened when no
/// dialog is open. Main thread.
class OpenRequests final : public QObject {
public:
    OpenRequests(const MainThread& mainThread, std::function<void(const std::string&)> open);

    /// Becomes the instance that receives files, unless another one already does or the user has
    /// no runtime folder. Files wait until Serve is called.
    void Listen();
    /// Opens these files, and all that arrive later.
    void Serve(const std::vector<std::string>& files);

private:
    void TakeConnections();
    void Take(QLocalSocket& from);
    void OpenNext();

    std::function<void(const std::string&)> open_;
    QLocalServer server_;
    QStringList waiting_;
    WindowTimer timer_;
};

} // namespace busquill
