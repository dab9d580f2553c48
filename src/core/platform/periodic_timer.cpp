#include "platform/periodic_timer.h"

#include "platform/main_thread.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <future>
#include <mutex>
#include <sys/prctl.h>
#include <system_error>

namespace busquill {

namespace {

using SteadyClock = std::chrono::steady_clock;

/// Lets the system delay this thread's wake-ups by a small part of the resolution. Returns the
/// system's error, or 0.
int AllowSlack(std::chrono::milliseconds resolution) noexcept {
    const auto slack = std::chrono::nanoseconds(resolution) / 20;
    return prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(slack.count()), 0, 0, 0) == 0
               ? 0
               : errno;
}

} // namespace

struct ThreadTimer::Shared {
    std::chrono::milliseconds period{1};
    std::function<void()> tick;
    MainThread* mainThread = nullptr; // where Stop waits; null when that is another thread

    std::mutex mutex;
    std::condition_variable stopped;
    bool stop = false;  // under mutex
    bool ended = false; // under mutex

    void Run() {
        auto next = SteadyClock::now() + period;
        std::unique_lock lock(mutex);
        while (!stopped.wait_until(lock, next, [this] { return stop; })) {
            lock.unlock();
            tick();
            next += period;
            if (const auto late = SteadyClock::now() - next; late > late.zero()) {
                next += (late / period + 1) * period;
            }
            lock.lock();
        }
        ended = true;
        lock.unlock();
        if (mainThread != nullptr) {
            mainThread->Wake();
        }
    }
    bool Ended() {
        const std::lock_guard lock(mutex);
        return ended;
    }
};

ThreadTimer::~ThreadTimer() {
    Stop();
}

PeriodicTimer::Started ThreadTimer::Start(std::chrono::milliseconds period,
                                          std::chrono::milliseconds resolution,
                                          std::function<void()> tick) {
    Stop();
    auto shared = std::make_shared<Shared>();
    shared->period = std::max(period, std::chrono::milliseconds(1));
    shared->tick = std::move(tick);
    shared->mainThread = MainThread::OnThisThread();
    std::promise<int> slack;
    std::future<int> slackError = slack.get_future();
    try {
        thread_ = std::thread([shared, resolution, slack = std::move(slack)]() mutable {
            slack.set_value(AllowSlack(resolution));
            shared->Run();
        });
    } catch (const std::system_error&) {
        return {};
    }
    shared_ = std::move(shared);
    return {true, slackError.get()};
}

void ThreadTimer::Stop() {
    if (!thread_.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(shared_->mutex);
        shared_->stop = true;
        shared_->stopped.notify_all();
    }
    MainThread* main = MainThread::OnThisThread();
    if (thread_.get_id() == std::this_thread::get_id() || (main != nullptr && main->BoxOpen())) {
        thread_.detach();
    } else {
        if (main != nullptr) {
            while (!main->WaitUntil(std::chrono::hours(1), [this] { return shared_->Ended(); })) {
            }
        }
        thread_.join();
    }
    shared_.reset();
}

} // namespace busquill
