#pragma once

#include "analysis/transaction.h"
#include "capture/expression.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace busquill {

class BusTraffic;
class SignalTables;

/// What conditions on the transactions of a bus depend on.
struct TransactionBus {
    bool hasClock = true;                  // waits are counted in clocks, not in ns
    const SignalTables* tables = nullptr;  // whose signals are told apart from unknown names
    std::vector<std::string> commands{};   // their labels; with none, any text can be compared
    const KeptExpressions* kept = nullptr; // which conditions may use

    /// The tables outlive it.
    [[nodiscard]] static TransactionBus Of(const BusTraffic& traffic, const SignalTables& tables);
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
    Parse(std::string_view text, const TransactionBus& bus);
    [[nodiscard]] static ExpressionCompletion Complete(std::string_view text, std::size_t cursor,
                                                       const TransactionBus& bus);

    /// `command` is the label of the transaction's command, empty for a headless transaction.
    [[nodiscard]] bool Holds(const Transaction& transaction, std::string_view command) const;

private:
    explicit TransactionCondition(ParsedExpression expression)
        : expression_(std::move(expression)) {}

    /// Nothing if the transaction does not have what is compared.
    [[nodiscard]] static std::optional<bool>
    Matches(const ExpressionTest& test, const Transaction& transaction, std::string_view command);

    ParsedExpression expression_;
};

} // namespace busquill
