/// The bits of a record that a condition on a signal compares.
#pragma once

#include "signals/signal.h"
#include "signals/signal_names.h"

#include <vector>

namespace busquill {

/// The bits that are compared, and their values.
struct RecordBits {
    SampleRecord value;
    SampleRecord care;

    void Set(int position, bool bit) noexcept;
    /// Adds the bits of the other; false when they contradict each other.
    [[nodiscard]] bool Join(const RecordBits& other) noexcept;
};

/// The bits that make up a value of a decoded signal.
[[nodiscard]] RecordBits BitsOf(const CDecodedValue& value);

/// Whether the listing shows a signal in one phase of a PCI transfer only.
[[nodiscard]] bool IsShownInPhase(const NamedSignal& signal, const BoardTraits& board);
/// The alternatives, each limited to the phase in which the signal is shown.
[[nodiscard]] std::vector<RecordBits> InPhase(const std::vector<RecordBits>& ways,
                                              const NamedSignal& signal, const BoardTraits& board);

/// Whether a line belongs to the upper half of a bus that has only the lower: the board leaves it
/// high, and a condition means it only by naming it.
[[nodiscard]] bool IsBeyondBus(int position, const BoardTraits& board);

} // namespace busquill
