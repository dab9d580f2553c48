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
    /// Looks at the running request and returns how many bytes it lacks.
    using Step = std::function<std::size_t(LinkPort&)>;

    /// Starts at once. Calls `step` after each wait of the port, until it is told to stop.
    LinkThread(std::shared_ptr<LinkPort> port, ReplyRing& ring, Step step, MainThread& mainThread);
    /// Waits for the thread's end, however long that takes.
    ~LinkThread();
    LinkThread(const LinkThread&) = delete;
    LinkThread& operator=(const LinkThread&) = delete;

    /// The object when called on its thread, else null.
    [[nodiscard]] static LinkThread* OnThisThread() noexcept;

    [[nodiscard]] const std::shared_ptr<LinkPort>& Port() const noexcept { return port_; }
    /// Tells the thread to end and gives it 1.1 seconds; whether it has ended. Called on the
    /// thread itself, that takes the whole time, and the thread ends later.
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
    std::thread thread_; // last: it uses all of the above
};

} // namespace busquill
