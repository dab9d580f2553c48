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
/// of the machine is open with it held. It is not held during a completion, which may submit.
class RequestQueue {
public:
    /// Requests that still wait at its end are dropped; their completions do not run.
    RequestQueue(const BoardState& board, const LinkConditions& conditions, Prompts& prompts,
                 Clock& clock, MainThread& mainThread);
    RequestQueue(const RequestQueue&) = delete;
    RequestQueue& operator=(const RequestQueue&) = delete;

    /// With no port, the completion has run when the outermost Submit of the thread returns.
    void Submit(LinkRequestPtr request);
    /// Waits until nothing is queued and the last completion has returned, at most 5 seconds. On
    /// the link's thread, which is inside a completion itself, only until nothing is queued.
    void WaitIdle();
    [[nodiscard]] bool IsIdle();
    /// Runs the completions that this thread owes to requests it submitted with no port, when it
    /// must wait for one inside another.
    static void RunOwedCompletions();

    /// Link's thread: looks at the running request of that port. Returns how many bytes must come
    /// before another look finds more, which is 1 when that is not known. No more of them are to be
    /// put in the ring until then: what lies there when a command begins again is discarded.
    std::size_t Step(LinkPort& port);

    /// The port that requests go to; null when there is none.
    [[nodiscard]] std::shared_ptr<LinkPort> Port() const;
    void SetPort(std::shared_ptr<LinkPort> port);
    /// Leaves that port; false when it is not the one in use (any more).
    bool ReleasePort(const std::shared_ptr<LinkPort>& port);
    /// Leaves that port for none: `fallen` runs before another can take its place, and the requests
    /// that wait fail. False, and nothing happens, when it is not the one in use (any
    /// more). Null stands for a port that could not be opened.
    bool FallFrom(const std::shared_ptr<LinkPort>& port, const std::function<void()>& fallen);
    /// Begins the running request again, on a port that has just been opened.
    void RestartHead();
    /// Finishes all requests as failed: their board is not asked any more.
    void FailAll();
    [[nodiscard]] ReplyRing& Ring() noexcept { return ring_; }

    /// Copies what requests have read, in one piece.
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

    mutable LeafMutex portLock_;
    std::shared_ptr<LinkPort> port_ BUSQUILL_GUARDED_BY(portLock_);

    Mutex queueLock_;
    std::deque<LinkRequestPtr> requestQueue_ BUSQUILL_GUARDED_BY(queueLock_);
    /// Completions that run on a thread of the link.
    int completing_ BUSQUILL_GUARDED_BY(queueLock_) = 0;
    std::time_t lastSendTime_ BUSQUILL_GUARDED_BY(queueLock_) = 0;
    ReplyRing ring_;
};

} // namespace busquill
