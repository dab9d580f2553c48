/// What a capture's traffic adds up to, as plain data.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace busquill {

/// The transactions of one command.
struct CommandCount {
    /// As the listing prints it; of a command that the table does not know, its code.
    std::string label;
    std::uint64_t transactions = 0;
    std::uint64_t dataPhases = 0; // transfers, on a bus without a clock
    std::uint64_t bytes = 0;

    friend bool operator==(const CommandCount&, const CommandCount&) = default;
};

struct FindingCount {
    std::uint8_t code = 0;
    std::string label; // empty where the table has none
    std::uint64_t count = 0;
    std::uint64_t firstSample = 0; // 0 is the first that was added

    friend bool operator==(const FindingCount&, const FindingCount&) = default;
};

/// Clocks behind the address phase in which a side was not ready.
struct WaitStates {
    std::uint64_t initiator = 0;
    std::uint64_t target = 0;

    friend bool operator==(const WaitStates&, const WaitStates&) = default;
};

/// Time from a data strobe to its acknowledge, over all transfers.
struct AcknowledgeTime {
    std::int64_t total = 0; // ns
    std::uint64_t transfers = 0;

    friend bool operator==(const AcknowledgeTime&, const AcknowledgeTime&) = default;
};

struct TraceSummary {
    std::uint64_t samples = 0;
    std::uint64_t idleSamples = 0;
    std::int64_t time = 0;     // ns, from the first sample to the last
    std::int64_t idleTime = 0; // ns, from idle samples to the sample behind them

    /// In the order of the table, without those that do not occur.
    std::vector<CommandCount> commands;
    /// From data phases in a transaction to the number of such transactions.
    std::map<std::uint64_t, std::uint64_t> burstLengths;
    std::uint64_t bytes = 0;
    /// Transactions under way at the last sample: 0 or 1. Counted above with what they have.
    std::uint64_t unfinished = 0;

    // How transactions ended, other than well.
    std::uint64_t retries = 0;
    std::uint64_t disconnects = 0;
    std::uint64_t targetAborts = 0;
    std::uint64_t masterAborts = 0;
    std::uint64_t splitResponses = 0; // PCI-X: the answer comes in a transaction of its own
    std::uint64_t busErrors = 0;

    // Empty on a bus that has no such thing.
    std::optional<WaitStates> waitStates;
    std::optional<AcknowledgeTime> acknowledgeTime;
    std::optional<std::uint64_t> anomalies;            // samples
    std::optional<std::vector<FindingCount>> findings; // by code

    friend bool operator==(const TraceSummary&, const TraceSummary&) = default;
};

} // namespace busquill
