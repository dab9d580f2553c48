#include "link/link_machine.h"
#include "platform/clock.h"
#include "platform/text.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr std::uint8_t acknowledge = '*';
constexpr std::uint8_t outPipe = 2;
constexpr std::uint8_t inPipe = 0x82;

constexpr std::int32_t triesInIdentification = 1;
constexpr std::int32_t triesElsewhere = 4;
constexpr std::chrono::milliseconds idleLimit{5000};

enum Opcode : std::uint8_t {
    OpFunction = 2,
    OpAddressLow = 4,
    OpAddressMiddle = 6,
    OpAddressHigh = 8,
    OpLengthLow = 10,
    OpLengthHigh = 12,
};

enum class Sends { Nothing, Address, Length, Function, Payload, DataByte };
enum class Reply { Acknowledge, Bytes, Records };

/// What a state sends and what comes back.
struct StateAction {
    Sends sends = Sends::Nothing;
    std::uint8_t opcode = 0;
    std::uint8_t parameter = 0; // function code, or the shift of an address or length byte
    Reply reply = Reply::Acknowledge;
};

constexpr StateAction FunctionState(std::uint8_t code, Reply reply = Reply::Acknowledge) {
    return {Sends::Function, OpFunction, code, reply};
}

constexpr StateAction actions[finalState] = {
    {},                                   // 0: never sent
    {Sends::Address, OpAddressLow, 0},    // 1
    {Sends::Address, OpAddressMiddle, 8}, // 2
    {Sends::Address, OpAddressHigh, 16},  // 3
    {Sends::Length, OpLengthLow, 0},      // 4
    {Sends::Length, OpLengthHigh, 8},     // 5
    FunctionState(30),                    // 6: firmware record
    {Sends::Payload},                     // 7
    FunctionState(2),                     // 8: write memory
    {Sends::DataByte},                    // 9
    FunctionState(29),                    // 10: apply new baud rate
    FunctionState(1, Reply::Bytes),       // 11: read memory
    FunctionState(3, Reply::Records),     // 12: samples before the trigger
    FunctionState(5, Reply::Records),     // 13: samples after the trigger
    FunctionState(2),                     // 14: write memory
    {Sends::Payload},                     // 15
    FunctionState(2),                     // 16: write memory
    {Sends::Payload},                     // 17
    FunctionState(11),                    // 18: start trace
    FunctionState(12),                    // 19: stop trace
    FunctionState(13),                    // 20: start search
    FunctionState(15),                    // 21: start performance
    FunctionState(16),                    // 22: stop performance
    FunctionState(17),                    // 23: start anomaly detection
    FunctionState(18),                    // 24: stop anomaly detection
    FunctionState(21),                    // 25: start configuration scan
    FunctionState(22),                    // 26: stop configuration scan
    FunctionState(19),                    // 27: start compliance test
    FunctionState(20),                    // 28: stop compliance test
    FunctionState(23),                    // 29: exerciser go
    FunctionState(24),                    // 30: exerciser stop
    FunctionState(25),                    // 31: start stimulus
    FunctionState(26),                    // 32: stop stimulus
    FunctionState(35, Reply::Records),    // 33: zoom samples before the trigger
    FunctionState(36, Reply::Records),    // 34: zoom samples after the trigger
    FunctionState(9, Reply::Bytes),       // 35: read target data
    FunctionState(10),                    // 36: write target data
    FunctionState(39),                    // 37: start backplane test
    FunctionState(40),                    // 38: stop backplane test
};

bool IsKnownState(std::int32_t state) noexcept {
    return state >= 1 && state < finalState;
}

const StateAction& ActionOf(const LinkRequest& request) noexcept {
    return actions[static_cast<std::size_t>(request.state)];
}

std::int32_t ReplyLength(LinkRequest& request) {
    const auto length = static_cast<std::int32_t>(request.Length());
    switch (ActionOf(request).reply) {
    case Reply::Bytes:
        return length + 2;
    case Reply::Records:
        return length * static_cast<std::int32_t>(sampleRecordSize) + 2;
    case Reply::Acknowledge:
        break;
    }
    return 1;
}

void Dispose(LinkRequest* request) {
    if (request->completion != nullptr) {
        request->completion(request);
    } else {
        delete request;
    }
}

} // namespace

void CAnalyzerLink::Machine::RegisterEncoder(std::int32_t command, Encoder encoder) {
    const MutexLock lock(queueLock_);
    encoders_[command] = std::move(encoder);
}

void CAnalyzerLink::Machine::Submit(LinkRequest* request) {
    if (port_ == Port::Closed) {
        CompleteAtOnce(request);
        return;
    }
    const MutexLock lock(queueLock_);
    request->savedWords = request->words;
    Prepare(*request);
    queue_.push_back(request);
    if (queue_.size() == 1) {
        ring_.Discard();
        StartHead();
    }
}

// A completion may submit the next request of its chain: the chain runs as a loop, so that its
// length does not show in the stack.
void CAnalyzerLink::Machine::CompleteAtOnce(LinkRequest* request) {
    static thread_local std::deque<LinkRequest*>* running = nullptr;
    request->result = LinkOk;
    if (running != nullptr) {
        running->push_back(request);
        return;
    }
    std::deque<LinkRequest*> chain = {request};
    running = &chain;
    while (!chain.empty()) {
        LinkRequest* next = chain.front();
        chain.pop_front();
        Dispose(next);
    }
    running = nullptr;
}

void CAnalyzerLink::Machine::Prepare(LinkRequest& request) {
    request.state = 0;
    request.replyLength = 0;
    request.bytesSeen = 0;
    request.result = LinkPending;
    request.commErrors = 0;
    request.ringReadAtFail = 0;
    request.firstByte = 0;
    request.lastByte = 0;
    const std::int32_t first = NextState(request.command, 0);
    if (first == 0) {
        services_.prompts.TopmostMessage(
            Printf("Error finding initial state for serial command %d.", request.command));
    }
    request.state = first;
    EncodeParameters(request, encoders_);
}

void CAnalyzerLink::Machine::StartHead() {
    if (queue_.empty() || !IsKnownState(queue_.front()->state)) {
        return;
    }
    LinkRequest& request = *queue_.front();
    const StateAction& action = ActionOf(request);
    request.replyLength = ReplyLength(request);
    switch (action.sends) {
    case Sends::Address:
        SendFrame(action.opcode, static_cast<std::uint8_t>(request.Address() >> action.parameter),
                  &request);
        break;
    case Sends::Length:
        SendFrame(action.opcode, static_cast<std::uint8_t>(request.Length() >> action.parameter),
                  &request);
        break;
    case Sends::Function:
        SendFrame(action.opcode, action.parameter, &request);
        break;
    case Sends::DataByte:
    case Sends::Payload: {
        const std::vector<std::uint8_t> payload = std::move(request.payload);
        request.payload.clear();
        SendBytes(payload, &request);
        break;
    }
    case Sends::Nothing:
        break;
    }
}

void CAnalyzerLink::Machine::SendFrame(std::uint8_t opcode, std::uint8_t parameter,
                                       LinkRequest* request) {
    lastSendTime_ = services_.clock.Time();
    SendBytes(std::array{opcode, parameter}, request);
}

void CAnalyzerLink::Machine::SendBytes(std::span<const std::uint8_t> bytes, LinkRequest* request) {
    if (port_ == Port::Closed) {
        return;
    }
    if (overUsb_) {
        SendOverUsb(bytes, request);
        return;
    }
    if (const int error = serial_ ? serial_->Write(bytes) : 0; error != 0) {
        services_.prompts.TopmostMessage(
            Printf("Error writing to %s, err %d", portName_.c_str(), error));
    }
}

void CAnalyzerLink::Machine::SendOverUsb(std::span<const std::uint8_t> bytes,
                                         LinkRequest* request) {
    bool sent = port_ != Port::Reopen || ReopenUsb();
    if (sent) {
        sent = usb_ && usb_->Write(outPipe, bytes).ok;
        if (!sent) {
            services_.prompts.Message(
                "Error from DeviceIoControl - IOCTL_ADAPT_SEND_NON_EP0_DIRECT");
        }
    }
    if (!sent && request != nullptr) {
        request->result = LinkTransferFailed;
    }
    SignalPump();
}

// One look at the head request: called after each byte read, each read time-out, and on USB after
// each send.
void CAnalyzerLink::Machine::Step() {
    LinkRequest* done = nullptr;
    bool another = false;
    {
        const MutexLock lock(queueLock_);
        if (queue_.empty()) {
            return;
        }
        LinkRequest& request = *queue_.front();
        bool failedNow = false;
        const std::int32_t count = CountReply(request, failedNow);
        if (count >= request.replyLength) {
            const StepEnd end = Advance(request, failedNow);
            if (end == StepEnd::Waiting) {
                return;
            }
        } else if (!failedNow) {
            if (!DeadlinePassed(request)) {
                return;
            }
            NoteTimeout(request);
        }
        if (Restart(request)) {
            return;
        }
        done = &request;
        queue_.pop_front();
        another = !queue_.empty();
        ++completing_;
    }
    Finish(done);
    if (another) {
        const MutexLock lock(queueLock_);
        StartHead();
    }
}

std::int32_t CAnalyzerLink::Machine::CountReply(LinkRequest& request, bool& failedNow) {
    if (!overUsb_) {
        request.bytesSeen = ring_.Count();
        request.ringReadAtFail = ring_.ReadIndex();
        request.ringWriteAtFail = ring_.WriteIndex();
        return request.bytesSeen;
    }
    if (request.result != LinkPending) {
        failedNow = true;
        request.retries = triesElsewhere;
        return 0;
    }
    if (request.replyLength < 1) {
        return 0;
    }
    // USB carries no acknowledgements; the state machine expects them all the same.
    ring_.Reset();
    ring_.Put(acknowledge);
    if (request.replyLength < 3) {
        return 1;
    }
    if (!ReadUsbReply(request)) {
        request.result = LinkTransferFailed;
        request.retries = triesElsewhere;
        failedNow = true;
        return 1;
    }
    ring_.Put(acknowledge);
    return request.replyLength;
}

bool CAnalyzerLink::Machine::ReadUsbReply(LinkRequest& request) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(request.replyLength) - 2);
    const UsbDevice::Transfer transfer = usb_ ? usb_->Read(inPipe, bytes) : UsbDevice::Transfer{};
    if (!transfer.ok) {
        services_.prompts.Message("Error from DeviceIoControl - IOCTL_ADAPT_SEND_NON_EP0_DIRECT");
        services_.prompts.Message(Printf("Error reading from usb port, err %d", transfer.error));
        return false;
    }
    if (transfer.count != bytes.size()) {
        services_.prompts.Message(Printf("Error reading from usb port, read %d expected %d",
                                         static_cast<int>(transfer.count),
                                         static_cast<int>(bytes.size())));
        return false;
    }
    std::for_each(bytes.begin(), bytes.end(), [this](std::uint8_t byte) { ring_.Put(byte); });
    return true;
}

// Judges a reply that is long enough and starts the next state.
CAnalyzerLink::Machine::StepEnd CAnalyzerLink::Machine::Advance(LinkRequest& request,
                                                                bool failedNow) {
    if (!IsKnownState(request.state)) {
        request.result = LinkBadState;
        return StepEnd::Over;
    }
    if (!TakeReply(request)) {
        request.result = LinkBadReply;
        return StepEnd::Over;
    }
    const std::int32_t next = NextState(request.command, request.state);
    if (next == 0) {
        services_.prompts.TopmostMessage(
            Printf("Error finding next state for serial command %d, current state %d.",
                   request.command, request.state));
    } else {
        request.state = next;
        StartHead();
    }
    if (request.state == finalState) {
        request.result = LinkOk;
        return StepEnd::Over;
    }
    // A success anywhere in the sequence begins the count of tries anew, so a board that answers
    // the first frame and then falls silent keeps the queue busy until it recovers.
    request.retries = 0;
    return failedNow ? StepEnd::GoesOn : StepEnd::Waiting;
}

// A wrong first byte leaves the rest of the reply in the ring; a wrong last byte is found after
// the data have been copied.
bool CAnalyzerLink::Machine::TakeReply(LinkRequest& request) {
    if (ring_.Take() != acknowledge) {
        return false;
    }
    if (ActionOf(request).reply == Reply::Acknowledge) {
        return true;
    }
    auto* data = reinterpret_cast<std::uint8_t*>(request.Data());
    for (std::int32_t i = 0; i < request.replyLength - 2; ++i) {
        const std::uint8_t byte = ring_.Take();
        if (data != nullptr) {
            data[i] = byte;
        }
    }
    return ring_.Take() == acknowledge;
}

bool CAnalyzerLink::Machine::DeadlinePassed(const LinkRequest& request) const {
    const auto elapsed = static_cast<std::int64_t>(services_.clock.Time() - lastSendTime_.load());
    if (elapsed <= 2) {
        return false; // below every limit
    }
    std::int64_t base = Traits().IsVmeFamily() ? 4000 : 2000;
    if (const int baud = actualBaud_; baud != 0) {
        if (request.command == CmdStartSearch) {
            base = 60000;
        }
        base += std::int64_t{11000} * request.replyLength / baud;
    }
    return elapsed > (base + 500) / 1000;
}

void CAnalyzerLink::Machine::NoteTimeout(LinkRequest& request) {
    request.commErrors = serial_ ? serial_->ClearErrors() : 0;
    request.result = LinkTimeout;
    request.firstByte = ring_.Peek(0);
    if (request.bytesSeen > 0) {
        request.lastByte = ring_.Peek(request.bytesSeen - 1);
    }
}

bool CAnalyzerLink::Machine::Restart(LinkRequest& request) {
    const std::int32_t limit = linkPhase_ == PhaseIdentify ? triesInIdentification : triesElsewhere;
    if (request.result == LinkOk || request.retries >= limit) {
        return false;
    }
    ++request.retries;
    request.words = request.savedWords;
    Prepare(request);
    ring_.Discard();
    StartHead();
    return true;
}

void CAnalyzerLink::Machine::Finish(LinkRequest* request) {
    Dispose(request);
    --completing_;
    services_.mainThread.Wake();
}

void CAnalyzerLink::Machine::WaitIdle() {
    const bool onLinkThread = OnLinkThread();
    services_.mainThread.WaitUntil(idleLimit, [&] {
        const MutexLock lock(queueLock_);
        return queue_.empty() && (onLinkThread || completing_ == 0);
    });
}

// The last completion may still run when the queue is empty.
void CAnalyzerLink::Machine::AwaitCompletion() {
    while (!services_.mainThread.WaitUntil(idleLimit, [&] { return completing_ == 0; })) {
    }
}

bool CAnalyzerLink::Machine::Exchange(std::int32_t command, const LinkWords& words) {
    struct Outcome {
        MainThread& mainThread;
        std::atomic<bool> busy = true;
        bool failed = false;
    };
    Outcome outcome{services_.mainThread};
    LinkRequest* request = NewRequest(command, &outcome, [](LinkRequest* done) {
        auto& to = *static_cast<Outcome*>(done->owner);
        MainThread& mainThread = to.mainThread;
        to.failed = done->result != LinkOk;
        delete done;
        to.busy = false; // the outcome may be gone from here on
        mainThread.Wake();
    });
    request->words = {words.address, words.length, reinterpret_cast<std::uintptr_t>(words.data),
                      words.extra};
    Submit(request);
    while (!services_.mainThread.WaitUntil(idleLimit, [&] { return !outcome.busy; })) {
    }
    return !outcome.failed;
}

// Takes no lock against the queue's own traffic: meant for a link on which nothing runs.
void CAnalyzerLink::Machine::SendRaw(std::span<const std::uint8_t> bytes) {
    const MutexLock lock(queueLock_);
    SendBytes(bytes, nullptr);
}

std::vector<std::uint8_t> CAnalyzerLink::Machine::ReadRingRaw() {
    std::vector<std::uint8_t> bytes;
    while (ring_.Count() != 0) {
        bytes.push_back(ring_.Take());
    }
    return bytes;
}

void CAnalyzerLink::Machine::SendKeepAlive() {
    if (port_ == Port::Open && !stopFlag_ && overUsb_) {
        Submit(NewRequest(CmdUsbKeepAlive, nullptr, nullptr));
    }
}

} // namespace busquill
