#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace busquill {

/// Calls a function at a fixed rate on a thread of its own, which may wait in it.
class PeriodicTimer {
public:
    virtual ~PeriodicTimer() = default;

    /// What became of a Start. The number is the system's for a resolution that it refused, else 0;
    /// the timer runs all the same.
    struct Started {
        bool running = false;
        int resolutionError = 0;
    };
    /// The first call comes after one period, and the others by the clock. A period that ends while
    /// a call lasts is left out. `resolution` is how exact the calls must be.
    [[nodiscard]] virtual Started Start(std::chrono::milliseconds period,
                                        std::chrono::milliseconds resolution,
                                        std::function<void()> tick) = 0;
    /// No call begins any more, and one that lasts is waited for. There is one exception: if the
    /// main thread stops the timer out of a box that another thread has raised, the call may be
    /// waiting for the answer to that very box. It then ends some time after Stop, so whatever it
    /// uses belongs to `tick`, or outlives the timer's thread.
    virtual void Stop() = 0;
};

/// A timer whose calls come at absolute times: a late one does not delay those after it. Start and
/// Stop are called on one thread.
class ThreadTimer final : public PeriodicTimer {
public:
    ThreadTimer() = default;
    ~ThreadTimer() override;
    ThreadTimer(const ThreadTimer&) = delete;
    ThreadTimer& operator=(const ThreadTimer&) = delete;

    Started Start(std::chrono::milliseconds period, std::chrono::milliseconds resolution,
                  std::function<void()> tick) override;
    void Stop() override;

private:
    struct Shared;

    std::shared_ptr<Shared> shared_; // with the thread, which may outlive the timer
    std::thread thread_;
};

} // namespace busquill
