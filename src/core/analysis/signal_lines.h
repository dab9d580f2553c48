/// Bits of a sample by the names of their signals.
#pragma once

#include "signals/record_field.h"
#include "signals/signal_tables.h"

#include <cstdint>
#include <string_view>

namespace busquill {

/// A signal's place in the record. Levels are electrical: a control line is asserted when low.
class SignalLine {
public:
    SignalLine(const SignalTables& tables, std::string_view name)
        : SignalLine(tables.busSignals.FindByName(name)) {}

    [[nodiscard]] int DataIndex() const noexcept { return first_; }
    [[nodiscard]] bool IsHigh(const SampleRecord& record) const noexcept {
        return record.Bit(first_);
    }
    [[nodiscard]] bool IsAsserted(const SampleRecord& record) const noexcept {
        return !record.Bit(first_);
    }
    [[nodiscard]] std::uint32_t Value(const SampleRecord& record) const noexcept {
        return static_cast<std::uint32_t>(Word(record));
    }
    /// All lines of a group of up to 64.
    [[nodiscard]] std::uint64_t Word(const SampleRecord& record) const noexcept {
        return field_.Word(record);
    }
    /// A bit for each line of the group, set if the line is asserted.
    [[nodiscard]] std::uint32_t Asserted(const SampleRecord& record) const noexcept {
        return ~Value(record) & ((std::uint32_t{1} << field_.Width()) - 1);
    }

private:
    explicit SignalLine(const std::shared_ptr<CBusSignalDef>& def)
        : first_(def->dataIndex), field_(*def) {}

    int first_;
    RecordField field_;
};

} // namespace busquill
