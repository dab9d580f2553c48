#pragma once

#include <atomic>
#include <cstdint>

namespace busquill {

/// The link's own operation in progress; decides the number of tries and what a reply means.
enum LinkPhase : std::int32_t {
    PhaseNone = 0,
    PhaseIdentify,
    PhaseLiveStatus,
    PhaseSetBaud,
    PhaseSetBus,
    PhaseReadBus,
};

/// The link's state, as used by the rules for retries and time-outs. Any thread.
struct LinkConditions {
    std::atomic<LinkPhase> linkPhase = PhaseNone;
    /// The rate at which the board answered; 0 on USB and when it answered at no rate.
    std::atomic<std::int32_t> actualBaud = 0;
};

} // namespace busquill
