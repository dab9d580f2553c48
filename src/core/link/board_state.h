#pragma once

#include "link/board_identity.h"
#include "link/leaf_mutex.h"

#include <atomic>

namespace busquill {

/// What is known about the board: identity, bus configuration, live status. Any thread; values are
/// copied under a lock.
class BoardState {
public:
    [[nodiscard]] bool IsDemoMode() const noexcept { return demoMode_; }
    [[nodiscard]] bool IsVmeFamily() const;
    [[nodiscard]] BoardIdentity Identity() const;
    /// Whether an identity has been set since ForgetBoard.
    [[nodiscard]] bool IsIdentified() const noexcept { return identified_; }
    [[nodiscard]] BoardTraits Traits() const;
    [[nodiscard]] BusConfig Bus() const;

    /// Another board may be connected now. What is known of the last one is kept until it is
    /// replaced.
    void ForgetBoard() noexcept {
        demoMode_ = false;
        identified_ = false;
    }
    void EnterDemoMode();
    void SetIdentity(std::span<const std::uint8_t, statusBlockSize> block);
    void SetBus(const BusConfig& config);
    void SetBus(std::span<const std::uint8_t, busBlockSize> block);

    [[nodiscard]] LiveStatus Live() const;
    [[nodiscard]] std::int32_t EventOccurrences() const noexcept { return eventOccurrences_; }
    [[nodiscard]] bool CommLost() const noexcept { return commLost_; }
    void SetCommLost(bool lost) noexcept { commLost_ = lost; }
    void SetLive(const LiveStatus& live);
    /// Clears the status byte and the two counts; the occurrences stay.
    void ClearLive();

private:
    std::atomic<bool> demoMode_ = false;
    std::atomic<bool> identified_ = false;
    mutable LeafMutex identityLock_;
    BoardIdentity identity_ BUSQUILL_GUARDED_BY(identityLock_);
    BusConfig busConfig_ BUSQUILL_GUARDED_BY(identityLock_);

    mutable LeafMutex statusLock_;
    LiveStatus live_ BUSQUILL_GUARDED_BY(statusLock_);
    std::atomic<std::int32_t> eventOccurrences_ = 0;
    std::atomic<bool> commLost_ = false;
};

} // namespace busquill
