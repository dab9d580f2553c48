#pragma once

#include "analysis/transaction.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace busquill {

/// What is wrong with an expression, and where.
struct ExpressionError {
    std::size_t place = 0; // of the first character in question; at most the length of the text
    std::string message;
};

/// A condition on transactions, such as
///
///     command == "Mem Rd" and address in 0x1000..0x1FFF and not (wait <= 4 or end == retry)
///
/// A comparison of something that a transaction does not have, such as the latency of one without
/// data, does not hold.
class TransactionCondition {
public:
    /// The condition, or the first mistake.
    [[nodiscard]] static std::variant<TransactionCondition, ExpressionError>
    Parse(std::string_view text);

    /// `command` is the label of the transaction's command, empty for a headless transaction.
    [[nodiscard]] bool Holds(const Transaction& transaction, std::string_view command) const;

    /// The names that stand before an operator.
    [[nodiscard]] static std::vector<std::string> FieldNames();

private:
    friend class ConditionParser;

    enum class Field : std::uint8_t {
        Number,
        Sample,
        Time,
        Command,
        Address,
        Words,
        Bytes,
        Wait,
        InitiatorWait,
        Latency,
        End,
        Gap,
        Tag,
        SplitRequest,
        Findings
    };
    enum class Step : std::uint8_t { InRange, IsMasked, IsEnd, IsText, Not, And, Or };

    /// The expression in postfix order, so that it needs no recursion.
    struct Operation {
        Step step = Step::InRange;
        Field field = Field::Number;
        // InRange: least and most; IsMasked: value and compared bits; IsEnd: the end.
        std::int64_t least = 0;
        std::int64_t most = 0;
        std::uint64_t value = 0;
        std::uint64_t mask = 0;
        std::string text; // IsText: with "*" for any characters
    };

    [[nodiscard]] static bool Test(const Operation& operation, const Transaction& transaction,
                                   std::string_view command);

    std::vector<Operation> operations_;
};

} // namespace busquill
