/// Bits of a sample by the names of their signals.
#pragma once

#include "signals/signal.h"
#include "signals/signal_tables.h"

#include <cstdint>
#include <string_view>

namespace busquill {

/// Up to 32 neighbouring bits, the first lowest.
[[nodiscard]] inline std::uint32_t Field(const SampleRecord& record, int first,
                                         int width) noexcept {
    std::uint32_t bits = 0;
    for (int i = 0; i < width; ++i) {
        bits |= std::uint32_t{record.Bit(first + i)} << i;
    }
    return bits;
}

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
        return Field(record, first_, width_);
    }
    /// A bit for each line of the group that is asserted.
    [[nodiscard]] std::uint32_t Asserted(const SampleRecord& record) const noexcept {
        return ~Value(record) & ((std::uint32_t{1} << width_) - 1);
    }

private:
    explicit SignalLine(const std::shared_ptr<CBusSignalDef>& def)
        : first_(def->dataIndex), width_(def->Width()) {}

    int first_;
    int width_;
};

} // namespace busquill
