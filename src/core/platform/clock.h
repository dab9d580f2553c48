#pragma once

#include <chrono>
#include <ctime>

namespace busquill {

/// The time of day in whole seconds and fixed pauses.
class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual std::time_t Time() const = 0;
    /// A pause of a fixed length, which nothing ends early. On the main thread, the boxes of other
    /// threads are shown meanwhile.
    virtual void Sleep(std::chrono::milliseconds pause) = 0;
};

class SystemClock final : public Clock {
public:
    [[nodiscard]] std::time_t Time() const override;
    void Sleep(std::chrono::milliseconds pause) override;
};

} // namespace busquill
