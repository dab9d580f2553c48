#pragma once

#include "platform/main_thread.h"
#include "platform/repeating_timer.h"

#include <QPointer>
#include <QTimer>

#include <functional>

namespace busquill {

/// The timer of a window or of a run. It skips its ticks while a box of another thread is open,
/// since the main thread may then be in the middle of an exchange, and while an earlier tick is
/// still running because it shows a box.
class WindowTimer final : public QTimer, public RepeatingTimer {
public:
    explicit WindowTimer(QObject* parent, const MainThread& mainThread,
                         std::function<void()> tick = nullptr)
        : QTimer(parent), mainThread_(mainThread), tick_(std::move(tick)) {
        connect(this, &QTimer::timeout, this, &WindowTimer::OnTimeout);
    }

    void Start(std::chrono::milliseconds period, std::function<void()> tick) override {
        tick_ = std::move(tick);
        start(period);
    }
    void Stop() override { stop(); }

private:
    void OnTimeout() {
        if (mainThread_.BoxOpen() || ticking_) {
            return;
        }
        const QPointer<WindowTimer> self = this; // a tick may close the window
        const auto tick = tick_;                 // or replace `tick_`
        ticking_ = true;
        tick();
        if (self) {
            ticking_ = false;
        }
    }

    const MainThread& mainThread_;
    std::function<void()> tick_;
    bool ticking_ = false;
};

} // namespace busquill
