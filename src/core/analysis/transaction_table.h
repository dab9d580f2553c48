#pragma once

#include "analysis/transaction_condition.h"
#include "analysis/transaction_fields.h"
#include "analysis/transaction_follower.h"
#include "analysis/transaction_index.h"
#include "analysis/transaction_totals.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace busquill {

/// Which transactions a table shows, and in which order.
struct TransactionQuery {
    std::optional<TransactionCondition> where; // nothing: all
    TransactionField sortBy = TransactionField::Number;
    bool descending = false;
};

/// The rows of a table of transactions: those of a capture that a query selects, with what they
/// add up to. They are found in one walk through the samples, in pieces. One thread at a time.
class TransactionTable {
public:
    /// The board's bus must have transactions; the tables outlive the rows.
    TransactionTable(const BoardTraits& board, const SignalTables& tables, TransactionQuery query);

    /// Walks on through at most `limit` records. True when the rows are complete, also when they
    /// have been before. The samples are the same in each call.
    bool Continue(const CapturedSamples& samples, std::size_t limit);
    /// The records passed so far.
    [[nodiscard]] std::size_t Passed() const noexcept { return next_; }

    // When they are complete:

    [[nodiscard]] std::size_t Size() const noexcept { return rows_.size(); }
    /// The transaction in a row, as the index counts them.
    [[nodiscard]] std::size_t TransactionAt(std::size_t row) const { return rows_[row]; }
    /// The row of a transaction, if it has one.
    [[nodiscard]] std::optional<std::size_t> RowOf(std::size_t transaction) const;
    [[nodiscard]] const TransactionTotals& Totals() const noexcept { return totals_; }

private:
    void Add(const Transaction& transaction);
    void Sort();

    TransactionFollower follower_;
    TransactionFields fields_;
    TransactionQuery query_;
    std::size_t next_ = 0;
    bool isComplete_ = false;
    std::vector<std::uint32_t> rows_;
    std::vector<std::uint64_t> keys_; // of the rows, until they are sorted
    TransactionTotals totals_;
};

} // namespace busquill
