#pragma once

#include "platform/prompts.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace busquill {

/// Where the main thread waits, and how message boxes of other threads reach it.
///
///   link thread                      main thread
///   Show(box) -- pending_ -------->  WaitUntil / ServeBoxes
///   (blocks)                         present(box)
///             <- answer, wake ----
///
/// A box raised on another thread is shown by the main thread, which may itself be waiting for
/// something that thread holds. So every wait of the main thread goes through here and shows the
/// boxes that are handed over while it waits. No other event is handled in a wait. The object must
/// outlive every thread that raises boxes.
class MainThread final : public Prompts {
public:
    /// The thread that constructs the object is the main thread. There is one at a time.
    MainThread();
    ~MainThread() override;
    MainThread(const MainThread&) = delete;
    MainThread& operator=(const MainThread&) = delete;

    /// `present` shows a box on the main thread and returns the answer. `boxArrived` is called on
    /// the thread that raised a box, so that an idle event loop calls ServeBoxes soon.
    void SetPresenter(std::function<Answer(const Box&)> present, std::function<void()> boxArrived);

    /// The object when called on its thread, else null.
    [[nodiscard]] static MainThread* OnThisThread() noexcept;

    /// Any thread. On the main thread the box is shown at once, elsewhere it is handed over.
    Answer Show(const Box& box) override;

    /// Any thread. Waits until `done` returns true, at most `limit`, and returns its last result.
    /// `done` is called at each Wake. On the main thread, boxes are served meanwhile; the time
    /// while one is open counts.
    bool WaitUntil(std::chrono::milliseconds limit, const std::function<bool()>& done);

    /// Any thread: the condition of a WaitUntil may hold now.
    void Wake();

    /// Main thread: shows the pending boxes. Does nothing while one is being shown.
    void ServeBoxes();

    /// Whether a handed-over box is being shown; timers hold their ticks meanwhile. Any thread.
    [[nodiscard]] bool BoxOpen() const noexcept { return boxOpen_; }

private:
    struct Pending {
        const Box* box;
        Answer answer = Answer::Ok;
        bool answered = false;
    };

    void ServeLocked(std::unique_lock<std::mutex>& lock);

    const std::thread::id thread_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Pending*> pending_; // under mutex_
    unsigned long wakes_ = 0;      // under mutex_
    std::atomic<bool> boxOpen_ = false;
    std::function<Answer(const Box&)> present_; // set before other threads start
    std::function<void()> boxArrived_;
};

} // namespace busquill
