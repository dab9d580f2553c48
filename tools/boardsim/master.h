#pragma once

#include "paged_memory.h"
#include "target.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace boardsim {

/// Registers of the master: control, status, and the setup after them.
constexpr std::size_t masterRegisters = 50;

/// Faults of the bus that the master drives.
struct MasterFaults {
    std::optional<std::uint8_t> status; // every step ends with this status instead of its own
    int busy = 0;                       // number of polls that find a step still running
    std::optional<std::uint64_t> stuck; // at this address of each space bit 0 is always set
};

/// The master exerciser, on a bus with memory at all addresses of all spaces.
class Master {
public:
    /// Runs the step that the registers describe. Reads go into the registers and, like the data
    /// of writes, from and to the target if the registers say so.
    void Go(std::span<std::uint8_t> registers, Target& target, const MasterFaults& faults);
    /// Called when the status has been read: the end of a step that was reported as running.
    static void Polled(std::span<std::uint8_t> registers, MasterFaults& faults);
    static void Stop(std::span<std::uint8_t> registers);

    /// A space of the bus: its number and, on VME, the address modifier.
    using Space = std::pair<std::uint8_t, std::uint8_t>;
    [[nodiscard]] const PagedMemory& Memory(Space space) { return spaces_[space]; }

private:
    std::map<Space, PagedMemory> spaces_;
};

} // namespace boardsim
