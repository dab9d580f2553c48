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

/// The one connection to the board. Everything speaks to the board by a LinkRequest.
///
/// Threads: the public functions are called on the main thread, Submit, WaitIdle and the live
/// status also on others. Completions run on the link's thread; in Demo Mode and with no port, on
/// the caller's, inside Submit.
class CAnalyzerLink {
public:
    /// What the link asks of the machine. All outlive the link.
    struct Services {
        Settings& settings;
        Prompts& prompts;
        Clock& clock;
        MainThread& mainThread;
        /// Opens a device path; null when it cannot be opened.
        std::function<std::unique_ptr<SerialPort>(const std::string& device)> openSerial;
        UsbBus& usb;
    };

    explicit CAnalyzerLink(Services services);
    /// Closes the port and waits for the link's thread. Requests that wait stay unfinished.
    ~CAnalyzerLink();
    CAnalyzerLink(const CAnalyzerLink&) = delete;
    CAnalyzerLink& operator=(const CAnalyzerLink&) = delete;

    void Submit(LinkRequestPtr request);
    /// Waits until the queue is empty, at most 5 seconds.
    void WaitIdle();
    /// Whether no request waits or runs.
    [[nodiscard]] bool IsIdle() const;
    /// The request idiom: submits one request, which has no completion of its own, and waits,
    /// without bound, until it has ended. Whether the result was LinkOk. What to say about a
    /// failure is the caller's.
    [[nodiscard]] bool Exchange(LinkRequestPtr request);

    /// Asked now and then while the main thread waits in an Exchange, with the time that it has
    /// waited. When it is true the link is closed, which ends the exchange as failed; nothing else
    /// does, while a board only answers the first frame of a command again and again.
    using GiveUp = std::function<bool(std::chrono::milliseconds waited)>;
    void SetGiveUp(GiveUp giveUp);

    /// Opens a port, in place of the one that is open. True when the board answered at another
    /// rate than that of the setting.
    bool Open(const PortSetting& port);
    /// Leaves the port for none. Requests that have not ended do so as LinkTransferFailed.
    void Close();
    void ReadIdentity();
    void SetBaudRate(int rate);
    /// The connection sequence, from Open to LoadBusConfig. A board that answered at another rate
    /// than that of the setting is moved to it.
    void Connect(const PortSetting& port);

    void ReadBusConfig(BusConfig& out);
    void WriteBusConfig(const BusConfig& in);
    void LoadBusConfig();
    /// Called in Demo Mode after a change of the bus configuration, which decides the family.
    void SetFamilyListener(std::function<void()> listener);

    void PollLiveStatus();
    void ClearLiveStatus();
    /// The status byte, and the counts of samples before and after the trigger.
    std::uint8_t GetLiveStatus(std::int32_t& before, std::int32_t& after);
    [[nodiscard]] std::int32_t GetEventOccurrences() const noexcept {
        return board_.EventOccurrences();
    }
    /// Whether the last live status read has failed for good.
    [[nodiscard]] bool CommLost() const noexcept { return board_.CommLost(); }

    /// Drains all unread bytes, and writes bytes past the queue: for the serial test.
    [[nodiscard]] std::vector<std::uint8_t> ReadRingRaw();
    void SendRaw(std::span<const std::uint8_t> bytes);
    /// One keep-alive on a port that needs it; otherwise nothing.
    void SendKeepAlive();

    /// The time by which the link waits. Any thread.
    [[nodiscard]] std::time_t Time() const;
    [[nodiscard]] bool IsDemoMode() const noexcept { return board_.IsDemoMode(); }
    [[nodiscard]] BoardIdentity Identity() const { return board_.Identity(); }
    /// Whether the board's identity has come since the last Open. Any thread.
    [[nodiscard]] bool IsIdentified() const noexcept { return board_.IsIdentified(); }
    /// Whether the board's device has been taken away, which failed requests have told. A feature
    /// of several exchanges ends then at the first: the next ones would say the same. Any thread.
    [[nodiscard]] bool IsBoardGone() const;
    /// What decides the board's family now. Any thread.
    [[nodiscard]] BoardTraits Traits() const { return board_.Traits(); }

private:
    void ClosePort();
    void OpenSerial(const PortSetting& setting);
    void OpenUsb(const PortSetting& setting);
    void StartThread(std::shared_ptr<LinkPort> port);
    void FallIntoDemoMode();

    void Issue(LinkPhase phase, LinkRequestPtr request);
    void OnLinkOperationDone(std::int32_t result);

    const Services services_;
    BoardState board_;
    LinkConditions conditions_;
    std::function<void()> familyListener_; // main thread
    GiveUp giveUp_;                        // main thread

    // What the link's own reads fill: written by the queue under its lock.
    std::array<std::uint8_t, statusBlockSize> statusBlock_{};
    std::array<std::uint8_t, liveBlockSize> liveBlock_{};
    std::array<std::uint8_t, busBlockSize> busBlock_{};

    const std::unique_ptr<RequestQueue> queue_;

    /// The thread of the present connection. Main thread changes it.
    std::atomic<LinkThread*> currentThread_ = nullptr;
    /// Main thread. A thread that did not end in time is kept here until it has.
    std::vector<std::unique_ptr<LinkThread>> threads_;
};

} // namespace busquill
