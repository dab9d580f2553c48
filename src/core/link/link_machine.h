/// The machine behind CAnalyzerLink: port, reply ring, request queue and the link's own operations.
#pragma once

#include "link/analyzer_link.h"
#include "link/payloads.h"
#include "platform/main_thread.h"
#include "platform/mutex.h"
#include "platform/prompts.h"
#include "platform/serial_port.h"
#include "platform/usb_device.h"

#include <array>
#include <atomic>
#include <deque>
#include <thread>

namespace busquill {

/// Received bytes. One thread writes, one reads; nothing tells a writer that laps the reader.
class ReplyRing {
public:
    static constexpr std::int32_t size = 100000;

    void Reset() noexcept;
    void Put(std::uint8_t byte) noexcept;
    [[nodiscard]] std::uint8_t Take() noexcept;
    /// Unread bytes.
    [[nodiscard]] std::int32_t Count() const noexcept;
    /// Forgets all unread bytes.
    void Discard() noexcept { read_ = write_.load(); }
    /// The byte `offset` behind the first unread one.
    [[nodiscard]] std::uint8_t Peek(std::int32_t offset) const noexcept;
    [[nodiscard]] std::int32_t ReadIndex() const noexcept { return read_; }
    [[nodiscard]] std::int32_t WriteIndex() const noexcept { return write_; }

private:
    // One byte more than the indexes use: Peek's wrap is off by one and reads it.
    std::array<std::uint8_t, size + 1> bytes_{};
    std::atomic<std::int32_t> read_ = 0;
    std::atomic<std::int32_t> write_ = 0;
};

/// The reader or pump thread works in Step; all others come through the public functions.
///
/// Locks: queueLock_ before statusLock_. queueLock_ is held while a request is prepared, sent and
/// judged, message boxes included, and is released before a completion runs.
class CAnalyzerLink::Machine {
public:
    explicit Machine(Services services);
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    // request_queue.cpp
    void Submit(LinkRequest* request);
    void WaitIdle();
    [[nodiscard]] bool Exchange(std::int32_t command, const LinkWords& words);
    void SendRaw(std::span<const std::uint8_t> bytes);
    std::vector<std::uint8_t> ReadRingRaw();
    void SendKeepAlive();
    void RegisterEncoder(std::int32_t command, Encoder encoder);

    // connection.cpp
    bool Open();
    void Connect(int targetBaud);
    void SetBaudRate(int rate);

    // board_state.cpp
    void ReadIdentity();
    void ReadBusConfig(BusConfig& out);
    void WriteBusConfig(const BusConfig& in);
    void LoadBusConfig();
    void PollLiveStatus();
    void ClearLiveStatus();
    std::uint8_t GetLiveStatus(std::int32_t& before, std::int32_t& after);
    [[nodiscard]] std::int32_t EventOccurrences() const noexcept { return eventOccurrences_; }
    [[nodiscard]] bool CommLost() const noexcept { return commLost_; }
    [[nodiscard]] bool IsDemoMode() const noexcept { return demoMode_; }
    [[nodiscard]] BoardIdentity Identity() const;
    [[nodiscard]] BoardTraits Traits() const;
    void SetFamilyListener(std::function<void()> listener) { familyChanged_ = std::move(listener); }

private:
    /// Reopen: the USB device is closed and is opened again by the next send. Nothing sets it.
    enum class Port { Closed, Open, Reopen };
    enum class StepEnd { Waiting, GoesOn, Over };

    // request_queue.cpp
    void CompleteAtOnce(LinkRequest* request);
    void Prepare(LinkRequest& request) BUSQUILL_REQUIRES(queueLock_);
    void StartHead() BUSQUILL_REQUIRES(queueLock_);
    void SendFrame(std::uint8_t opcode, std::uint8_t parameter, LinkRequest* request)
        BUSQUILL_REQUIRES(queueLock_);
    void SendBytes(std::span<const std::uint8_t> bytes, LinkRequest* request)
        BUSQUILL_REQUIRES(queueLock_);
    void SendOverUsb(std::span<const std::uint8_t> bytes, LinkRequest* request)
        BUSQUILL_REQUIRES(queueLock_);
    void Step();
    std::int32_t CountReply(LinkRequest& request, bool& failedNow) BUSQUILL_REQUIRES(queueLock_);
    bool ReadUsbReply(LinkRequest& request) BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] StepEnd Advance(LinkRequest& request, bool failedNow)
        BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] bool TakeReply(LinkRequest& request) BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] bool DeadlinePassed(const LinkRequest& request) const
        BUSQUILL_REQUIRES(queueLock_);
    void NoteTimeout(LinkRequest& request) BUSQUILL_REQUIRES(queueLock_);
    [[nodiscard]] bool Restart(LinkRequest& request) BUSQUILL_REQUIRES(queueLock_);
    void Finish(LinkRequest* request);
    void AwaitCompletion();

    // connection.cpp
    void OpenComPort();
    void OpenUsb();
    int NegotiateBaud(SerialPort& port);
    bool ReopenUsb() BUSQUILL_REQUIRES(queueLock_);
    void ResetPipes(UsbDevice* device);
    void FallIntoDemoMode();
    void StopThread();
    void ReapThread();
    void ClosePort();
    void StartThread(void (Machine::*body)());
    [[nodiscard]] static bool& OnLinkThread() noexcept;
    void ReadLoop();
    void PumpLoop();
    void SignalPump();

    // board_state.cpp
    void SubmitOwn(LinkPhase phase, std::int32_t command, const LinkWords& words);
    static void OwnCompletion(LinkRequest* request);
    void OwnCompleted(std::int32_t result);

    Services services_;

    mutable Mutex queueLock_;
    std::deque<LinkRequest*> queue_ BUSQUILL_GUARDED_BY(queueLock_);
    EncoderMap encoders_ BUSQUILL_GUARDED_BY(queueLock_);
    std::shared_ptr<SerialPort> serial_ BUSQUILL_GUARDED_BY(queueLock_);
    std::shared_ptr<UsbDevice> usb_ BUSQUILL_GUARDED_BY(queueLock_);
    ReplyRing ring_; // written by the link's thread alone while it runs

    std::string portName_; // main thread writes it in Open, with no link thread running
    bool overUsb_ = false; // likewise
    int configuredBaud_ = 0;
    std::atomic<int> actualBaud_ = 0; // 0 on USB and when nothing answered
    std::atomic<std::time_t> lastSendTime_ = 0;
    std::atomic<Port> port_ = Port::Closed;
    std::atomic<bool> demoMode_ = false;
    std::atomic<std::int32_t> linkPhase_ = PhaseNone;
    std::atomic<bool> stopFlag_ = false;
    std::atomic<bool> threadRunning_ = false;
    std::atomic<int> completing_ = 0; // completions that the link's thread runs now
    std::thread thread_;
    std::mutex pumpMutex_;
    std::condition_variable pumpChanged_;
    bool pumpSignalled_ = false; // under pumpMutex_

    mutable Mutex statusLock_ BUSQUILL_ACQUIRED_AFTER(queueLock_);
    BoardIdentity identity_ BUSQUILL_GUARDED_BY(statusLock_);
    BusConfig busConfig_ BUSQUILL_GUARDED_BY(statusLock_);
    LiveStatus live_ BUSQUILL_GUARDED_BY(statusLock_);
    std::atomic<std::int32_t> eventOccurrences_ = 0;
    std::atomic<bool> commLost_ = false;
    std::function<void()> familyChanged_ = [] {};

    // Targets of the link's own reads; the receive path writes them under queueLock_.
    std::array<std::uint8_t, statusBlockSize> statusBlock_{};
    std::array<std::uint8_t, liveBlockSize> liveBlock_{};
    std::array<std::uint8_t, busBlockSize> busBlock_{};
};

} // namespace busquill
