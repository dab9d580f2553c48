#pragma once

#include "capture/record_pattern.h"
#include "signals/signal_names.h"

#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// What samples are looked for, put together from texts such as "AD[31:0]=FEBF00xx" or
/// "COMMAND=Mem Rd". All of them must hold.
class SearchCondition {
public:
    /// A value is in hexadecimal, with an x for a digit that may be anything; on a decoded signal
    /// it may also be a label. A decoded value that shows in one phase of a transfer only is looked
    /// for in that phase. Returns what is wrong with the text, or nothing; the condition is then as
    /// it was.
    [[nodiscard]] std::string Add(std::string_view text, const SignalTables& tables,
                                  std::initializer_list<const CSignalList*> lists);

    [[nodiscard]] bool Empty() const noexcept { return !added_; }
    /// A bit for each of at most RecordPattern::blockSize records, set where it matches.
    [[nodiscard]] std::uint32_t MatchesOf(std::span<const SampleRecord> records) const noexcept;

private:
    /// Bits that count, and what they must be.
    struct Bits {
        SampleRecord value;
        SampleRecord care;

        void Set(int position, bool bit) noexcept;
        /// Adds the other's; false when the two contradict each other.
        [[nodiscard]] bool Join(const Bits& other) noexcept;
    };

    static std::string ParseValue(std::string_view text, const NamedSignal& signal,
                                  const BoardTraits& board, std::vector<Bits>& ways);
    /// The ways, each in the phase in which the value shows.
    static std::vector<Bits> InPhase(const std::vector<Bits>& ways, const NamedSignal& signal,
                                     const BoardTraits& board);
    static std::string ParseDigits(std::string_view text, const NamedSignal& signal,
                                   const BoardTraits& board, Bits& bits);

    bool added_ = false;
    std::vector<Bits> ways_ = {Bits()}; // one of them must match
    std::vector<RecordPattern> patterns_;
};

} // namespace busquill
