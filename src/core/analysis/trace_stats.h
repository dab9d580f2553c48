#pragma once

#include "analysis/sample_findings.h"
#include "analysis/trace_summary.h"
#include "analysis/transaction_follower.h"
#include "analysis/transaction_tally.h"
#include "link/board_identity.h"
#include "signals/signal.h"
#include "signals/signal_tables.h"

#include <array>
#include <cstdint>
#include <span>

namespace busquill {

struct SampleRows;

/// Adds up a capture's traffic. Samples are added in order, in pieces of any size, which do not
/// affect the result. A transaction that began before the first sample counts only for times. One
/// thread at a time.
class TraceStats {
public:
    TraceStats(const BoardTraits& board, const SignalTables& tables);

    void Add(const SampleRows& rows);
    /// Samples without numbers count from 0.
    void Add(std::span<const SampleRecord> records);
    /// The summary of all samples so far; more may be added afterwards.
    [[nodiscard]] TraceSummary Summary() const;

private:
    struct Finding {
        std::uint64_t count = 0;
        std::int64_t firstSample = 0;
    };

    void AddSample(std::int64_t number, const SampleRecord& record);
    void AddFinding(std::int64_t number, const SampleRecord& record);
    [[nodiscard]] std::vector<FindingCount> Findings() const;

    SampleFindings inSamples_;
    TransactionFollower follower_;
    TransactionTally tally_;

    std::uint64_t samples_ = 0;
    std::uint64_t idleSamples_ = 0;
    std::int64_t idleTime_ = 0;
    bool idle_ = false; // of the previous sample
    std::uint64_t anomalies_ = 0;
    std::array<Finding, 256> findings_{}; // by code
};

} // namespace busquill
