#include "analysis/sample_findings.h"

#include "analysis/value_labels.h"
#include "platform/bits.h"

#include <algorithm>
#include <string_view>

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

/// The bits of a definition in a record.
SampleRecord BitsOf(const CBusSignalDef& def) {
    SampleRecord bits;
    for (int i = 0; i < def.Width(); ++i) {
        bits.SetBit(def.dataIndex + i);
    }
    return bits;
}

} // namespace

SampleFindings::SampleFindings(const SignalTables& tables)
    : ruleLabels_(tables.decodedSignals.FindByName("RULE CHECK")),
      anomaly_(UnsharedLine(tables, "ANOMALY")) {
    if (const auto def = tables.busSignals.FindByName("RULE CHECK")) {
        rule_.emplace(*def);
        noRule_.emplace(SampleRecord(), BitsOf(*def));
    }
    if (anomaly_) {
        const SampleRecord bit = BitsOf(*anomaly_);
        isAnomaly_.emplace(bit, bit);
    }
}

std::uint8_t SampleFindings::RuleOf(const SampleRecord& record) const noexcept {
    return rule_ ? static_cast<std::uint8_t>(rule_->Word(record)) : 0;
}

std::string SampleFindings::TextOfRule(std::uint8_t rule) const {
    const auto label = ruleLabels_ ? FindLabel(*ruleLabels_, rule) : std::nullopt;
    return label ? label->text : std::string();
}

bool SampleFindings::IsAnomaly(const SampleRecord& record) const noexcept {
    return anomaly_ && record.Bit(anomaly_->dataIndex);
}

std::uint32_t SampleFindings::In(std::span<const SampleRecord> records) const noexcept {
    std::uint32_t found = noRule_ ? ~noRule_->MatchesOf(records) : 0;
    if (isAnomaly_) {
        found |= isAnomaly_->MatchesOf(records);
    }
    return found & LowBits<std::uint32_t>(records.size());
}

} // namespace busquill
