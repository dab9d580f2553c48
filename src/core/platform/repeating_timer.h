#pragma once

#include <chrono>
#include <functional>

namespace busquill {

/// Calls a function again and again until it is stopped or goes. A timer that calls on the thread
/// that has started it waits while that thread is busy; it never catches up on missed calls.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;

    /// The first call comes after one period. A timer that runs goes on with the new ones.
    virtual void Start(std::chrono::milliseconds period, std::function<void()> tick) = 0;
    virtual void Stop() = 0;
};

} // namespace busquill
