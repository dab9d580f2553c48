#pragma once

#include "bus_states.h"
#include "wire.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>

namespace boardsim {

constexpr std::size_t performanceSetupBytes = 241;

/// Counts what happens on the bus, for eight rows of a setup: each has an item, and counts only
/// cycles of one code and in one range of addresses. A value is that of the samples since the
/// values were last taken.
///
///   Utilization         percent of the time; efficiencies: percent of a master's or a target's
///                       time in which data are transferred
///   Transfer Rate       megabytes per second
///   Latency             microseconds in each millisecond that pass while a master waits for the
///                       bus, is not ready for data, or waits for data
///   Burst Distribution  bytes of a cycle, on average
///   Statistics          percent of all cycles; endings: percent of the row's cycles
class Performance {
public:
    using Values = std::array<std::uint32_t, 8>;

    Performance() = default;
    explicit Performance(Family family) : follower_(MakeBusFollower(family)) {}

    /// Takes the setup as the host wrote it, `performanceSetupBytes` bytes.
    void Start(std::span<const std::uint8_t> setup);
    void Stop() noexcept { running_ = false; }
    [[nodiscard]] bool IsRunning() const noexcept { return running_; }

    /// One sample of the bus, in order. Ignored unless counting runs.
    void Feed(const Record& record);
    [[nodiscard]] Values Take();

private:
    struct Tally {
        // Nanoseconds in each phase of the row's cycles.
        std::uint64_t request = 0;
        std::uint64_t address = 0;
        std::uint64_t firstWait = 0; // before a cycle's first transfer
        std::uint64_t laterWait = 0;
        std::uint64_t transfer = 0;
        std::uint64_t cycles = 0;
        std::array<std::uint64_t, 7> endings{}; // by Ending
        std::array<std::uint64_t, 4> bytes{};   // by grant line

        [[nodiscard]] std::uint64_t Wait() const noexcept { return firstWait + laterWait; }
        [[nodiscard]] std::uint64_t Data() const noexcept { return Wait() + transfer; }
        [[nodiscard]] std::uint64_t Busy() const noexcept { return address + Data(); }
        [[nodiscard]] std::uint64_t Bytes() const noexcept;
    };
    struct Row {
        unsigned item = 0;
        unsigned cycle = 0;
        std::uint64_t low = 0;
        std::uint64_t high = 0;
        bool counts = false; // the current cycle
        Tally tally;
    };

    void Spend(std::uint64_t nanoseconds);
    void Begin(const BusState& state);
    [[nodiscard]] std::uint64_t ValueOf(const Row& row) const;
    [[nodiscard]] std::uint64_t Utilization(const Row& row) const;
    [[nodiscard]] std::uint64_t TransferRate(const Row& row) const;
    [[nodiscard]] std::uint64_t Latency(const Row& row) const;
    [[nodiscard]] std::uint64_t Statistics(const Row& row) const;

    std::unique_ptr<BusFollower> follower_;
    bool running_ = false;
    unsigned type_ = 0;
    std::array<Row, 8> rows_{};

    // Of the current cycle.
    Phase phase_ = Phase::Idle;
    unsigned grant_ = 0;
    bool moved_ = false;        // data
    std::uint64_t request_ = 0; // nanoseconds before it

    // Since the values were last taken.
    std::uint64_t time_ = 0; // nanoseconds
    std::uint64_t cycles_ = 0;
};

} // namespace boardsim
