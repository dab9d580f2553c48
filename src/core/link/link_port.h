#pragma once

#include "link/leaf_mutex.h"
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

/// What a port finds of the reply to the running request.
struct ReplyState {
    std::int32_t count = 0; // bytes that lie in the ring
    /// A transfer has failed: the request ends with that and is not tried again.
    bool failed = false;
};

/// An open way to the board. Failures are reported here, in the port's own words.
///
/// Any thread sends; the link's thread receives. Each use holds the device by a shared pointer, so
/// Close is safe while a read is under way: the device goes with its last use.
class LinkPort {
public:
    virtual ~LinkPort() = default;

    [[nodiscard]] virtual bool IsOpen() const = 0;
    /// Whether the device has been taken away: nothing that is sent will ever be answered.
    [[nodiscard]] virtual bool IsGone() const noexcept { return false; }
    /// Whether a board that hears nothing for long must be told that the program is there.
    [[nodiscard]] virtual bool NeedsKeepAlive() const noexcept = 0;
    /// Moves the line to another rate; the error number of the step that failed.
    [[nodiscard]] virtual int ChangeBaud(int rate) = 0;
    /// The kinds of line errors since the last call.
    [[nodiscard]] virtual std::uint32_t ClearErrors() { return 0; }
    /// Writes the bytes. False when the request that they belong to has failed with that; a
    /// serial port's requests go on to their time-out instead.
    [[nodiscard]] virtual bool Send(std::span<const std::uint8_t> bytes) = 0;
    /// Link's thread: waits for what makes a look at the running request worth while, and puts
    /// bytes that arrive in the ring, `wanted` at most.
    virtual void AwaitStep(ReplyRing& ring, std::size_t wanted) = 0;
    /// Link's thread: the reply to the running request, as far as it has come.
    [[nodiscard]] virtual ReplyState PollReply(LinkRequest& running, ReplyRing& ring) = 0;
    /// Ends an AwaitStep that has no limit of its own.
    virtual void Wake() {}
    virtual void Close() = 0;
};

/// A board on a serial port.
class SerialLinkPort final : public LinkPort {
public:
    SerialLinkPort(std::shared_ptr<SerialPort> port, std::string name, Prompts& prompts);

    /// Sets the line to `baud`; failures are reported and ignored.
    void Configure(int baud);
    /// Sets the limit of a read; a failure is reported and ignored.
    void SetReadTimeout();
    /// The rate at which the board answers, 0 when it answers at none. The line is left at the
    /// rate that was tried last.
    [[nodiscard]] int NegotiateBaud();

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

    const std::string name_;
    Prompts& prompts_;
    mutable LeafMutex portLock_;
    std::shared_ptr<SerialPort> port_ BUSQUILL_GUARDED_BY(portLock_);
    Mutex writeLock_; // one writer or change of rate at a time
    // Of the link's thread: bytes that have been read and that no request has wanted yet.
    std::array<std::uint8_t, 1024> input_{};
    std::size_t inputNext_ = 0;
    std::size_t inputEnd_ = 0;
    std::atomic<bool> readFailed_ = false; // any thread reads it
};

/// A board on USB. Acknowledgements do not exist there; data come alone on the input pipe.
class UsbLinkPort final : public LinkPort {
public:
    enum class Device { Closed, Open, ReopenAtSend };

    static constexpr std::uint8_t outputPipe = 0x02;
    static constexpr std::uint8_t inputPipe = 0x82;

    /// `wanted` names the device as UsbBus::Find takes it. Nothing asks for ReopenAtSend yet: it
    /// is for a device that was closed and is to be opened again by the next send.
    UsbLinkPort(UsbBus& bus, std::string wanted, Prompts& prompts, Device device = Device::Closed);

    /// Finds and opens the device and makes it ready. `fallIntoDemoMode` is called at each failure
    /// that ends in Demo Mode. False when no device was found; a failure behind that is followed
    /// by the remaining steps, which then report theirs.
    bool Open(const std::function<void()>& fallIntoDemoMode);
    [[nodiscard]] Device State() const;

    [[nodiscard]] bool IsOpen() const override { return State() != Device::Closed; }
    [[nodiscard]] bool IsGone() const noexcept override { return gone_; }
    [[nodiscard]] bool NeedsKeepAlive() const noexcept override { return true; }
    /// There is no rate here.
    [[nodiscard]] int ChangeBaud(int rate) override;
    bool Send(std::span<const std::uint8_t> bytes) override;
    void AwaitStep(ReplyRing& ring, std::size_t wanted) override;
    /// Reads what the board owes to the request. The acknowledgements that a serial port would
    /// bring are put in, so that the states see the same reply.
    [[nodiscard]] ReplyState PollReply(LinkRequest& running, ReplyRing& ring) override;
    void Wake() override;
    void Close() override;

private:
    /// Reads exactly the span's bytes; false when that failed.
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

    // The pump's event: set by each send, cleared by the wait that it ends.
    std::mutex eventMutex_;
    std::condition_variable eventSet_;
    bool event_ = false; // under eventMutex_
};

} // namespace busquill
