#pragma once

#include "analysis/bus_traffic.h"
#include "signals/record_field.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>

namespace busquill {

/// Turns samples into transactions. Samples are added in order, with their numbers; where numbers
/// are missing, the transaction in progress ends as unknown. One thread at a time.
///
/// A transaction that began before the first sample, or among missing ones, is headless.
class TransactionFollower {
public:
    TransactionFollower(const BoardTraits& board, const SignalTables& tables);

    /// How many data words of each transaction are kept; none by default.
    void KeepWords(std::size_t count);

    /// Takes the next sample. Returns the transactions that end with it or have ended before it: at
    /// most one, or two after missing samples. They are valid until the next call.
    [[nodiscard]] std::span<const Transaction> Add(std::int64_t number, const SampleRecord& record);
    /// The transaction in progress at the last sample, if any; more samples may be added. An end
    /// that was not seen becomes `unseen`.
    [[nodiscard]] std::optional<Transaction>
    Unfinished(TransactionEnd unseen = TransactionEnd::CutOff) const;

    /// Where to begin in the middle of a capture.
    struct Place {
        std::uint64_t transactions = 0;       // before it
        std::int64_t number = 0;              // of the sample before it
        std::int64_t time = 0;                // of that sample
        const SampleRecord* before = nullptr; // that sample; null if others are missing since
        std::optional<std::int64_t> lastEnd;  // when the transaction before ended; nothing if
                                              // samples are missing since
        bool begins = true;                   // a transaction begins with the next sample
    };
    /// Begins with a new capture.
    void Restart();
    /// Continues there.
    void Resume(const Place& place);

    /// The time of the last sample, in ns from the first.
    [[nodiscard]] std::int64_t Time() const noexcept { return time_; }
    /// Whether the bus is idle in a sample; not on a connector, whose pins have no protocol.
    [[nodiscard]] bool IsIdle(const SampleRecord& record) const;
    /// Null for a connector.
    [[nodiscard]] const BusTraffic* Traffic() const noexcept { return traffic_.get(); }

private:
    struct SplitRequest {
        std::uint64_t number = 0;
        std::uint32_t bytesLeft = 0;
    };

    [[nodiscard]] bool HasFinding(const SampleRecord& record) const;
    void Break();
    /// Adds what the capture around a transaction tells.
    void Complete(Transaction& transaction) const;
    /// Pairs a split completion with its request.
    void TakeCompletion(const Transaction& completion);
    /// Takes one that has ended, with what the next ones need to know of it.
    void End(Transaction ended);

    std::unique_ptr<BusTraffic> traffic_;
    std::optional<SampleTime> sampleTime_;
    std::optional<RecordField> ruleCheck_;

    bool isFirst_ = true;     // no sample yet
    std::int64_t number_ = 0; // of the last sample
    std::int64_t time_ = 0;
    std::uint64_t transactions_ = 0;
    std::uint64_t findings_ = 0;                   // in the transaction in progress
    std::optional<std::int64_t> first_;            // number of the first sample of the capture
    std::optional<std::int64_t> lastEnd_;          // time; nothing if samples are missing since
    std::map<std::uint32_t, SplitRequest> splits_; // by requester
    std::array<Transaction, 2> ended_;
    std::size_t endedCount_ = 0;
};

} // namespace busquill
