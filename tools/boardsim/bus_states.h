#pragma once

#include "traffic.h"

#include <cstdint>
#include <memory>

namespace boardsim {

enum class Phase { Idle, Request, Address, Wait, Transfer };

enum class Ending {
    None, // the cycle goes on, or has ended without an event
    MasterAbort,
    TargetAbort,
    TargetRetry,
    DisconnectWithData,
    DisconnectWithoutData,
    SplitResponse,
};

/// What the bus does from a sample on, until the next one.
struct BusState {
    Phase phase = Phase::Idle;
    unsigned bytes = 0; // transferred with this sample
    Ending ending = Ending::None;

    // The cycle that begins with this sample, if one does.
    bool begins = false;
    std::uint32_t codes = 0; // bit n: it is one of cycle code n
    std::uint64_t address = 0;
    unsigned grant = 0; // the grant line by which its master got the bus
};

/// Follows the cycles on a bus.
class BusFollower {
public:
    virtual ~BusFollower() = default;
    /// Expects the samples of the bus in order.
    [[nodiscard]] virtual BusState Take(const Record& record) = 0;
};

/// The follower for a family; null for connectors, whose pins mean nothing to the board.
[[nodiscard]] std::unique_ptr<BusFollower> MakeBusFollower(Family family);

} // namespace boardsim
