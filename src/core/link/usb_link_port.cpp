#include "link/analyzer_commands.h"
#include "link/link_port.h"
#include "link/link_request.h"
#include "link/reply_ring.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <cerrno>
#include <vector>

namespace busquill {

namespace {

constexpr const char* transferFailed =
    "Error from DeviceIoControl - IOCTL_ADAPT_SEND_NON_EP0_DIRECT";
constexpr const char* selectFailed = "Error from DeviceIoControl - IOCTL_ADAPT_SELECT_INTERFACE";
constexpr const char* resetFailed = "Error from DeviceIoControl - IOCTL_ADAPT_RESET_PIPE";

} // namespace

UsbLinkPort::UsbLinkPort(UsbBus& bus, std::string wanted, Prompts& prompts, Device device)
    : bus_(bus), wanted_(std::move(wanted)), prompts_(prompts),
      reopenAtSend_(device == Device::ReopenAtSend) {}

bool UsbLinkPort::Open(const std::function<void()>& fallIntoDemoMode) {
    const UsbSearch search = bus_.Find(wanted_);
    if (search.outcome == UsbSearch::Outcome::DetailFailed) {
        prompts_.Message(
            Printf("Error from SetupDiGetInterfaceDeviceDetail, err %d", search.error));
    }
    if (search.outcome != UsbSearch::Outcome::Found) {
        fallIntoDemoMode();
        return false;
    }

    std::shared_ptr<UsbDevice> device = bus_.Open(search.path);
    if (device == nullptr) {
        prompts_.Message(Printf("Error opening usb device, path %s", search.path.c_str()),
                         "You may lack the permission to use the device, or another program uses "
                         "it. The manual page \"Connecting a board\" tells more.");
        fallIntoDemoMode();
    }
    if (device == nullptr || !device->SelectInterface()) {
        prompts_.Message(selectFailed);
        fallIntoDemoMode();
        device.reset();
    }
    for (const std::uint8_t pipe : {outputPipe, inputPipe}) {
        if (device == nullptr || !device->ResetPipe(pipe)) {
            prompts_.Message(resetFailed);
        }
    }
    Store(std::move(device));
    return true;
}

// Never returns true, so the send that had to reopen counts as failed; the next one uses the device
// opened here.
bool UsbLinkPort::ReopenUsb() {
    Open([] {});
    return false;
}

bool UsbLinkPort::Failed(const UsbDevice::Transfer& transfer) {
    if (transfer.gone) {
        gone_ = true;
    }
    return !transfer.ok || transfer.error != 0;
}

void UsbLinkPort::Store(std::shared_ptr<UsbDevice> device) {
    const LeafLock lock(deviceLock_);
    device_ = std::move(device);
    reopenAtSend_ = false;
}

void UsbLinkPort::Close() {
    Store(nullptr);
}

std::shared_ptr<UsbDevice> UsbLinkPort::CurrentDevice() const {
    const LeafLock lock(deviceLock_);
    return device_;
}

UsbLinkPort::Device UsbLinkPort::State() const {
    const LeafLock lock(deviceLock_);
    if (reopenAtSend_) {
        return Device::ReopenAtSend;
    }
    return device_ == nullptr ? Device::Closed : Device::Open;
}

bool UsbLinkPort::Send(std::span<const std::uint8_t> bytes) {
    bool sent = false;
    if (State() != Device::ReopenAtSend || ReopenUsb()) {
        if (const auto device = CurrentDevice()) {
            const MutexLock lock(transferLock_);
            sent = !Failed(device->Write(outputPipe, bytes));
        }
    }
    if (!sent && IsToReport()) {
        prompts_.Message(transferFailed, UnpluggedHint());
    }
    Wake();
    return sent;
}

bool UsbLinkPort::ReadPipe(std::span<std::uint8_t> into) {
    UsbDevice::Transfer transfer;
    if (const auto device = CurrentDevice()) {
        const MutexLock lock(transferLock_);
        transfer = device->Read(inputPipe, into);
    }
    if (Failed(transfer)) {
        if (IsToReport()) {
            prompts_.Message(transferFailed, UnpluggedHint());
            prompts_.Message(Printf("Error reading from usb port, err %d", transfer.error));
        }
        return false;
    }
    if (transfer.count != into.size()) {
        prompts_.Message(Printf("Error reading from usb port, read %zu expected %zu",
                                transfer.count, into.size()));
        return false;
    }
    return true;
}

int UsbLinkPort::ChangeBaud(int /*rate*/) {
    return ENOTTY;
}

ReplyState UsbLinkPort::PollReply(LinkRequest& running, ReplyRing& ring) {
    if (running.result == LinkTransferFailed) { // the frame was not sent
        return {.failed = true};
    }
    if (running.replyLength < 1) {
        return {};
    }
    ring.Reset();
    ring.Put(acknowledgement);
    if (running.replyLength <= framingBytes) {
        if (running.replyLength == framingBytes) {
            ring.Put(acknowledgement);
        }
        return {.count = running.replyLength};
    }
    const std::int32_t dataLength = running.replyLength - framingBytes;
    if (running.replyLength >= ReplyRing::size) {
        prompts_.Message(Printf("Error reading from usb port, read %d expected %d", 0, dataLength));
        return {.failed = true};
    }
    std::vector<std::uint8_t> data(static_cast<std::size_t>(dataLength));
    if (!ReadPipe(data)) {
        return {.failed = true};
    }
    ring.Put(data);
    ring.Put(acknowledgement);
    return {.count = running.replyLength};
}

void UsbLinkPort::AwaitStep(ReplyRing& /*ring*/, std::size_t /*wanted*/) {
    std::unique_lock lock(eventMutex_);
    eventSet_.wait(lock, [&] { return event_; });
    event_ = false;
}

void UsbLinkPort::Wake() {
    const std::lock_guard lock(eventMutex_);
    event_ = true;
    eventSet_.notify_all();
}

} // namespace busquill
