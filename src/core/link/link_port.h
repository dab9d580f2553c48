#pragma once

#include "link/leaf_mutex.h"
#include "link/port_setting.h"
#include "platform/mutex.h"
#include "platform/serial_port.h"
#include "platform/usb_device.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>

namespace busquill {

class Prompts;
class ReplyRing;
struct LinkRequest;

/// How much of the reply to the running request has arrived.
struct ReplyState {
    std::int32_t count = 0; // bytes in the ring
    /// A transfer failed: the request ends and is not retried.
    bool failed = false;
};

/// An open connection to the board. The port reports its failures to the user itself.
///
/// Any thread sends; the link's thread receives. Each use holds the device by a shared pointer, so
/// Close is safe while a read is under way: the device is released after its last use.
class LinkPort {
public:
    virtual ~LinkPort() = default;

    /// The port in words for the user.
    [[nodiscard]] virtual std::string Label() const = 0;
    [[nodiscard]] virtual bool IsOpen() const = 0;
    /// Whether the device has been unplugged: nothing will be answered any more.
    [[nodiscard]] virtual bool IsGone() const noexcept = 0;
    /// Below the message of a failure: that the device was unplugged, if it was.
    [[nodiscard]] std::string UnpluggedHint() const;
    /// Whether an idle board must be told regularly that the program is still there.
    [[nodiscard]] virtual bool NeedsKeepAlive() const noexcept = 0;
    /// Changes the line's rate. Returns 0 or the error number of the step that failed.
    [[nodiscard]] virtual int ChangeBaud(int rate) = 0;
    /// The kinds of line errors since the last call, see LineErrorWord.
    [[nodiscard]] virtual std::uint32_t ClearErrors() { return 0; }
    /// Writes the bytes. False when their request has thereby failed; on a serial port it runs into
    /// its time-out instead.
    [[nodiscard]] virtual bool Send(std::span<const std::uint8_t> bytes) = 0;
    /// Link's thread: waits until the running request may be able to proceed, and puts arriving
    /// bytes in the ring, at most `wanted`.
    virtual void AwaitStep(ReplyRing& ring, std::size_t wanted) = 0;
    /// Link's thread: the reply to the running request, as far as it has arrived.
    [[nodiscard]] virtual ReplyState PollReply(LinkRequest& running, ReplyRing& ring) = 0;
    /// Wakes an AwaitStep that waits without a limit.
    virtual void Wake() {}
    virtual void Close() = 0;

protected:
    /// Whether a failed transfer is to be reported. With the device unplugged every transfer fails,
    /// and only the first is: what was asked of the board reports its own failure.
    [[nodiscard]] bool IsToReport() noexcept { return !IsGone() || !goneReported_.exchange(true); }

private:
    std::atomic<bool> goneReported_ = false;
};

/// A board on a serial port.
class SerialLinkPort final : public LinkPort {
public:
    SerialLinkPort(std::shared_ptr<SerialPort> port, PortSetting setting, Prompts& prompts);

    /// Sets the line to `baud`; failures are reported and ignored.
    void Configure(int baud);
    /// Sets the limit of a read; a failure is reported and ignored.
    void SetReadTimeout();
    /// Finds the rate at which the board answers; 0 when it answers at none. The line is left at
    /// the last rate tried.
    [[nodiscard]] int NegotiateBaud();

    [[nodiscard]] std::string Label() const override { return setting_.Label(); }
    [[nodiscard]] bool IsOpen() const override { return Port() != nullptr; }
    [[nodiscard]] bool IsGone() const noexcept override { return readFailed_; }
    [[nodiscard]] bool NeedsKeepAlive() const noexcept override { return false; }
    [[nodiscard]] int ChangeBaud(int rate) override;
    [[nodiscard]] std::uint32_t ClearErrors() override;
    bool Send(std::span<const std::uint8_t> bytes) override;
    void AwaitStep(ReplyRing& ring, std::size_t wanted) override;
    [[nodiscard]] ReplyState PollReply(LinkRequest& running, ReplyRing& ring) override;
    void Close() override;

private:
    [[nodiscard]] std::shared_ptr<SerialPort> Port() const;
    [[nodiscard]] bool AnswersProbe(SerialPort& port, std::uint8_t probe);

    const PortSetting setting_;
    Prompts& prompts_;
    mutable LeafMutex portLock_;
    std::shared_ptr<SerialPort> port_ BUSQUILL_GUARDED_BY(portLock_);
    Mutex writeLock_; // one write or rate change at a time
    // Link's thread only: bytes read that no request has wanted yet.
    std::array<std::uint8_t, 1024> input_{};
    std::size_t inputNext_ = 0;
    std::size_t inputEnd_ = 0;
    std::atomic<bool> readFailed_ = false; // read by any thread
};

/// A board on USB. There are no acknowledgements; only data arrive on the input pipe.
class UsbLinkPort final : public LinkPort {
public:
    enum class Device { Closed, Open, ReopenAtSend };

    static constexpr std::uint8_t outputPipe = 0x02;
    static constexpr std::uint8_t inputPipe = 0x82;

    /// `wanted` names the device as UsbBus::Find takes it. ReopenAtSend is for a device that was
    /// closed and is to be opened again by the next send; nothing uses it yet.
    UsbLinkPort(UsbBus& bus, std::string wanted, Prompts& prompts, Device device = Device::Closed);

    /// Finds and opens the device and makes it ready. `fallIntoDemoMode` is called at each failure
    /// that leads to Demo Mode. False when no device was found; after a later failure the remaining
    /// steps still run and report theirs.
    bool Open(const std::function<void()>& fallIntoDemoMode);
    [[nodiscard]] Device State() const;

    [[nodiscard]] std::string Label() const override { return "USB"; }
    [[nodiscard]] bool IsOpen() const override { return State() != Device::Closed; }
    [[nodiscard]] bool IsGone() const noexcept override { return gone_; }
    [[nodiscard]] bool NeedsKeepAlive() const noexcept override { return true; }
    /// USB has no rate.
    [[nodiscard]] int ChangeBaud(int rate) override;
    bool Send(std::span<const std::uint8_t> bytes) override;
    void AwaitStep(ReplyRing& ring, std::size_t wanted) override;
    /// Reads the request's missing bytes. The acknowledgements that a serial port would deliver are
    /// inserted, so that the states see the same reply.
    [[nodiscard]] ReplyState PollReply(LinkRequest& running, ReplyRing& ring) override;
    void Wake() override;
    void Close() override;

private:
    /// Fills the whole span; false when that fails.
    [[nodiscard]] bool ReadPipe(std::span<std::uint8_t> into);
    [[nodiscard]] bool Failed(const UsbDevice::Transfer& transfer);
    [[nodiscard]] bool ReopenUsb();
    [[nodiscard]] std::shared_ptr<UsbDevice> CurrentDevice() const;
    void Store(std::shared_ptr<UsbDevice> device);

    UsbBus& bus_;
    const std::string wanted_;
    Prompts& prompts_;
    mutable LeafMutex deviceLock_;
    std::shared_ptr<UsbDevice> device_ BUSQUILL_GUARDED_BY(deviceLock_);
    bool reopenAtSend_ BUSQUILL_GUARDED_BY(deviceLock_);
    Mutex transferLock_; // one transfer at a time
    std::atomic<bool> gone_ = false;

    // The pump's event: set by each send, cleared when it ends a wait.
    std::mutex eventMutex_;
    std::condition_variable eventSet_;
    bool event_ = false; // under eventMutex_
};

} // namespace busquill
