#include "link/link_thread.h"

#include "link/link_port.h"
#include "platform/main_thread.h"
#include "platform/thread_priority.h"

namespace busquill {

namespace {

using namespace std::chrono_literals;

constexpr auto stopLimit = 1100ms;

thread_local LinkThread* onThisThread = nullptr;

} // namespace

LinkThread::LinkThread(std::shared_ptr<LinkPort> port, ReplyRing& ring, Step step,
                       MainThread& mainThread)
    : port_(std::move(port)), ring_(ring), step_(std::move(step)), mainThread_(mainThread),
      thread_([this] { Run(); }) {}

LinkThread::~LinkThread() {
    // The thread may be waiting for the answer to a box, which Stop shows while it waits.
    while (!Stop()) {
    }
    thread_.join();
}

LinkThread* LinkThread::OnThisThread() noexcept {
    return onThisThread;
}

bool LinkThread::Stop() {
    stopFlag_ = true;
    port_->Wake();
    return mainThread_.WaitUntil(stopLimit, [this] { return !threadRunning_; });
}

void LinkThread::Run() {
    onThisThread = this;
    LowerThreadPriority();
    std::size_t wanted = 1;
    while (!stopFlag_) {
        port_->AwaitStep(ring_, wanted);
        if (stopFlag_) {
            break;
        }
        wanted = step_(*port_);
    }
    threadRunning_ = false;
    mainThread_.Wake();
}

} // namespace busquill
