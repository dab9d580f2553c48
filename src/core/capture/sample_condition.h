#pragma once

#include "capture/expression.h"
#include "capture/record_pattern.h"
#include "capture/signal_bits.h"
#include "signals/record_field.h"
#include "signals/signal_names.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace busquill {

/// Neighbouring samples of a capture, at most RecordPattern::blockSize.
struct SampleBlock {
    std::span<const SampleRecord> records;
    std::span<const std::int32_t> numbers; // ascending
    const SampleRecord* before = nullptr;  // the sample before the first; null if it is missing
    std::span<const std::int64_t> times{}; // since the trigger, for conditions that need them
};

/// The sample numbered before one of the block, which may be of any length here; null if it is
/// missing.
[[nodiscard]] const SampleRecord* RecordBefore(const SampleBlock& block, std::size_t i) noexcept;

/// A condition on samples, such as
///
///     FRAME falls and COMMAND == "Mem*" and not (ADDRESS32 in 0x1000..0x1FFF or INTA == 0)
///
/// over the signals of a capture, by the names of FindSignal, `sample`, the number, and `ACCUM`,
/// the time since the trigger. A decoded value that is shown in only one phase of a transfer is
/// compared in that phase only. Edges compare a sample with the one numbered before it; where that
/// is missing there is no edge.
class SampleCondition {
public:
    /// The condition, or the first mistake.
    [[nodiscard]] static std::variant<SampleCondition, ExpressionError>
    Parse(std::string_view text, const SignalTables& tables,
          std::initializer_list<const CSignalList*> lists, const KeptExpressions* kept = nullptr);
    [[nodiscard]] static ExpressionCompletion
    Complete(std::string_view text, std::size_t cursor, const SignalTables& tables,
             std::initializer_list<const CSignalList*> lists,
             const KeptExpressions* kept = nullptr);

    /// A bit for each sample of the block, set where the condition holds.
    [[nodiscard]] std::uint32_t MatchesOf(const SampleBlock& block) const noexcept;
    /// Whether only bits of single samples are compared with a few patterns, as fast as a search
    /// for these.
    [[nodiscard]] bool IsMasked() const noexcept;
    /// Whether it compares times since the trigger.
    [[nodiscard]] bool NeedsTimes() const noexcept;
    /// Whether it compares samples with those before them.
    [[nodiscard]] bool HasEdges() const noexcept;

private:
    friend class SampleConditionCompiler;

    enum class Step : std::uint8_t {
        Patterns, // one of the patterns matches
        InRange,  // the field is from `low` to `high`
        InTable,  // the bit of `table` for the field is set
        TimeInRange,
        SinceTriggerInRange,
        NumberInRange,
        NumberIsMasked,
        Rises, // of the line in the pattern
        Falls,
        Changes, // of the bits in `care`
        Not,
        And,
        Or,
        SkipIfNone, // the next `count` operations, if the last result is none
    };

    struct Operation {
        Step step = Step::Patterns;
        std::vector<RecordPattern> patterns;
        RecordField field{std::vector<int>()};
        std::int64_t least = 0;
        std::int64_t most = 0;
        std::uint64_t low = 0;
        std::uint64_t high = 0;
        SampleRecord care;
        std::vector<std::uint32_t> table;
        std::size_t count = 0;
    };

    [[nodiscard]] static std::uint32_t Test(const Operation& operation,
                                            const SampleBlock& block) noexcept;
    [[nodiscard]] static std::uint32_t EdgesOf(const Operation& operation,
                                               const SampleBlock& block) noexcept;

    std::vector<Operation> operations_; // in postfix order
};

} // namespace busquill
