#include "link/request_queue.h"

#include "link/board_state.h"
#include "link/link_port.h"
#include "link/link_thread.h"
#include "platform/clock.h"
#include "platform/main_thread.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

using namespace std::chrono_literals;

constexpr auto idleLimit = 5s;

constexpr std::int32_t tryLimit = 4;
constexpr std::int32_t tryLimitIdentify = 1;

// Milliseconds that a board has for its answer.
constexpr std::int64_t answerTime = 2000;
constexpr std::int64_t answerTimeVme = 4000;
constexpr std::int64_t answerTimeSearch = 60000;
/// A byte takes 11 bit times on the wire: this, divided by the rate, is milliseconds.
constexpr std::int64_t byteTime = 11000;

constexpr std::uint32_t framing = 2; // the acknowledgements around data

std::int32_t ReplyLength(const StateRow& state, std::uint32_t length) noexcept {
    switch (state.reply) {
    case StateReply::Bytes:
        return static_cast<std::int32_t>(length + framing);
    case StateReply::Samples:
        return static_cast<std::int32_t>(length * std::uint32_t{sampleRecordSize} + framing);
    case StateReply::Acknowledgement:
        break;
    }
    return 1;
}

/// Completions that a thread owes to requests submitted with no port. A completion may submit the
/// next request of a chain, so they are run by a loop and not inside one another.
struct OwedCompletions {
    std::deque<LinkRequest*> requests;
    bool running = false;
};
thread_local OwedCompletions owed;

} // namespace

RequestQueue::RequestQueue(const BoardState& board, const LinkConditions& conditions,
                           Prompts& prompts, Clock& clock, MainThread& mainThread)
    : board_(board), conditions_(conditions), prompts_(prompts), clock_(clock),
      mainThread_(mainThread) {}

RequestQueue::~RequestQueue() {
    const MutexLock lock(queueLock_);
    for (const LinkRequest* request : requestQueue_) {
        delete request;
    }
}

void RequestQueue::RegisterEncoder(std::int32_t command, CAnalyzerLink::Encoder encoder) {
    const MutexLock lock(queueLock_);
    encoders_[command] = std::move(encoder);
}

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
    std::deque<LinkRequest*> waiting;
    {
        // One step, lest a port that is opened at this moment lose its requests or be forgotten.
        const MutexLock lock(queueLock_);
        if (port != nullptr && !LeavePort(port)) {
            return false;
        }
        fallen();
        waiting.swap(requestQueue_);
    }
    Fail(waiting);
    return true;
}

void RequestQueue::Submit(LinkRequest* request) {
    if (Port() != nullptr) {
        const MutexLock lock(queueLock_);
        if (Port() != nullptr) { // it may have been closed while this thread waited
            request->savedWords = request->words;
            Prepare(*request);
            requestQueue_.push_back(request);
            if (requestQueue_.size() == 1) {
                ring_.Discard();
                StartHead();
            }
            return;
        }
    }
    CompleteAtOnce(request, LinkOk);
}

void RequestQueue::Complete(LinkRequest* request) {
    if (request->completion != nullptr) {
        request->completion(request);
    } else {
        delete request;
    }
}

void RequestQueue::CompleteAtOnce(LinkRequest* request, LinkResult result) {
    request->result = result;
    owed.requests.push_back(request);
    if (owed.running) {
        return;
    }
    owed.running = true;
    while (!owed.requests.empty()) {
        LinkRequest* next = owed.requests.front();
        owed.requests.pop_front();
        Complete(next);
    }
    owed.running = false;
}

void RequestQueue::RunOwedCompletions() {
    while (!owed.requests.empty()) {
        LinkRequest* next = owed.requests.front();
        owed.requests.pop_front();
        Complete(next);
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
    std::deque<LinkRequest*> waiting;
    {
        const MutexLock lock(queueLock_);
        waiting.swap(requestQueue_);
    }
    Fail(waiting);
}

// Only what is submitted with no port ends as good: of these, somebody may take the buffer for what
// the board has answered.
void RequestQueue::Fail(const std::deque<LinkRequest*>& waiting) {
    for (LinkRequest* request : waiting) {
        CompleteAtOnce(request, LinkTransferFailed);
    }
    mainThread_.Wake();
}

// retries and ringWriteAtFail stay: they tell of the command, not of one try.
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
    PreparePayload(request, encoders_);
}

void RequestQueue::PrepareAgain() {
    LinkRequest& head = *requestQueue_.front();
    head.words = head.savedWords;
    Prepare(head);
    ring_.Discard();
    StartHead();
}

void RequestQueue::RestartHead() {
    const MutexLock lock(queueLock_);
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
        // Nothing goes out, so nothing would make the USB thread look at this request.
        if (const auto port = Port()) {
            port->Wake();
        }
        return;
    }
    const std::uint32_t address = Number(head.Address());
    const std::uint32_t length = Number(head.Length());
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
    case StateSends::CallersData:
        if (const auto* data = head.DataAs<const std::uint8_t>()) {
            SendPayload(head, {data, length});
        }
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

void RequestQueue::Step(LinkPort& port) {
    LinkRequest* finished = nullptr;
    bool anotherWaits = false;
    {
        const MutexLock lock(queueLock_);
        if (requestQueue_.empty() || Port().get() != &port) {
            return;
        }
        finished = StepHead(port);
        if (finished == nullptr) {
            return;
        }
        anotherWaits = !requestQueue_.empty();
        ++completing_;
    }
    mainThread_.Wake();
    Complete(finished);
    {
        const MutexLock lock(queueLock_);
        --completing_;
        // A port that was opened meanwhile has begun with the waiting request itself.
        if (anotherWaits && Port().get() == &port) {
            StartHead();
        }
    }
    mainThread_.Wake();
}

/// One look at the running request. Returns it, removed from the queue, when it is finished.
LinkRequest* RequestQueue::StepHead(LinkPort& port) {
    LinkRequest& head = *requestQueue_.front();
    const Look look = port.IsUsb() ? ReadUsb(head, port) : LookAtRing(head);
    if (look.count >= head.replyLength) {
        if (TakeReply(head) && !look.failedNow) {
            return nullptr;
        }
    } else if (!look.failedNow) {
        if (!IsOverdue(head)) {
            return nullptr;
        }
        NoteTimeout(head, port);
    }
    if (Retry(head)) {
        return nullptr;
    }
    requestQueue_.pop_front();
    return &head;
}

RequestQueue::Look RequestQueue::LookAtRing(LinkRequest& head) {
    head.bytesSeen = ring_.Unread();
    head.ringReadAtFail = ring_.ReadIndex();
    head.ringWriteAtFail = ring_.WriteIndex();
    return {.count = head.bytesSeen};
}

/// Reads what the board owes to the running request. The acknowledgements that a serial port
/// would bring are put in, so that the states see the same reply.
RequestQueue::Look RequestQueue::ReadUsb(LinkRequest& head, LinkPort& port) {
    if (head.result != LinkPending) {
        head.retries = tryLimit; // a failed transfer is not tried again
        return {.failedNow = true};
    }
    if (head.replyLength < 1) {
        return {};
    }
    ring_.Reset();
    ring_.Put(acknowledgement);
    if (head.replyLength <= static_cast<std::int32_t>(framing)) {
        if (head.replyLength == static_cast<std::int32_t>(framing)) {
            ring_.Put(acknowledgement);
        }
        return {.count = head.replyLength};
    }
    const std::int32_t dataLength = head.replyLength - static_cast<std::int32_t>(framing);
    std::vector<std::uint8_t> data;
    bool good = head.replyLength < ReplyRing::size;
    if (good) {
        data.resize(static_cast<std::size_t>(dataLength));
        good = static_cast<UsbLinkPort&>(port).ReadPipe(data);
    } else {
        prompts_.Message(Printf("Error reading from usb port, read %d expected %d", 0, dataLength));
    }
    if (!good) {
        head.result = LinkTransferFailed;
        head.retries = tryLimit;
        return {.count = 1, .failedNow = true};
    }
    for (const std::uint8_t byte : data) {
        ring_.Put(byte);
    }
    ring_.Put(acknowledgement);
    return {.count = head.replyLength};
}

/// Checks the reply and goes on to the next state; true while the request goes on.
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
/// after the data have been handed out.
bool RequestQueue::ReplyIsGood(LinkRequest& head, const StateRow& state) {
    if (ring_.Unread() == 0 || ring_.Take() != acknowledgement) {
        return false;
    }
    if (state.reply == StateReply::Acknowledgement) {
        return true;
    }
    auto* data = head.DataAs<std::uint8_t>();
    const std::int32_t count = head.replyLength - static_cast<std::int32_t>(framing);
    for (std::int32_t i = 0; i < count; ++i) {
        const std::uint8_t byte = ring_.Take();
        if (data != nullptr) {
            data[i] = byte;
        }
    }
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
    if (!port.IsUsb()) {
        head.commErrors = static_cast<SerialLinkPort&>(port).ClearErrors();
    }
    head.result = LinkTimeout;
    const std::int32_t first = ring_.ReadIndex();
    head.firstByte = ring_.At(first);
    if (head.bytesSeen > 0) {
        std::int32_t last = first + head.bytesSeen - 1;
        // One off from every other wrap, and kept: an index of exactly the size reads the byte
        // behind the ring.
        if (last > ReplyRing::size) {
            last -= ReplyRing::size;
        }
        head.lastByte = ring_.At(last);
    }
}

/// Begins the command again from its first state while tries are left. Every good step gives all
/// tries back, so a command that always fails at a later state goes on until the board recovers.
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
