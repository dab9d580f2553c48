#include "link/link_machine.h"
#include "platform/clock.h"
#include "platform/settings.h"
#include "platform/text.h"
#include "platform/thread_priority.h"

#include <cstdlib>

namespace busquill {

namespace {

using namespace std::chrono_literals;

constexpr int probedRates[] = {9600, 19200, 28800, 38400, 57600};
constexpr int probesAtARate = 6;
constexpr auto readTimeout = 100ms;
constexpr auto threadEndLimit = 1100ms;
constexpr auto settlingTime = 2000ms;

constexpr auto demoModeText = "Unable to establish communications with the analyzer.\n"
                              "Go to the Utilities/Setup menu to select the proper interface and\n"
                              "restart the program. Program will run in DEMO mode.";

constexpr auto selectFailed = "Error from DeviceIoControl - IOCTL_ADAPT_SELECT_INTERFACE";
constexpr auto resetFailed = "Error from DeviceIoControl - IOCTL_ADAPT_RESET_PIPE";

/// The terminal device behind "COM1" to "COM8".
std::string ComDevice(const Settings& settings, const std::string& portName) {
    const int number = ParseInt(std::string_view(portName).substr(3));
    if (const char* device = std::getenv(Printf("BUSQUILL_COM%d", number).c_str())) {
        return device;
    }
    return settings.GetProfileString("Setup", Printf("ComDevice%d", number),
                                     Printf("/dev/ttyS%d", number - 1));
}

} // namespace

CAnalyzerLink::Machine::Machine(Services services) : services_(std::move(services)) {
    RegisterEncoder(CmdSetBusConfig, [this](const LinkRequest& request) {
        const auto* config = reinterpret_cast<const BusConfig*>(request.words[2]);
        const MutexLock lock(statusLock_);
        const auto bytes = EncodeBusConfig(*config);
        return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
    });
}

CAnalyzerLink::Machine::~Machine() {
    StopThread();
    ClosePort();
    ReapThread();
    const MutexLock lock(queueLock_);
    for (const LinkRequest* abandoned : queue_) {
        delete abandoned;
    }
}

bool CAnalyzerLink::Machine::Open() {
    // A thread that a failed open has left waiting must not see the new port.
    StopThread();
    ClosePort();
    ReapThread();

    portName_ = services_.settings.GetProfileString("Setup", "ComPort", "USB");
    configuredBaud_ = services_.settings.GetProfileInt("Setup", "BaudRate", 57600);
    demoMode_ = false;
    actualBaud_ = 0;
    overUsb_ = portName_ == "USB" || portName_ == "USB2";
    if (overUsb_) {
        OpenUsb();
    } else if (portName_.size() >= 4 && portName_.starts_with("COM")) {
        OpenComPort();
    }
    return actualBaud_ != 0 && actualBaud_ != configuredBaud_;
}

void CAnalyzerLink::Machine::OpenComPort() {
    const std::shared_ptr<SerialPort> port =
        services_.openSerial(ComDevice(services_.settings, portName_));
    if (!port) {
        FallIntoDemoMode();
        return;
    }
    Prompts& prompts = services_.prompts;
    const char* name = portName_.c_str();
    if (const int error = port->ReadConfiguration(); error != 0) {
        prompts.TopmostMessage(Printf("Error reading %s configuration, err %d", name, error));
    }
    if (const int error = port->Configure(configuredBaud_); error != 0) {
        prompts.TopmostMessage(Printf("Error setting %s configuration, err %d", name, error));
    }
    actualBaud_ = NegotiateBaud(*port);
    if (const int error = port->SetReadTimeout(readTimeout); error != 0) {
        prompts.TopmostMessage(Printf("Error setting %s timeouts, err %d", name, error));
    }
    stopFlag_ = false;
    ring_.Reset();
    {
        const MutexLock lock(queueLock_);
        serial_ = port;
        port_ = Port::Open;
    }
    StartThread(&Machine::ReadLoop);
}

// The probe is the frame (10, 0), a byte at a time: a board answers its second byte, so the loop
// also brings a board that stands in the middle of a frame back into step.
int CAnalyzerLink::Machine::NegotiateBaud(SerialPort& port) {
    static_cast<void>(port.SetReadTimeout(readTimeout));
    for (const int rate : probedRates) {
        static_cast<void>(port.Configure(rate));
        for (int probe = 0; probe < probesAtARate; ++probe) {
            const std::uint8_t byte = probe % 2 == 0 ? 0x0A : 0x00;
            static_cast<void>(port.Write({&byte, 1}));
            std::array<std::uint8_t, 10> reply{};
            if (port.Read(reply) == std::size_t{1} && reply[0] == '*') {
                return rate;
            }
        }
    }
    return 0;
}

void CAnalyzerLink::Machine::OpenUsb() {
    const UsbSearch search =
        services_.usb.Find(services_.settings.GetProfileString("Setup", "UsbDevice", ""));
    if (search.outcome == UsbSearch::Outcome::NotFound) {
        FallIntoDemoMode();
        return;
    }
    if (search.outcome == UsbSearch::Outcome::DetailFailed) {
        services_.prompts.Message(
            Printf("Error from SetupDiGetInterfaceDeviceDetail, err %d", search.error));
        FallIntoDemoMode();
        return;
    }
    std::shared_ptr<UsbDevice> device = services_.usb.Open(search.path);
    {
        const MutexLock lock(queueLock_);
        usb_ = device;
        port_ = device ? Port::Open : Port::Closed;
    }
    if (!device) {
        services_.prompts.Message(Printf("Error opening usb device, path %s", search.path.c_str()));
        FallIntoDemoMode();
    }
    if (!device || !device->SelectInterface()) {
        services_.prompts.Message(selectFailed);
        FallIntoDemoMode();
        device.reset();
    }
    ResetPipes(device.get());
    stopFlag_ = false;
    ring_.Reset();
    StartThread(&Machine::PumpLoop);
}

void CAnalyzerLink::Machine::ResetPipes(UsbDevice* device) {
    for (const std::uint8_t endpoint : {std::uint8_t{2}, std::uint8_t{0x82}}) {
        if (device == nullptr || !device->ResetPipe(endpoint)) {
            services_.prompts.Message(resetFailed);
        }
    }
}

// Never reports success, so a send that had to reopen the device counts as failed.
bool CAnalyzerLink::Machine::ReopenUsb() {
    const UsbSearch search =
        services_.usb.Find(services_.settings.GetProfileString("Setup", "UsbDevice", ""));
    usb_ = search.outcome == UsbSearch::Outcome::Found ? services_.usb.Open(search.path) : nullptr;
    if (usb_ && !usb_->SelectInterface()) {
        services_.prompts.Message(selectFailed);
    }
    ResetPipes(usb_.get());
    port_ = usb_ ? Port::Open : Port::Closed;
    return false;
}

// May run on the link's own thread, after a failed identification: then the wait for that thread
// cannot succeed and takes its whole length.
void CAnalyzerLink::Machine::FallIntoDemoMode() {
    services_.prompts.TopmostMessage(demoModeText);
    if (port_ == Port::Open) {
        StopThread();
        ClosePort();
    }
    demoMode_ = true;
    {
        const MutexLock lock(statusLock_);
        identity_ = {"Demo Mode", ModelDemo, 0, 0, "", ""};
        live_ = {};
    }
    // What still waits for the board is finished as everything is in Demo Mode.
    std::deque<LinkRequest*> waiting;
    {
        const MutexLock lock(queueLock_);
        waiting.swap(queue_);
        liveBlock_.fill(0);
    }
    for (LinkRequest* request : waiting) {
        CompleteAtOnce(request);
    }
}

void CAnalyzerLink::Machine::StopThread() {
    stopFlag_ = true;
    SignalPump();
    services_.mainThread.WaitUntil(threadEndLimit, [&] { return !threadRunning_; });
}

void CAnalyzerLink::Machine::ClosePort() {
    const MutexLock lock(queueLock_);
    port_ = Port::Closed;
    serial_.reset();
    usb_.reset();
}

void CAnalyzerLink::Machine::ReapThread() {
    if (!thread_.joinable()) {
        return;
    }
    while (!services_.mainThread.WaitUntil(threadEndLimit, [&] { return !threadRunning_; })) {
    }
    thread_.join();
}

bool& CAnalyzerLink::Machine::OnLinkThread() noexcept {
    static thread_local bool onLinkThread = false;
    return onLinkThread;
}

void CAnalyzerLink::Machine::StartThread(void (Machine::*body)()) {
    threadRunning_ = true;
    thread_ = std::thread([this, body] {
        LowerThreadPriority();
        OnLinkThread() = true;
        (this->*body)();
        threadRunning_ = false;
        services_.mainThread.Wake();
    });
}

void CAnalyzerLink::Machine::ReadLoop() {
    std::shared_ptr<SerialPort> port;
    {
        const MutexLock lock(queueLock_);
        port = serial_;
    }
    while (!stopFlag_ && port_ != Port::Closed && port) {
        std::uint8_t byte = 0;
        const auto count = port->Read({&byte, 1});
        if (!count) {
            // The line is gone for good. Requests must still run into their time-outs, or whoever
            // waits for one would wait for ever.
            services_.clock.Sleep(readTimeout);
        } else if (*count == 1) {
            ring_.Put(byte);
        }
        Step();
    }
}

void CAnalyzerLink::Machine::PumpLoop() {
    while (true) {
        {
            std::unique_lock lock(pumpMutex_);
            pumpChanged_.wait(lock, [&] { return pumpSignalled_; });
            pumpSignalled_ = false;
        }
        if (stopFlag_) {
            return;
        }
        Step();
    }
}

void CAnalyzerLink::Machine::SignalPump() {
    const std::lock_guard lock(pumpMutex_);
    pumpSignalled_ = true;
    pumpChanged_.notify_one();
}

void CAnalyzerLink::Machine::SetBaudRate(int rate) {
    if (port_ != Port::Open) {
        return;
    }
    SubmitOwn(PhaseSetBaud, CmdSetBaudRate, {static_cast<std::uintptr_t>(rate)});
    WaitIdle();
    std::shared_ptr<SerialPort> port;
    {
        const MutexLock lock(queueLock_);
        port = serial_;
    }
    if (port) {
        static_cast<void>(port->ReadConfiguration());
        if (const int error = port->Configure(rate); error != 0) {
            services_.prompts.TopmostMessage(Printf("Error setting new baud rate, err %d", error));
        }
    }
    services_.clock.Sleep(settlingTime);
}

void CAnalyzerLink::Machine::Connect(int targetBaud) {
    const bool answeredElsewhere = Open();
    ReadIdentity();
    if (answeredElsewhere) {
        WaitIdle();
        SetBaudRate(targetBaud);
    }
    WaitIdle();
    services_.clock.Sleep(settlingTime);
    AwaitCompletion();
    LoadBusConfig();
}

} // namespace busquill
