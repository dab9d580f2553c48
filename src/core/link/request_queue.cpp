#include "link/request_queue.h"

#include "link/board_state.h"
#include "link/link_conditions.h"
#include "link/link_port.h"
#include "link/link_thread.h"
#include "platform/clock.h"
#include "platform/main_thread.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace busquill {

namespace {

using namespace std::chrono_literals;

constexpr auto idleLimit = 5s;

constexpr std::int32_t tryLimit = 4;
constexpr std::int32_t tryLimitIdentify = 1;

// Milliseconds that a board has to answer.
constexpr std::int64_t answerTime = 2000;
constexpr std::int64_t answerTimeVme = 4000;
constexpr std::int64_t answerTimeSearch = 60000;
/// A byte takes 11 bit times on the wire: this, divided by the rate, is milliseconds.
constexpr std::int64_t byteTime = 11000;

std::int32_t ReplyLength(const StateRow& state, std::uint32_t length) noexcept {
    switch (state.reply) {
    case StateReply::Bytes:
        return static_cast<std::int32_t>(length) + framingBytes;
    case StateReply::Samples:
        return static_cast<std::int32_t>(length * std::uint32_t{sampleRecordSize}) + framingBytes;
    case StateReply::Acknowledgement:
        break;
    }
    return 1;
}

/// Completions that a thread has yet to run for requests submitted with no port. A completion may
/// submit the next request of a chain, so a loop runs them instead of nesting.
struct OwedCompletions {
    std::deque<LinkRequestPtr> requests;
    bool running = false;
};
thread_local OwedCompletions owed;

} // namespace

RequestQueue::RequestQueue(const BoardState& board, const LinkConditions& conditions,
                           Prompts& prompts, Clock& clock, MainThread& mainThread)
    : board_(board), conditions_(conditions), prompts_(prompts), clock_(clock),
      mainThread_(mainThread) {}

std::shared_ptr<LinkPort> RequestQueue::Port() const {
    const LeafLock lock(portLock_);
    return port_;
}

void RequestQueue::SetPort(std::shared_ptr<LinkPort> port) {
    const LeafLock lock(portLock_);
    port_.swap(port);
}

bool RequestQueue::ReleasePort(const std::shared_ptr<LinkPort>& port) {
    const MutexLock lock(queueLock_);
    return LeavePort(port);
}

bool RequestQueue::LeavePort(const std::shared_ptr<LinkPort>& port) {
    const LeafLock lock(portLock_);
    if (port_ == nullptr || port_ != port) {
        return false;
    }
    port_.reset();
    return true;
}

bool RequestQueue::FallFrom(const std::shared_ptr<LinkPort>& port,
                            const std::function<void()>& fallen) {
    std::deque<LinkRequestPtr> waiting;
    {
        // All under one lock, or a port that is opened at this moment might lose its requests or be
        // dropped.
        const MutexLock lock(queueLock_);
        if (port != nullptr && !LeavePort(port)) {
            return false;
        }
        fallen();
        waiting.swap(requestQueue_);
    }
    Fail(std::move(waiting));
    return true;
}

bool RequestQueue::HasPort() const {
    return Port() != nullptr || (awaitsPort_ && MainThread::OnThisThread() == nullptr);
}

void RequestQueue::Submit(LinkRequestPtr request) {
    if (HasPort()) {
        const MutexLock lock(queueLock_);
        if (HasPort()) { // it may have been closed while this thread waited
            Prepare(*request);
            requestQueue_.push_back(std::move(request));
            if (requestQueue_.size() == 1 && Port() != nullptr) {
                ring_.Discard();
                StartHead();
            }
            return;
        }
    }
    CompleteAtOnce(std::move(request), LinkOk);
}

void RequestQueue::Complete(LinkRequestPtr request) {
    // Moved out of the request, which may be destroyed before the completion returns.
    const auto completion = std::exchange(request->completion, nullptr);
    if (completion) {
        completion(std::move(request));
    }
}

void RequestQueue::CompleteAtOnce(LinkRequestPtr request, LinkResult result) {
    request->result = result;
    owed.requests.push_back(std::move(request));
    if (owed.running) {
        return;
    }
    owed.running = true;
    RunOwedCompletions();
    owed.running = false;
}

void RequestQueue::RunOwedCompletions() {
    while (!owed.requests.empty()) {
        LinkRequestPtr next = std::move(owed.requests.front());
        owed.requests.pop_front();
        Complete(std::move(next));
    }
}

void RequestQueue::WaitIdle() {
    RunOwedCompletions();
    const bool inCompletion = LinkThread::OnThisThread() != nullptr;
    mainThread_.WaitUntil(idleLimit, [this, inCompletion] {
        const MutexLock lock(queueLock_);
        return requestQueue_.empty() && (completing_ == 0 || inCompletion);
    });
}

bool RequestQueue::IsIdle() {
    const MutexLock lock(queueLock_);
    return requestQueue_.empty();
}

void RequestQueue::FailAll() {
    std::deque<LinkRequestPtr> waiting;
    {
        const MutexLock lock(queueLock_);
        awaitsPort_ = false;
        waiting.swap(requestQueue_);
    }
    Fail(std::move(waiting));
}

// Only requests submitted with no port complete as LinkOk: the callers of these might take the
// unread buffer for the board's answer.
void RequestQueue::Fail(std::deque<LinkRequestPtr> waiting) {
    for (LinkRequestPtr& request : waiting) {
        CompleteAtOnce(std::move(request), LinkTransferFailed);
    }
    mainThread_.Wake();
}

// retries and ringWriteAtFail stay: they belong to the command, not to one try.
void RequestQueue::Prepare(LinkRequest& request) {
    request.state = 0;
    request.replyLength = 0;
    request.bytesSeen = 0;
    request.result = LinkPending;
    request.commErrors = 0;
    request.ringReadAtFail = 0;
    request.firstByte = 0;
    request.lastByte = 0;

    request.state = NextState(request.command, 0);
    if (request.state == 0) {
        prompts_.TopmostMessage(
            Printf("Error finding initial state for serial command %d.", request.command));
    }
    if (!PreparePayload(request)) {
        // Zeros in place of a payload would change the board.
        assert(false && "a writing command has no maker of its payload");
        request.state = 0;
    }
}

void RequestQueue::PrepareAgain() {
    LinkRequest& head = *requestQueue_.front();
    Prepare(head);
    ring_.Discard();
    StartHead();
}

void RequestQueue::RestartHead() {
    const MutexLock lock(queueLock_);
    awaitsPort_ = false;
    if (!requestQueue_.empty()) {
        PrepareAgain();
    }
}

void RequestQueue::StartHead() {
    if (requestQueue_.empty()) {
        return;
    }
    LinkRequest& head = *requestQueue_.front();
    const StateRow* state = FindState(head.state);
    if (state == nullptr) {
        // Nothing is sent, so nothing else would wake the USB thread for this request.
        if (const auto port = Port()) {
            port->Wake();
        }
        return;
    }
    const std::uint32_t address = head.address;
    const std::uint32_t length = head.length;
    head.replyLength = ReplyLength(*state, length);
    switch (state->sends) {
    case StateSends::AddressLow:
        SendFrame(head, FrameAddressLow, address);
        break;
    case StateSends::AddressMiddle:
        SendFrame(head, FrameAddressMiddle, address >> 8);
        break;
    case StateSends::AddressHigh:
        SendFrame(head, FrameAddressHigh, address >> 16);
        break;
    case StateSends::LengthLow:
        SendFrame(head, FrameLengthLow, length);
        break;
    case StateSends::LengthHigh:
        SendFrame(head, FrameLengthHigh, length >> 8);
        break;
    case StateSends::Function:
        SendFrame(head, FrameFunction, state->function);
        break;
    case StateSends::Payload:
        SendPayload(head, head.payload);
        head.payload.clear();
        break;
    }
}

void RequestQueue::SendFrame(LinkRequest& request, FrameOpcode opcode, std::uint32_t parameter) {
    lastSendTime_ = clock_.Time();
    const std::array<std::uint8_t, 2> frame{opcode, static_cast<std::uint8_t>(parameter)};
    SendPayload(request, frame);
}

void RequestQueue::SendPayload(LinkRequest& request, std::span<const std::uint8_t> bytes) {
    const auto port = Port();
    if (port != nullptr && !port->Send(bytes)) {
        request.result = LinkTransferFailed;
    }
}

std::size_t RequestQueue::Step(LinkPort& port) {
    LinkRequestPtr finished;
    bool anotherWaits = false;
    {
        const MutexLock lock(queueLock_);
        if (requestQueue_.empty() || Port().get() != &port) {
            return 1;
        }
        finished = StepHead(port);
        if (finished == nullptr) {
            return BytesLacking();
        }
        anotherWaits = !requestQueue_.empty();
        ++completing_;
    }
    Complete(std::move(finished));
    std::size_t lacking = 1;
    bool idle = false;
    {
        const MutexLock lock(queueLock_);
        --completing_;
        // A port that was opened meanwhile has already started the waiting request.
        if (anotherWaits && Port().get() == &port) {
            StartHead();
        }
        lacking = BytesLacking();
        idle = requestQueue_.empty();
    }
    if (idle) { // not during an upload, which submits the next request in each completion
        mainThread_.Wake();
    }
    return lacking;
}

std::size_t RequestQueue::BytesLacking() const {
    const std::int32_t reply = requestQueue_.empty() ? 0 : requestQueue_.front()->replyLength;
    return static_cast<std::size_t>(std::max(reply - ring_.Unread(), 1));
}

/// Advances the running request. Returns it, removed from the queue, when it is finished.
LinkRequestPtr RequestQueue::StepHead(LinkPort& port) {
    LinkRequest& head = *requestQueue_.front();
    const ReplyState reply = port.PollReply(head, ring_);
    if (reply.failed) {
        head.result = LinkTransferFailed;
        head.retries = tryLimit; // a failed transfer is not tried again
    } else if (reply.count >= head.replyLength) {
        if (TakeReply(head)) {
            return nullptr;
        }
    } else {
        if (!IsOverdue(head)) {
            return nullptr;
        }
        NoteTimeout(head, port);
    }
    if (Retry(head)) {
        return nullptr;
    }
    LinkRequestPtr finished = std::move(requestQueue_.front());
    requestQueue_.pop_front();
    return finished;
}

/// Checks the reply and goes to the next state; true while the request continues.
bool RequestQueue::TakeReply(LinkRequest& head) {
    const StateRow* state = FindState(head.state);
    if (state == nullptr) {
        head.result = LinkBadState;
        return false;
    }
    if (!ReplyIsGood(head, *state)) {
        head.result = LinkBadReply;
        return false;
    }
    const std::int32_t next = NextState(head.command, head.state);
    if (next == 0) {
        prompts_.TopmostMessage(
            Printf("Error finding next state for serial command %d, current state %d.",
                   head.command, head.state));
    } else {
        head.state = next;
        if (next == finalState) {
            head.result = LinkOk;
            return false;
        }
        StartHead();
    }
    head.retries = 0;
    return true;
}

/// Consumes the reply. A wrong first byte leaves the rest in the ring; a wrong last byte is found
/// only after the data have been copied out.
bool RequestQueue::ReplyIsGood(LinkRequest& head, const StateRow& state) {
    if (ring_.Unread() == 0 || ring_.Take() != acknowledgement) {
        return false;
    }
    if (state.reply == StateReply::Acknowledgement) {
        return true;
    }
    const auto count = static_cast<std::size_t>(head.replyLength - framingBytes);
    const std::span<std::uint8_t> data = head.reply.first(std::min(count, head.reply.size()));
    ring_.Take(data);
    ring_.Skip(count - data.size());
    return ring_.Unread() > 0 && ring_.Take() == acknowledgement;
}

bool RequestQueue::IsOverdue(const LinkRequest& head) const {
    const std::int64_t elapsed = clock_.Time() - lastSendTime_;
    const std::int64_t baud = conditions_.actualBaud;
    std::int64_t base = board_.IsVmeFamily() ? answerTimeVme : answerTime;
    if (baud != 0) {
        if (head.command == CmdStartSearch) {
            base = answerTimeSearch;
        }
        base += byteTime * head.replyLength / baud;
    }
    const std::int64_t limit = (base + 500) / 1000;
    return elapsed > limit;
}

void RequestQueue::NoteTimeout(LinkRequest& head, LinkPort& port) {
    head.commErrors = port.ClearErrors();
    head.result = LinkTimeout;
    const std::int32_t first = ring_.ReadIndex();
    head.firstByte = ring_.At(first);
    if (head.bytesSeen > 0) {
        std::int32_t last = first + head.bytesSeen - 1;
        // Differs by one from every other wrap on purpose: an index equal to the size reads the
        // byte past the ring.
        if (last > ReplyRing::size) {
            last -= ReplyRing::size;
        }
        head.lastByte = ring_.At(last);
    }
}

/// Restarts the command from its first state while tries are left. Every good step resets the
/// count, so a command that always fails at a later state continues until the board recovers.
bool RequestQueue::Retry(LinkRequest& head) {
    const std::int32_t limit = conditions_.linkPhase == PhaseIdentify ? tryLimitIdentify : tryLimit;
    if (head.result == LinkOk || head.retries >= limit) {
        return false;
    }
    ++head.retries;
    PrepareAgain();
    return true;
}

} // namespace busquill
