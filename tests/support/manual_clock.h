#pragma once

#include "platform/clock.h"

#include <atomic>

namespace busquill::test {

/// A clock that moves only when a test sets it, or by its own pauses. Any thread.
class ManualClock final : public Clock {
public:
    [[nodiscard]] std::time_t Time() const override {
        return static_cast<std::time_t>(milliseconds_ / 1000);
    }
    void Sleep(std::chrono::milliseconds pause) override { Advance(pause); }
    void Advance(std::chrono::milliseconds step) { milliseconds_ += step.count(); }
    [[nodiscard]] std::chrono::milliseconds Elapsed() const {
        return std::chrono::milliseconds(milliseconds_ - start);
    }

private:
    static constexpr long long start = 1'000'000'000'000;
    std::atomic<long long> milliseconds_ = start;
};

} // namespace busquill::test
