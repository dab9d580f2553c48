#pragma once

#include "platform/repeating_timer.h"

#include <memory>

namespace busquill::test {

/// What a run has set in its timer. The test ticks.
struct TimerState {
    bool runs = false;
    std::chrono::milliseconds period{0};
    std::function<void()> tick;
};

class ManualTimer final : public RepeatingTimer {
public:
    explicit ManualTimer(std::shared_ptr<TimerState> state) : state_(std::move(state)) {}
    ~ManualTimer() override { state_->runs = false; }

    void Start(std::chrono::milliseconds period, std::function<void()> tick) override {
        *state_ = {true, period, std::move(tick)};
    }
    void Stop() override { state_->runs = false; }

private:
    std::shared_ptr<TimerState> state_;
};

} // namespace busquill::test
