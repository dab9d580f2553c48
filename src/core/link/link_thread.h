#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace busquill {

class LinkPort;
class MainThread;
class ReplyRing;

/// The thread that receives from a port and runs the queue: the reader of a serial port, the pump
/// of USB. Its priority is below normal, so that a flood of bytes does not slow the windows.
class LinkThread {
public:
    /// Runs the queue and returns how many bytes the running request lacks.
    using Step = std::function<std::size_t(LinkPort&)>;

    /// Starts the thread. It calls `step` after each wait of the port, until it is stopped.
    LinkThread(std::shared_ptr<LinkPort> port, ReplyRing& ring, Step step, MainThread& mainThread);
    /// Waits until the thread has ended, however long that takes.
    ~LinkThread();
    LinkThread(const LinkThread&) = delete;
    LinkThread& operator=(const LinkThread&) = delete;

    /// The object when called on its thread, else null.
    [[nodiscard]] static LinkThread* OnThisThread() noexcept;

    [[nodiscard]] const std::shared_ptr<LinkPort>& Port() const noexcept { return port_; }
    /// Asks the thread to end and waits up to 1.1 seconds; returns whether it has ended. On the
    /// thread itself this takes the whole time, and the thread ends later.
    bool Stop();
    [[nodiscard]] bool Stopping() const noexcept { return stopFlag_; }
    [[nodiscard]] bool Running() const noexcept { return threadRunning_; }

private:
    void Run();

    const std::shared_ptr<LinkPort> port_;
    ReplyRing& ring_;
    const Step step_;
    MainThread& mainThread_;
    std::atomic<bool> stopFlag_ = false;
    std::atomic<bool> threadRunning_ = true;
    std::thread thread_; // last member: it uses all of the above
};

} // namespace busquill
