#pragma once

#include <atomic>
#include <cstdint>

namespace busquill {

/// What the link itself waits for; decides the number of tries and what a reply means.
enum LinkPhase : std::int32_t {
    PhaseNone = 0,
    PhaseIdentify,
    PhaseLiveStatus,
    PhaseSetBaud,
    PhaseSetBus,
    PhaseReadBus,
};

/// What the link is doing, read by the rules for retries and time-outs. Any thread.
struct LinkConditions {
    std::atomic<LinkPhase> linkPhase = PhaseNone;
    /// The rate at which the board answered; 0 on USB and when it answered at none.
    std::atomic<std::int32_t> actualBaud = 0;
};

} // namespace busquill
