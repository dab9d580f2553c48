#pragma once

#include "platform/main_thread.h"

#include <QPointer>
#include <QTimer>

#include <functional>

namespace busquill {

/// A window's timer. It holds its ticks while a box of another thread is open, since the main
/// thread may then stand in the middle of an exchange, and while a tick shows a box of its own.
class WindowTimer final : public QTimer {
public:
    WindowTimer(QObject* parent, const MainThread& mainThread, std::function<void()> tick)
        : QTimer(parent) {
        connect(this, &QTimer::timeout, this, [this, &mainThread, tick = std::move(tick)] {
            if (mainThread.BoxOpen() || ticking_) {
                return;
            }
            const QPointer<WindowTimer> self = this; // a tick may close the window
            ticking_ = true;
            tick();
            if (self) {
                ticking_ = false;
            }
        });
    }

private:
    bool ticking_ = false;
};

} // namespace busquill
