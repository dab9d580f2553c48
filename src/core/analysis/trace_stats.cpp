#include "analysis/trace_stats.h"

#include "analysis/signal_lines.h"
#include "analysis/value_labels.h"
#include "capture/sample_rows.h"
#include "signals/value_text.h"

#include <algorithm>

namespace busquill {

namespace {

/// The definition, if no other signal has its bit: on VME, the anomaly bit exists only in patterns;
/// in a sample that bit is the clock.
std::shared_ptr<const CBusSignalDef> UnsharedLine(const SignalTables& tables,
                                                  std::string_view name) {
    const auto def = tables.busSignals.FindByName(name);
    const auto shares = [&](const std::shared_ptr<CBusSignalDef>& other) {
        return other != def && other->dataIndex <= def->dataIndex &&
               def->dataIndex < other->dataIndex + other->Width();
    };
    const auto& defs = tables.busSignals.Defs();
    return def && std::none_of(defs.begin(), defs.end(), shares) ? def : nullptr;
}

} // namespace

TraceStats::TraceStats(const BoardTraits& board, const SignalTables& tables)
    : anomaly_(UnsharedLine(tables, "ANOMALY")),
      ruleLabels_(tables.decodedSignals.FindByName("RULE CHECK")), follower_(board, tables) {
    if (const auto def = tables.busSignals.FindByName("RULE CHECK")) {
        ruleCheck_.emplace(*def);
    }
}

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
    if (anomaly_ && record.Bit(anomaly_->dataIndex)) {
        ++anomalies_;
    }
    AddFinding(number, record);
    ++samples_;
}

void TraceStats::AddFinding(std::int64_t number, const SampleRecord& record) {
    if (!ruleCheck_) {
        return;
    }
    Finding& finding = findings_[ruleCheck_->Word(record)];
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
        const auto label = ruleLabels_ ? FindLabel(*ruleLabels_, code) : std::nullopt;
        found.push_back({static_cast<std::uint8_t>(code), label ? label->text : std::string(),
                         finding.count, finding.firstSample});
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
    if (anomaly_) {
        summary.anomalies = anomalies_;
    }
    if (ruleCheck_) {
        summary.findings = Findings();
    }
    return summary;
}

} // namespace busquill
