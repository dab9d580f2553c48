#pragma once

#include "signals/record_field.h"
#include "signals/signal_tables.h"

#include <string>
#include <vector>

namespace busquill {

/// The signals by which two captures are compared. Each bit of the record is in exactly one.
class ComparedSignals {
public:
    struct Signal {
        std::string name;
        RecordField field;
    };

    /// Every bus of the tables, then the bits that belong to none.
    explicit ComparedSignals(const SignalTables& tables);

    /// Excludes bits from the comparison.
    void Ignore(const std::vector<int>& positions);

    [[nodiscard]] const std::vector<Signal>& All() const noexcept { return signals_; }
    [[nodiscard]] bool Differ(const SampleRecord& a, const SampleRecord& b) const noexcept;
    /// Sets `places` to the indexes of the signals that differ.
    void Differing(const SampleRecord& a, const SampleRecord& b,
                   std::vector<std::size_t>& places) const;
    /// The value of a signal as hexadecimal digits or a time.
    [[nodiscard]] std::string Text(std::size_t place, const SampleRecord& record) const;

private:
    [[nodiscard]] SampleRecord Difference(const SampleRecord& a,
                                          const SampleRecord& b) const noexcept;

    std::vector<Signal> signals_;
    SampleRecord care_;
};

} // namespace busquill
