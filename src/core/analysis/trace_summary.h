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
    /// As in the listing; the code of a command that the table does not have.
    std::string label;
    std::uint64_t transactions = 0;
    std::uint64_t dataPhases = 0; // on a bus without a clock: transfers
    std::uint64_t bytes = 0;

    friend bool operator==(const CommandCount&, const CommandCount&) = default;
};

struct FindingCount {
    std::uint8_t code = 0;
    std::string label; // empty where the table has none
    std::uint64_t count = 0;
    std::int64_t firstSample = 0; // its number

    friend bool operator==(const FindingCount&, const FindingCount&) = default;
};

/// Clocks after the address phase in which a side was not ready.
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
    std::int64_t idleTime = 0; // ns, from each idle sample to the next sample

    /// In the order of the table; only commands that occur.
    std::vector<CommandCount> commands;
    /// The number of transactions by their number of data phases.
    std::map<std::uint64_t, std::uint64_t> burstLengths;
    std::uint64_t bytes = 0;
    /// Transactions in progress at the last sample: 0 or 1. Included above as far as they went.
    std::uint64_t unfinished = 0;

    // How transactions ended, other than normally.
    std::uint64_t retries = 0;
    std::uint64_t disconnects = 0;
    std::uint64_t targetAborts = 0;
    std::uint64_t masterAborts = 0;
    std::uint64_t splitResponses = 0; // PCI-X: the data come in a separate transaction
    std::uint64_t busErrors = 0;

    // Empty where the bus does not have them.
    std::optional<WaitStates> waitStates;
    std::optional<AcknowledgeTime> acknowledgeTime;
    std::optional<std::uint64_t> anomalies;            // samples
    std::optional<std::vector<FindingCount>> findings; // by code

    friend bool operator==(const TraceSummary&, const TraceSummary&) = default;
};

} // namespace busquill
