#pragma once

#include "platform/periodic_timer.h"

namespace busquill::test {

/// What a run has set in its timer, and what the timer answers. The test ticks.
struct PeriodicTimerState {
    bool runs = false;
    std::chrono::milliseconds period{0};
    std::chrono::milliseconds resolution{0};
    std::function<void()> tick;
    PeriodicTimer::Started answer{true, 0};
};

class ManualPeriodicTimer final : public PeriodicTimer {
public:
    explicit ManualPeriodicTimer(std::shared_ptr<PeriodicTimerState> state)
        : state_(std::move(state)) {}
    ~ManualPeriodicTimer() override { state_->runs = false; }

    Started Start(std::chrono::milliseconds period, std::chrono::milliseconds resolution,
                  std::function<void()> tick) override {
        state_->runs = true;
        state_->period = period;
        state_->resolution = resolution;
        state_->tick = std::move(tick);
        return state_->answer;
    }
    void Stop() override { state_->runs = false; }

private:
    std::shared_ptr<PeriodicTimerState> state_;
};

} // namespace busquill::test
