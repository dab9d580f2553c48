#include "analysis/trace_stats.h"

#include "capture/sample_rows.h"
#include "signals/value_text.h"

namespace busquill {

TraceStats::TraceStats(const BoardTraits& board, const SignalTables& tables)
    : inSamples_(tables), follower_(board, tables) {}

void TraceStats::Add(const SampleRows& rows) {
    for (std::size_t i = 0; i < rows.Size(); ++i) {
        AddSample(rows.numbers[i], rows.records[i]);
    }
}

void TraceStats::Add(std::span<const SampleRecord> records) {
    for (const SampleRecord& record : records) {
        AddSample(static_cast<std::int64_t>(samples_), record);
    }
}

void TraceStats::AddSample(std::int64_t number, const SampleRecord& record) {
    const std::int64_t before = follower_.Time();
    for (const Transaction& ended : follower_.Add(number, record)) {
        tally_.Add(ended);
    }
    idleTime_ = AddTimes(idleTime_, idle_ ? AddTimes(follower_.Time(), -before) : 0);
    idle_ = follower_.IsIdle(record);
    idleSamples_ += idle_ ? 1 : 0;
    anomalies_ += inSamples_.IsAnomaly(record) ? 1 : 0;
    AddFinding(number, record);
    ++samples_;
}

void TraceStats::AddFinding(std::int64_t number, const SampleRecord& record) {
    Finding& finding = findings_[inSamples_.RuleOf(record)];
    if (finding.count++ == 0) {
        finding.firstSample = number;
    }
}

std::vector<FindingCount> TraceStats::Findings() const {
    std::vector<FindingCount> found;
    // Code 0 means no finding.
    for (std::uint32_t code = 1; code < findings_.size(); ++code) {
        const Finding& finding = findings_[code];
        if (finding.count == 0) {
            continue;
        }
        const auto rule = static_cast<std::uint8_t>(code);
        found.push_back({rule, inSamples_.TextOfRule(rule), finding.count, finding.firstSample});
    }
    return found;
}

TraceSummary TraceStats::Summary() const {
    TraceSummary summary;
    summary.samples = samples_;
    summary.idleSamples = idleSamples_;
    summary.time = follower_.Time();
    summary.idleTime = idleTime_;
    if (const BusTraffic* const traffic = follower_.Traffic()) {
        TransactionTally tally = tally_;
        if (const auto unfinished = follower_.Unfinished(); unfinished && !unfinished->isHeadless) {
            tally.Add(*unfinished);
            summary.unfinished = 1;
        }
        tally.Report(summary, *traffic);
    }
    if (inSamples_.HasAnomalies()) {
        summary.anomalies = anomalies_;
    }
    if (inSamples_.HasRules()) {
        summary.findings = Findings();
    }
    return summary;
}

} // namespace busquill
