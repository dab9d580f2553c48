#pragma once

#include "capture/record_pattern.h"
#include "signals/record_field.h"
#include "signals/signal.h"
#include "signals/signal_tables.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace busquill {

/// What the board has found in each sample of a capture: a broken rule, or an anomaly. Immutable,
/// so it may be used from any thread.
class SampleFindings {
public:
    explicit SampleFindings(const SignalTables& tables);

    /// Whether samples of this bus record broken rules, and anomalies.
    [[nodiscard]] bool HasRules() const noexcept { return rule_.has_value(); }
    [[nodiscard]] bool HasAnomalies() const noexcept { return anomaly_ != nullptr; }

    /// The number of the broken rule; 0 for none.
    [[nodiscard]] std::uint8_t RuleOf(const SampleRecord& record) const noexcept;
    /// What the rule says; empty where the table has no such rule.
    [[nodiscard]] std::string TextOfRule(std::uint8_t rule) const;
    [[nodiscard]] bool IsAnomaly(const SampleRecord& record) const noexcept;

    /// A bit for each of at most RecordPattern::blockSize records, set for those with a finding.
    [[nodiscard]] std::uint32_t In(std::span<const SampleRecord> records) const noexcept;

private:
    std::optional<RecordField> rule_;
    std::optional<RecordPattern> noRule_; // matches a sample without a broken rule
    std::shared_ptr<const CDecodedSignalDef> ruleLabels_;
    std::shared_ptr<const CBusSignalDef> anomaly_;
    std::optional<RecordPattern> isAnomaly_;
};

} // namespace busquill
