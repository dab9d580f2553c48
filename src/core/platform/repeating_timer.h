#pragma once

#include <chrono>
#include <functional>

namespace busquill {

/// Calls a function periodically until it is stopped or destroyed. Where the calls run on the
/// thread that started the timer, they wait while that thread is busy; missed calls are not made
/// up.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;

    /// The first call comes after one period. A running timer is restarted with the new period and
    /// function.
    virtual void Start(std::chrono::milliseconds period, std::function<void()> tick) = 0;
    virtual void Stop() = 0;
};

} // namespace busquill
