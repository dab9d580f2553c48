#pragma once

#include <chrono>
#include <ctime>

namespace busquill {

/// The time of day in whole seconds and fixed pauses.
class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual std::time_t Time() const = 0;
    /// Pauses for a fixed time, which nothing cuts short. On the main thread, boxes raised by other
    /// threads are shown meanwhile.
    virtual void Sleep(std::chrono::milliseconds pause) = 0;
};

class SystemClock final : public Clock {
public:
    [[nodiscard]] std::time_t Time() const override;
    void Sleep(std::chrono::milliseconds pause) override;
};

} // namespace busquill
