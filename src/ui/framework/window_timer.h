#pragma once

#include "platform/main_thread.h"

#include <QTimer>

#include <functional>

namespace busquill {

/// A window's timer. It holds its ticks while a box of another thread is open, since the main
/// thread may then stand in the middle of an exchange.
class WindowTimer final : public QTimer {
public:
    WindowTimer(QObject* parent, const MainThread& mainThread, std::function<void()> tick)
        : QTimer(parent) {
        connect(this, &QTimer::timeout, this, [&mainThread, tick = std::move(tick)] {
            if (!mainThread.BoxOpen()) {
                tick();
            }
        });
    }
};

} // namespace busquill
