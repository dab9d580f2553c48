#pragma once

#include "link/board_identity.h"
#include "link/board_state.h"
#include "link/link_conditions.h"
#include "link/link_request.h"
#include "link/port_setting.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace busquill {

class Clock;
class LinkPort;
class LinkThread;
class MainThread;
class Prompts;
class RequestQueue;
class SerialPort;
class Settings;
class UsbBus;

/// The connection to the board. Everything talks to the board by LinkRequests.
///
/// Threads: the public functions are called on the main thread; Submit, Exchange, WaitIdle and the
/// live status may be called on others too. Completions run on the link's thread; in Demo Mode and
/// with no port, on the caller's, inside Submit.
class CAnalyzerLink {
public:
    /// Services that the link uses. All outlive the link.
    struct Services {
        Settings& settings;
        Prompts& prompts;
        Clock& clock;
        MainThread& mainThread;
        /// Opens a device path; null when it cannot be opened, with the reason in errno.
        std::function<std::unique_ptr<SerialPort>(const std::string& device)> openSerial;
        UsbBus& usb;
    };

    explicit CAnalyzerLink(Services services);
    /// Closes the port and waits for the link's thread. Queued requests are not completed.
    ~CAnalyzerLink();
    CAnalyzerLink(const CAnalyzerLink&) = delete;
    CAnalyzerLink& operator=(const CAnalyzerLink&) = delete;

    void Submit(LinkRequestPtr request);
    /// Waits until the queue is empty, at most 5 seconds.
    void WaitIdle();
    /// Whether no request is queued or running.
    [[nodiscard]] bool IsIdle() const;
    /// Submits a request without a completion and waits, without limit, until it is done. Returns
    /// whether the result was LinkOk; the caller reports a failure.
    [[nodiscard]] bool Exchange(LinkRequestPtr request);

    /// Called periodically while the main thread waits in an Exchange, with the time waited so far.
    /// Returning true closes the link and so fails the exchange. Nothing else ends it while a board
    /// keeps answering only the first frame of a command.
    using GiveUp = std::function<bool(std::chrono::milliseconds waited)>;
    void SetGiveUp(GiveUp giveUp);

    /// Opens a port, replacing the open one. True when the board answered at another rate than the
    /// setting's.
    bool Open(const PortSetting& port);
    /// Closes the port. Unfinished requests complete as LinkTransferFailed.
    void Close();
    void ReadIdentity();
    void SetBaudRate(int rate);
    /// The connection sequence, from Open to LoadBusConfig. A board that answered at another rate
    /// is set to the setting's rate.
    void Connect(const PortSetting& port) { Connect(port, port.baud); }
    /// Moves a board that answers at another rate than the port's to `targetBaud`.
    void Connect(const PortSetting& port, int targetBaud);

    void ReadBusConfig(BusConfig& out);
    void WriteBusConfig(const BusConfig& in);
    void LoadBusConfig();
    /// The listener is called in Demo Mode after a change of the bus configuration, which
    /// determines the family.
    void SetFamilyListener(std::function<void()> listener);

    void PollLiveStatus();
    void ClearLiveStatus();
    /// Returns the status byte; sets the counts of samples before and after the trigger.
    std::uint8_t GetLiveStatus(std::int32_t& before, std::int32_t& after);
    [[nodiscard]] std::int32_t GetEventOccurrences() const noexcept {
        return board_.EventOccurrences();
    }
    /// Whether the last read of the live status failed after all its tries.
    [[nodiscard]] bool CommLost() const noexcept { return board_.CommLost(); }

    /// For the serial test: drains all unread bytes, and writes bytes bypassing the queue.
    [[nodiscard]] std::vector<std::uint8_t> ReadRingRaw();
    void SendRaw(std::span<const std::uint8_t> bytes);
    /// Sends one keep-alive on a port that needs it; otherwise does nothing.
    void SendKeepAlive();

    /// The clock of the link's time-outs. Any thread.
    [[nodiscard]] std::time_t Time() const;
    /// Pauses between two looks at the board. Main thread; boxes of other threads are shown
    /// meanwhile, and no other event is handled.
    void Pause(std::chrono::milliseconds pause);
    [[nodiscard]] bool IsDemoMode() const noexcept { return board_.IsDemoMode(); }
    [[nodiscard]] BoardIdentity Identity() const { return board_.Identity(); }
    /// Whether the board's identity has been read since the last Open. Any thread.
    [[nodiscard]] bool IsIdentified() const noexcept { return board_.IsIdentified(); }
    /// Whether the board's device has been unplugged, which failed requests have already reported.
    /// A feature of several exchanges then stops at the first failure: the others would report the
    /// same. Any thread.
    [[nodiscard]] bool IsBoardGone() const;
    /// What to do about a board that has been unplugged; empty if it has not.
    [[nodiscard]] std::string UnpluggedHint() const;
    /// What currently determines the board's family. Any thread.
    [[nodiscard]] BoardTraits Traits() const { return board_.Traits(); }

private:
    void ClosePort();
    void OpenSerial(const PortSetting& setting);
    void OpenUsb(const PortSetting& setting);
    void StartThread(std::shared_ptr<LinkPort> port);
    /// `hint` says what failed.
    void FallIntoDemoMode(const std::string& hint);

    void Issue(LinkPhase phase, LinkRequestPtr request);
    void OnLinkOperationDone(LinkPhase phase, std::int32_t result);

    const Services services_;
    BoardState board_;
    LinkConditions conditions_;
    /// The last operation of the main thread, which has one at a time: all but the polls.
    std::atomic<LinkPhase> mainThreadPhase_ = PhaseNone;
    std::function<void()> familyListener_; // main thread
    GiveUp giveUp_;                        // main thread

    // Buffers of the link's own reads; the queue writes them under its lock.
    std::array<std::uint8_t, statusBlockSize> statusBlock_{};
    std::array<std::uint8_t, liveBlockSize> liveBlock_{};
    std::array<std::uint8_t, busBlockSize> busBlock_{};

    const std::unique_ptr<RequestQueue> queue_;

    /// The thread of the current connection. Set on the main thread only.
    std::atomic<LinkThread*> currentThread_ = nullptr;
    /// Main thread only. A thread that did not end in time is kept here until it does.
    std::vector<std::unique_ptr<LinkThread>> threads_;
};

} // namespace busquill
