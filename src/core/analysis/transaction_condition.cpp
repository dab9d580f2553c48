#include "analysis/transaction_condition.h"

#include "analysis/bus_traffic.h"
#include "analysis/command_labels.h"
#include "analysis/transaction_fields.h"
#include "platform/text.h"
#include "signals/signal_names.h"

#include <algorithm>
#include <utility>

namespace busquill {

namespace {

using enum TransactionField;

/// The only field that is not a column.
constexpr std::size_t headlessId = transactionFields.size() - 1;
static_assert(transactionFields[headlessId] == "headless");

constexpr std::size_t IdOf(TransactionField field) {
    return static_cast<std::size_t>(field);
}

class FieldNames final : public ExpressionNames {
public:
    explicit FieldNames(const TransactionBus& bus) : bus_(bus) {}

    [[nodiscard]] std::string_view Kind() const override { return "a field"; }
    [[nodiscard]] std::optional<ExpressionName> Find(std::string_view name) override {
        const std::string_view wanted = NameOfTitle(name);
        const auto field = std::ranges::find_if(
            transactionFields, [&](auto each) { return EqualIgnoringCase(each, wanted); });
        if (field == transactionFields.end()) {
            return std::nullopt;
        }
        ExpressionName found;
        found.name = *field;
        found.id = static_cast<std::size_t>(field - transactionFields.begin());
        found.values = ValuesOf(found.id);
        found.isHex = found.id == IdOf(Address);
        if (found.id == IdOf(Command)) {
            found.labels = bus_.commands;
        } else if (found.id == IdOf(End)) {
            for (std::size_t i = 0; i < transactionEndCount; ++i) {
                found.labels.emplace_back(NameOf(static_cast<TransactionEnd>(i)));
            }
        }
        return found;
    }
    [[nodiscard]] std::vector<std::string> All() const override {
        return {transactionFields.begin(), transactionFields.end()};
    }
    [[nodiscard]] std::string BelongsElsewhere(std::string_view name) const override {
        const bool isSignal = bus_.tables != nullptr && FindSignal(name, *bus_.tables, {});
        return isSignal ? Printf("\"%s\" is a signal of samples; transactions have fields, such as "
                                 "command, address, wait and end",
                                 Shortened(name).c_str())
                        : "";
    }

    [[nodiscard]] std::string InsteadOfLabel(std::string_view text) const override {
        return EqualIgnoringCase(text, begunBefore) ? "headless" : "";
    }

private:
    /// The field whose column has this title, otherwise the same name.
    static std::string_view NameOfTitle(std::string_view name) {
        const auto column = std::ranges::find_if(FieldColumns(), [&](const FieldColumn& each) {
            return EqualIgnoringCase(each.title, name);
        });
        return column == FieldColumns().end() ? name : NameOf(column->field);
    }
    [[nodiscard]] ExpressionName::Values ValuesOf(std::size_t id) const {
        using Values = ExpressionName::Values;
        if (id == headlessId) {
            return Values::Flag;
        }
        switch (static_cast<TransactionField>(id)) {
        case Time:
        case Latency:
        case Gap:
            return Values::Time;
        case Wait:
            return bus_.hasClock ? Values::Count : Values::Time;
        case Address:
            return Values::Bits;
        case Command:
            return Values::Text;
        case End:
            return Values::Word;
        default:
            return Values::Count;
        }
    }

    const TransactionBus& bus_;
};

} // namespace

TransactionBus TransactionBus::Of(const BusTraffic& traffic, const SignalTables& tables) {
    return {traffic.HasClock(), &tables, AllCommandLabels(traffic), nullptr};
}

std::variant<TransactionCondition, ExpressionError>
TransactionCondition::Parse(std::string_view text, const TransactionBus& bus) {
    FieldNames names(bus);
    auto parsed = ParseExpression(text, names, bus.kept);
    if (auto* const error = std::get_if<ExpressionError>(&parsed)) {
        return std::move(*error);
    }
    return TransactionCondition(std::get<ParsedExpression>(std::move(parsed)));
}

ExpressionCompletion TransactionCondition::Complete(std::string_view text, std::size_t cursor,
                                                    const TransactionBus& bus) {
    FieldNames names(bus);
    return CompleteExpression(text, cursor, names, bus.kept);
}

std::optional<bool> TransactionCondition::Matches(const ExpressionTest& test,
                                                  const Transaction& transaction,
                                                  std::string_view command) {
    if (test.name.id == headlessId) {
        return transaction.isHeadless;
    }
    const auto field = static_cast<TransactionField>(test.name.id);
    switch (field) {
    case Command:
        return command.empty() ? std::nullopt : std::optional(IsLike(command, test.text));
    case End:
        return (test.low >> static_cast<std::size_t>(transaction.end) & 1) != 0;
    default:
        break;
    }
    const bool isMasked = test.kind == ExpressionTest::Kind::IsMasked;
    if (field == Address) {
        if (!transaction.address || transaction.isHeadless) {
            return std::nullopt;
        }
        const std::uint64_t address = *transaction.address;
        return isMasked ? (address & test.high) == test.low
                        : test.low <= address && address <= test.high;
    }
    const auto number = NumberOf(transaction, field);
    if (!number) {
        return std::nullopt;
    }
    return isMasked ? (static_cast<std::uint64_t>(*number) & test.high) == test.low
                    : test.least <= *number && *number <= test.most;
}

bool TransactionCondition::Holds(const Transaction& transaction, std::string_view command) const {
    static_assert(ParsedExpression::mostResults <= 64);
    std::uint64_t results = 0; // the last in the lowest bit
    for (const ParsedExpression::Operation& operation : expression_.operations) {
        const std::uint64_t last = results & 1;
        const std::uint64_t before = results >> 1;
        switch (operation.step) {
        case ParsedExpression::Step::Not:
            results ^= 1;
            break;
        case ParsedExpression::Step::And:
            results = (before & ~std::uint64_t{1}) | (before & last);
            break;
        case ParsedExpression::Step::Or:
            results = before | last;
            break;
        case ParsedExpression::Step::Test: {
            const auto matches = Matches(operation.test, transaction, command);
            const bool holds = matches && *matches != operation.test.isOther;
            results = results << 1 | (holds ? 1U : 0U);
            break;
        }
        }
    }
    return (results & 1) != 0;
}

} // namespace busquill
