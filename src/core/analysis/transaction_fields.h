/// What a table of transactions shows of each, as texts and as keys to sort by.
#pragma once

#include "analysis/command_labels.h"
#include "analysis/transaction.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace busquill {

/// Up to Findings in the order of transactionFields.
enum class TransactionField : std::uint8_t {
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
    Findings,
    Data,
};

/// As in conditions, CSV and JSON.
[[nodiscard]] std::string_view NameOf(TransactionField field) noexcept;

/// The value of a field that is a number, if the transaction has it; times in ns.
[[nodiscard]] std::optional<std::int64_t> NumberOf(const Transaction& transaction,
                                                   TransactionField field);

/// The command of a transaction whose beginning is not in the capture, as a table shows it.
constexpr const char* begunBefore = "(begun before)";

/// How a table shows a field.
struct FieldColumn {
    TransactionField field;
    const char* title;
    const char* meaning; // for the user
    bool isNumber;       // to the right
};

/// All, in the order of the table.
[[nodiscard]] std::span<const FieldColumn> FieldColumns() noexcept;
/// Whether transactions of a bus can have the field.
[[nodiscard]] bool HasField(const BusTraffic& traffic, bool hasSplits,
                            TransactionField field) noexcept;

/// The fields of the transactions of a bus.
class TransactionFields {
public:
    /// The traffic outlives it.
    explicit TransactionFields(const BusTraffic& traffic) : traffic_(traffic), labels_(traffic) {}

    /// The label of the command; empty for a headless transaction.
    [[nodiscard]] const std::string& Command(const Transaction& transaction) {
        return labels_.Of(transaction);
    }
    /// Empty where a transaction does not have the field.
    [[nodiscard]] std::string Text(const Transaction& transaction, TransactionField field);
    /// The same after other text.
    void Append(std::string& text, const Transaction& transaction, TransactionField field);
    /// In the order of the values, 0 where a transaction does not have the field.
    [[nodiscard]] std::uint64_t SortKey(const Transaction& transaction,
                                        TransactionField field) const;

private:
    void AppendAddress(std::string& text, const Transaction& transaction) const;

    const BusTraffic& traffic_;
    CommandLabels labels_;
};

} // namespace busquill
