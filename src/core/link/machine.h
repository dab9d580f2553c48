#pragma once

#include "link/analyzer_link.h"
#include "link/board_state.h"
#include "link/link_port.h"
#include "link/link_thread.h"
#include "link/request_queue.h"
#include "platform/clock.h"

#include <array>
#include <string>
#include <vector>

namespace busquill {

/// The link's parts, and the operations that the link itself issues: opening the port, identity,
/// baud rate, bus configuration and live status.
class CAnalyzerLink::Machine {
public:
    explicit Machine(Services services);
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    [[nodiscard]] std::time_t Time() const { return services_.clock.Time(); }
    [[nodiscard]] bool Exchange(std::int32_t command, const LinkWords& words);

    /// Closes the port and waits for the link's thread. Requests that wait stay unfinished.
    void ShutDown();

    bool Open();
    void Close();
    [[nodiscard]] bool IsBoardGone() const;
    void SetGiveUp(GiveUp giveUp) { giveUp_ = std::move(giveUp); }
    void ReadIdentity();
    void SetBaudRate(int rate);
    void Connect(int targetBaud);

    void ReadBusConfig(BusConfig& out);
    void WriteBusConfig(const BusConfig& in);
    void LoadBusConfig();

    void PollLiveStatus();
    void ClearLiveStatus();

    void SendRaw(std::span<const std::uint8_t> bytes);
    void SendKeepAlive();

    [[nodiscard]] RequestQueue& Queue() noexcept { return queue_; }
    [[nodiscard]] BoardState& Board() noexcept { return board_; }
    void SetFamilyListener(std::function<void()> listener) {
        familyListener_ = std::move(listener);
    }

private:
    [[nodiscard]] std::vector<std::uint8_t> EncodeBusBlock(const LinkRequest& request) const;

    void ClosePort();
    void OpenSerial(const std::string& portName, int configuredBaud);
    void OpenUsb();
    void StartThread(std::shared_ptr<LinkPort> port);
    void FallIntoDemoMode();

    void Issue(LinkPhase phase, std::int32_t command, const LinkWords& words);
    static void LinkOperationDone(LinkRequest* request);
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

    RequestQueue queue_;

    /// The thread of the present connection. Main thread changes it.
    std::atomic<LinkThread*> currentThread_ = nullptr;
    /// Main thread. A thread that did not end in time is kept here until it has.
    std::vector<std::unique_ptr<LinkThread>> threads_;
};

} // namespace busquill
