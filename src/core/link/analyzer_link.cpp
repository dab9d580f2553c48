#include "link/analyzer_link.h"

#include "link/link_port.h"
#include "link/link_thread.h"
#include "link/request_queue.h"
#include "link/saved_bus_config.h"
#include "platform/clock.h"
#include "platform/main_thread.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>
#include <cassert>
#include <cerrno>

namespace busquill {

namespace {

using namespace std::chrono_literals;

/// The board needs this pause after a change of rate, the program after reading the identity.
constexpr auto settlingTime = 2000ms;

constexpr const char* demoModeMessage =
    "Unable to establish communications with the analyzer.\n"
    "Go to the Utilities/Setup menu to select the proper interface and\n"
    "restart the program. Program will run in DEMO mode.";
constexpr const char* communicationsError =
    "Communications error with analyzer. Check serial port connections.";
/// An identity that arrives after the connection sequence is ignored.
constexpr const char* noIdentity =
    "The analyzer has not told what it is. Check its connections and accept the\n"
    "Utilities/Board Setup dialog to connect again.";

/// The message above still asks for a restart.
constexpr const char* connectsAgain = "\nUtilities/Board Setup connects again without a restart.";

constexpr const char* noBoardOnUsb = "No board is ready on USB.";

} // namespace

CAnalyzerLink::CAnalyzerLink(Services services)
    : services_(std::move(services)),
      queue_(std::make_unique<RequestQueue>(board_, conditions_, services_.prompts, services_.clock,
                                            services_.mainThread)) {}

CAnalyzerLink::~CAnalyzerLink() {
    // Completions that are still running may use the link.
    ClosePort();
    threads_.clear();
}

void CAnalyzerLink::Submit(LinkRequestPtr request) {
    queue_->Submit(std::move(request));
}

void CAnalyzerLink::WaitIdle() {
    queue_->WaitIdle();
}

bool CAnalyzerLink::IsIdle() const {
    return queue_->IsIdle();
}

bool CAnalyzerLink::Exchange(LinkRequestPtr request) {
    struct Outcome {
        MainThread& mainThread;
        std::atomic<bool> busy = true;
        std::atomic<bool> failed = false;
    } outcome{services_.mainThread};

    assert(!request->completion);
    request->completion = [waiting = &outcome](LinkRequestPtr done) {
        MainThread& mainThread = waiting->mainThread;
        waiting->failed = done->result != LinkOk;
        done.reset();
        waiting->busy = false; // from here on, the waiting function may have returned
        mainThread.Wake();
    };
    queue_->Submit(std::move(request));
    RequestQueue::RunOwedCompletions();
    const auto begun = std::chrono::steady_clock::now();
    const bool mayGiveUp = giveUp_ && MainThread::OnThisThread() == &services_.mainThread;
    while (!services_.mainThread.WaitUntil(mayGiveUp ? 100ms : std::chrono::milliseconds(1h),
                                           [&] { return !outcome.busy; })) {
        if (mayGiveUp && giveUp_(std::chrono::duration_cast<std::chrono::milliseconds>(
                             std::chrono::steady_clock::now() - begun))) {
            Close();
        }
    }
    return !outcome.failed;
}

std::time_t CAnalyzerLink::Time() const {
    return services_.clock.Time();
}

void CAnalyzerLink::Pause(std::chrono::milliseconds pause) {
    services_.clock.Sleep(pause);
}

bool CAnalyzerLink::Open(const PortSetting& port) {
    queue_->AwaitPort();
    ClosePort();
    board_.ForgetBoard();
    conditions_.actualBaud = 0;
    queue_->Clear(statusBlock_);
    queue_->Clear(busBlock_);

    switch (port.kind) {
    case PortSetting::Kind::Usb:
        OpenUsb(port);
        break;
    case PortSetting::Kind::Serial:
        OpenSerial(port);
        break;
    case PortSetting::Kind::None: // chosen by the user, not a failure
        break;
    }

    // The live status is kept until the port is open again: a capture that runs meanwhile goes on.
    if (queue_->Port() == nullptr) {
        queue_->Clear(liveBlock_);
        queue_->FailAll();
    } else {
        queue_->RestartHead();
    }
    const int actualBaud = conditions_.actualBaud;
    return actualBaud != 0 && actualBaud != port.baud;
}

void CAnalyzerLink::Close() {
    ClosePort();
    queue_->FailAll();
}

bool CAnalyzerLink::IsBoardGone() const {
    const auto port = queue_->Port();
    return port != nullptr && port->IsGone();
}

std::string CAnalyzerLink::UnpluggedHint() const {
    const auto port = queue_->Port();
    return port == nullptr ? "" : port->UnpluggedHint();
}

void CAnalyzerLink::SetGiveUp(GiveUp giveUp) {
    giveUp_ = std::move(giveUp);
}

void CAnalyzerLink::ClosePort() {
    const auto port = queue_->Port();
    if (LinkThread* thread = currentThread_) {
        thread->Stop();
    }
    if (queue_->ReleasePort(port)) {
        port->Close();
    }
    currentThread_ = nullptr;
    std::erase_if(threads_, [](const auto& thread) { return !thread->Running(); });
}

void CAnalyzerLink::OpenSerial(const PortSetting& setting) {
    errno = 0;
    std::shared_ptr<SerialPort> device = services_.openSerial(setting.device);
    if (device == nullptr) {
        FallIntoDemoMode("The port " + OpenFailure(setting, errno) +
                         ". The manual page \"Connecting a board\" tells more.");
        return;
    }
    auto port = std::make_shared<SerialLinkPort>(std::move(device), setting, services_.prompts);
    port->Configure(setting.baud);
    conditions_.actualBaud = port->NegotiateBaud();
    port->SetReadTimeout();
    StartThread(port);
}

void CAnalyzerLink::OpenUsb(const PortSetting& setting) {
    auto port = std::make_shared<UsbLinkPort>(services_.usb, setting.device, services_.prompts);
    if (port->Open([this] { FallIntoDemoMode(noBoardOnUsb); })) {
        StartThread(port);
    }
}

// For USB, the thread is started even when the board could not be opened: it then waits.
void CAnalyzerLink::StartThread(std::shared_ptr<LinkPort> port) {
    queue_->Ring().Reset();
    if (port->IsOpen()) {
        queue_->SetPort(port);
    }
    threads_.push_back(std::make_unique<LinkThread>(
        std::move(port), queue_->Ring(), [this](LinkPort& from) { return queue_->Step(from); },
        services_.mainThread));
    currentThread_ = threads_.back().get();
}

// After a failed identity read this runs on the link's thread, which cannot wait for itself: the
// wait times out, and the thread ends afterwards.
void CAnalyzerLink::FallIntoDemoMode(const std::string& hint) {
    LinkThread* own = LinkThread::OnThisThread();
    const auto port = own != nullptr ? own->Port() : queue_->Port();
    services_.prompts.TopmostMessage(demoModeMessage, hint + connectsAgain);
    if (port != nullptr) {
        if (LinkThread* thread = own != nullptr ? own : currentThread_.load()) {
            thread->Stop();
        }
    }
    // If the port has been opened again meanwhile, this failure concerns the old one.
    if (queue_->FallFrom(port, [this] { board_.EnterDemoMode(); }) && port != nullptr) {
        port->Close();
    }
}

void CAnalyzerLink::Connect(const PortSetting& port, int targetBaud) {
    const bool atAnotherRate = Open(port);
    ReadIdentity();
    if (atAnotherRate) {
        queue_->WaitIdle();
        SetBaudRate(targetBaud);
    }
    queue_->WaitIdle();
    services_.clock.Sleep(settlingTime);
    LoadBusConfig();
    if (queue_->Port() != nullptr && !board_.IsIdentified()) {
        services_.prompts.TopmostMessage(noIdentity);
    }
}

void CAnalyzerLink::Issue(LinkPhase phase, LinkRequestPtr request) {
    conditions_.linkPhase = phase;
    // The monitor of a capture polls while the main thread opens a port again; neither may take the
    // other's reply for its own.
    const bool isPoll = phase == PhaseLiveStatus;
    if (!isPoll) {
        mainThreadPhase_ = phase;
    }
    request->completion = [this, isPoll](const LinkRequestPtr& done) {
        OnLinkOperationDone(isPoll ? PhaseLiveStatus : mainThreadPhase_.load(), done->result);
    };
    queue_->Submit(std::move(request));
}

void CAnalyzerLink::OnLinkOperationDone(LinkPhase phase, std::int32_t result) {
    if (result == LinkOk) {
        if (phase == PhaseIdentify) {
            board_.SetIdentity(queue_->CopyOf(statusBlock_));
        } else if (phase == PhaseLiveStatus && !board_.IsDemoMode()) {
            board_.SetLive(ParseLiveStatus(queue_->CopyOf(liveBlock_)));
        } else if (phase == PhaseReadBus) {
            board_.SetBus(queue_->CopyOf(busBlock_));
        }
    } else if (phase == PhaseLiveStatus) {
        ClearLiveStatus();
        board_.SetCommLost(true);
    } else if (const auto port = queue_->Port(); port == nullptr) {
        // The link has left that board, so its failures are not reported.
    } else if (phase == PhaseIdentify) {
        FallIntoDemoMode("No board answers on " + port->Label() +
                         ". Check its power and its cable.");
    } else {
        services_.prompts.TopmostMessage(communicationsError, port->UnpluggedHint());
    }
}

void CAnalyzerLink::ReadIdentity() {
    Issue(PhaseIdentify, ReadRegisters(RegisterStatusBlock, statusBlock_));
}

// Time-outs are computed from the negotiated rate until the next Open.
void CAnalyzerLink::SetBaudRate(int rate) {
    const auto port = queue_->Port();
    if (port == nullptr) {
        return;
    }
    Issue(PhaseSetBaud, WritePayload(CmdSetBaudRate, OneByte(BaudCode(rate))));
    queue_->WaitIdle();
    if (const int error = port->ChangeBaud(rate); error != 0) {
        services_.prompts.TopmostMessage(Printf("Error setting new baud rate, err %d", error));
    }
    services_.clock.Sleep(settlingTime);
}

void CAnalyzerLink::ReadBusConfig(BusConfig& out) {
    if (!board_.IsDemoMode()) {
        Issue(PhaseReadBus, ReadRegisters(RegisterBusConfig, busBlock_));
        queue_->WaitIdle();
    }
    out = board_.Bus();
}

void CAnalyzerLink::WriteBusConfig(const BusConfig& in) {
    board_.SetBus(in);
    if (board_.IsDemoMode()) {
        if (familyListener_) {
            familyListener_();
        }
        return;
    }
    Issue(PhaseSetBus, WritePayload(CmdSetBusConfig, [this] {
              const auto block = EncodeBusConfig(board_.Bus());
              return std::vector(block.begin(), block.end());
          }));
    queue_->WaitIdle();
}

// A saved configuration overrides that of the board and clears the master lock.
void CAnalyzerLink::LoadBusConfig() {
    auto saved = LoadSavedBusConfig(services_.settings);
    if (!saved) {
        BusConfig ignored;
        ReadBusConfig(ignored);
        return;
    }
    saved->busMode = CorrectBusMode(saved->busMode, board_.Identity().modelId);
    WriteBusConfig(*saved);
}

void CAnalyzerLink::SetFamilyListener(std::function<void()> listener) {
    familyListener_ = std::move(listener);
}

void CAnalyzerLink::PollLiveStatus() {
    board_.SetCommLost(false);
    Issue(PhaseLiveStatus, ReadRegisters(RegisterLiveStatus, liveBlock_));
}

void CAnalyzerLink::ClearLiveStatus() {
    board_.SetCommLost(false);
    board_.ClearLive();
}

std::uint8_t CAnalyzerLink::GetLiveStatus(std::int32_t& before, std::int32_t& after) {
    const LiveStatus live = board_.Live();
    before = live.samplesBefore;
    after = live.samplesAfter;
    return live.liveStatus;
}

std::vector<std::uint8_t> CAnalyzerLink::ReadRingRaw() {
    return queue_->Ring().TakeAll();
}

void CAnalyzerLink::SendRaw(std::span<const std::uint8_t> bytes) {
    if (const auto port = queue_->Port()) {
        // No request records the failure; the port has reported it.
        static_cast<void>(port->Send(bytes));
    }
}

void CAnalyzerLink::SendKeepAlive() {
    const auto port = queue_->Port();
    const LinkThread* thread = currentThread_;
    if (port != nullptr && port->NeedsKeepAlive() && !port->IsGone() && thread != nullptr &&
        !thread->Stopping()) {
        queue_->Submit(RunCommand(CmdUsbKeepAlive));
    }
}

} // namespace busquill
