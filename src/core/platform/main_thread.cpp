#include "platform/main_thread.h"

#include <algorithm>

namespace busquill {

namespace {

std::atomic<MainThread*> theMainThread = nullptr;
thread_local bool isMainThread = false;

} // namespace

MainThread::MainThread()
    : thread_(std::this_thread::get_id()), present_([](const Box&) { return Answer::Ok; }),
      boxArrived_([] {}) {
    theMainThread = this;
    isMainThread = true;
}

MainThread::~MainThread() {
    theMainThread = nullptr;
    isMainThread = false;
}

MainThread* MainThread::OnThisThread() noexcept {
    return isMainThread ? theMainThread.load() : nullptr;
}

void MainThread::SetPresenter(std::function<Answer(const Box&)> present,
                              std::function<void()> boxArrived) {
    present_ = std::move(present);
    boxArrived_ = std::move(boxArrived);
}

Answer MainThread::Show(const Box& box) {
    if (std::this_thread::get_id() == thread_) {
        return present_(box);
    }
    Pending handed{&box};
    std::unique_lock lock(mutex_);
    pending_.push_back(&handed);
    changed_.notify_all();
    lock.unlock();
    boxArrived_();
    lock.lock();
    changed_.wait(lock, [&] { return handed.answered; });
    return handed.answer;
}

bool MainThread::WaitUntil(std::chrono::milliseconds limit, const std::function<bool()>& done) {
    const bool serving = std::this_thread::get_id() == thread_;
    // Callers ask for an unbounded wait by a limit that would overflow a time point.
    constexpr std::chrono::milliseconds longest = std::chrono::hours(24 * 365);
    const auto end = std::chrono::steady_clock::now() + std::min(limit, longest);
    std::unique_lock lock(mutex_);
    while (true) {
        if (serving) {
            ServeLocked(lock);
        }
        const unsigned long seen = wakes_;
        lock.unlock();
        if (done()) {
            return true;
        }
        lock.lock();
        const bool changed = changed_.wait_until(lock, end, [&] {
            return wakes_ != seen || (serving && !boxOpen_ && !pending_.empty());
        });
        if (!changed) {
            lock.unlock();
            return done();
        }
    }
}

void MainThread::Wake() {
    const std::lock_guard lock(mutex_);
    ++wakes_;
    changed_.notify_all();
}

void MainThread::ServeBoxes() {
    std::unique_lock lock(mutex_);
    ServeLocked(lock);
}

// A box that arrives while another handed-over box is open waits its turn, so boxes never stack.
void MainThread::ServeLocked(std::unique_lock<std::mutex>& lock) {
    while (!boxOpen_ && !pending_.empty()) {
        Pending* next = pending_.front();
        pending_.pop_front();
        boxOpen_ = true;
        lock.unlock();
        const Answer answer = present_(*next->box);
        lock.lock();
        boxOpen_ = false;
        next->answer = answer;
        next->answered = true;
        changed_.notify_all();
    }
}

} // namespace busquill
