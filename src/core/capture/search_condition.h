#pragma once

#include "capture/record_pattern.h"
#include "capture/signal_bits.h"
#include "signals/signal_names.h"

#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// A search condition built from texts such as "AD[31:0]=FEBF00xx" or "COMMAND=Mem Rd", all of
/// which must hold.
class SearchCondition {
public:
    /// Adds a condition. A value is in hexadecimal, with x for any digit; for a decoded signal it
    /// may also be a label. A decoded value that is shown in only one phase of a transfer is
    /// searched for in that phase. Returns an error message, with the condition unchanged, or an
    /// empty text.
    [[nodiscard]] std::string Add(std::string_view text, const SignalTables& tables,
                                  std::initializer_list<const CSignalList*> lists);

    /// Whether a text has the form of a pattern, whatever the signals are: an error message, empty
    /// if it has.
    [[nodiscard]] static std::string CheckPattern(std::string_view text);

    [[nodiscard]] bool Empty() const noexcept { return !added_; }
    /// A bit for each of at most RecordPattern::blockSize records, set where it matches.
    [[nodiscard]] std::uint32_t MatchesOf(std::span<const SampleRecord> records) const noexcept;

private:
    static std::string ParseValue(std::string_view text, const NamedSignal& signal,
                                  const BoardTraits& board, std::vector<RecordBits>& ways);
    static std::string ParseDigits(std::string_view text, const NamedSignal& signal,
                                   const BoardTraits& board, RecordBits& bits);

    bool added_ = false;
    std::vector<RecordBits> ways_ = {RecordBits()}; // alternatives, one of which must match
    std::vector<RecordPattern> patterns_;
};

} // namespace busquill
