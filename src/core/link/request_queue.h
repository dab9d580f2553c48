#pragma once

#include "link/leaf_mutex.h"
#include "link/link_request.h"
#include "link/reply_ring.h"
#include "platform/mutex.h"

#include <atomic>
#include <ctime>
#include <deque>
#include <functional>
#include <memory>
#include <span>

namespace busquill {

class BoardState;
class Clock;
class LinkPort;
class MainThread;
class Prompts;
struct LinkConditions;

/// The queue of requests and the machine that runs its head through the CommandStateTable.
///
///   caller                queue                 link's thread
///   Submit -- prepare --> [head][..][..] <----- Step: reply, time-out, retry
///                                               completion, with no lock held
///
/// queueLock_ is held while a request is prepared and sent and while USB is read, so a message box
/// about a failure is open with the lock held. It is not held during a completion, which may
/// submit.
class RequestQueue {
public:
    /// Requests still queued at destruction are dropped; their completions do not run.
    RequestQueue(const BoardState& board, const LinkConditions& conditions, Prompts& prompts,
                 Clock& clock, MainThread& mainThread);
    RequestQueue(const RequestQueue&) = delete;
    RequestQueue& operator=(const RequestQueue&) = delete;

    /// With no port, the completion has run by the time the thread's outermost Submit returns,
    /// unless a port is awaited.
    void Submit(LinkRequestPtr request);
    /// Waits until nothing is queued and the last completion has returned, at most 5 seconds. On
    /// the link's thread, which is itself inside a completion, only until nothing is queued.
    void WaitIdle();
    [[nodiscard]] bool IsIdle();
    /// Runs the pending completions of requests that this thread submitted with no port. For a wait
    /// inside a completion, which would otherwise never end.
    static void RunOwedCompletions();

    /// Link's thread: advances the running request of that port. Returns how many bytes must arrive
    /// before another step can advance it, or 1 when that is not known. No more than these may be
    /// put in the ring until then: unread bytes are discarded when a command is restarted.
    std::size_t Step(LinkPort& port);

    /// The port that requests go to; null when there is none.
    [[nodiscard]] std::shared_ptr<LinkPort> Port() const;
    void SetPort(std::shared_ptr<LinkPort> port);
    /// Stops using that port; false when it is not, or no longer, the one in use.
    bool ReleasePort(const std::shared_ptr<LinkPort>& port);
    /// Stops using that port because it failed: `fallen` runs before another port can replace it,
    /// and all queued requests fail. Does nothing and returns false when it is not, or no longer,
    /// the one in use. Null means a port that could not be opened.
    bool FallFrom(const std::shared_ptr<LinkPort>& port, const std::function<void()>& fallen);
    /// A port is about to be opened in place of this one. Until RestartHead or FailAll, requests of
    /// other threads wait for it: what they ask of the board must not be answered by nobody. The
    /// main thread, which opens it, has none then.
    void AwaitPort() noexcept { awaitsPort_ = true; }
    /// Restarts the running request on a port that has just been opened.
    void RestartHead();
    /// Completes all requests as failed; nothing more is sent to their board.
    void FailAll();
    [[nodiscard]] ReplyRing& Ring() noexcept { return ring_; }

    /// Copies a block that requests have read, under the lock.
    template <typename Block>
    [[nodiscard]] Block CopyOf(const Block& block) {
        const MutexLock lock(queueLock_);
        return block;
    }
    template <typename Block>
    void Clear(Block& block) {
        const MutexLock lock(queueLock_);
        block = {};
    }

private:
    void Prepare(LinkRequest& request) BUSQUILL_REQUIRES(queueLock_);
    void StartHead() BUSQUILL_REQUIRES(queueLock_);
    void SendFrame(LinkRequest& request, FrameOpcode opcode, std::uint32_t parameter)
        BUSQUILL_REQUIRES(queueLock_);
    void SendPayload(LinkRequest& request, std::span<const std::uint8_t> bytes)
        BUSQUILL_REQUIRES(queueLock_);
    void PrepareAgain() BUSQUILL_REQUIRES(queueLock_);

    [[nodiscard]] LinkRequestPtr StepHead(LinkPort& port) BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] std::size_t BytesLacking() const BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] bool TakeReply(LinkRequest& head) BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] bool ReplyIsGood(LinkRequest& head, const StateRow& state)
        BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] bool IsOverdue(const LinkRequest& head) const BUSQUILL_REQUIRES(queueLock_);
    void NoteTimeout(LinkRequest& head, LinkPort& port) BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] bool Retry(LinkRequest& head) BUSQUILL_REQUIRES(queueLock_);

    static void Complete(LinkRequestPtr request);
    static void CompleteAtOnce(LinkRequestPtr request, LinkResult result);
    void Fail(std::deque<LinkRequestPtr> waiting);
    bool LeavePort(const std::shared_ptr<LinkPort>& port) BUSQUILL_REQUIRES(queueLock_);

    const BoardState& board_;
    const LinkConditions& conditions_;
    Prompts& prompts_;
    Clock& clock_;
    MainThread& mainThread_;

    /// Whether a request of this thread goes to the port that is or will be open.
    [[nodiscard]] bool HasPort() const;

    std::atomic<bool> awaitsPort_ = false;
    mutable LeafMutex portLock_;
    std::shared_ptr<LinkPort> port_ BUSQUILL_GUARDED_BY(portLock_);

    Mutex queueLock_;
    std::deque<LinkRequestPtr> requestQueue_ BUSQUILL_GUARDED_BY(queueLock_);
    /// Number of completions running on a thread of the link.
    int completing_ BUSQUILL_GUARDED_BY(queueLock_) = 0;
    std::time_t lastSendTime_ BUSQUILL_GUARDED_BY(queueLock_) = 0;
    ReplyRing ring_;
};

} // namespace busquill
