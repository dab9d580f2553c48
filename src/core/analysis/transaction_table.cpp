#include "analysis/transaction_table.h"

#include <algorithm>

namespace busquill {

TransactionTable::TransactionTable(const BoardTraits& board, const SignalTables& tables,
                                   TransactionQuery query)
    : follower_(board, tables), fields_(*follower_.Traffic()), query_(std::move(query)) {
    follower_.KeepWords(query_.sortBy == TransactionField::Data ? 1 : 0);
}

bool TransactionTable::Continue(const CapturedSamples& samples, std::size_t limit) {
    if (isComplete_) {
        return true;
    }
    const std::size_t end = next_ + std::min(limit, samples.records.size() - next_);
    for (; next_ < end; ++next_) {
        if (!samples.Has(next_)) {
            continue;
        }
        const auto number = samples.first + static_cast<std::int64_t>(next_);
        for (const Transaction& ended : follower_.Add(number, samples.records[next_])) {
            Add(ended);
        }
    }
    if (next_ < samples.records.size()) {
        return false;
    }
    if (const auto open = follower_.Unfinished()) {
        Add(*open);
    }
    Sort();
    isComplete_ = true;
    return true;
}

void TransactionTable::Add(const Transaction& transaction) {
    if (query_.where && !query_.where->Holds(transaction, fields_.Command(transaction))) {
        return;
    }
    totals_.Add(transaction);
    rows_.push_back(static_cast<std::uint32_t>(transaction.number - 1));
    if (query_.sortBy != TransactionField::Number) {
        keys_.push_back(fields_.SortKey(transaction, query_.sortBy));
    }
}

/// Equal ones stay in the order of the capture.
void TransactionTable::Sort() {
    if (query_.sortBy == TransactionField::Number) {
        if (query_.descending) {
            std::ranges::reverse(rows_);
        }
        return;
    }
    std::vector<std::pair<std::uint64_t, std::uint32_t>> keyed;
    keyed.reserve(rows_.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        // The order of these numbers is the other one, so a falling order needs no other sort.
        keyed.emplace_back(query_.descending ? ~keys_[i] : keys_[i], rows_[i]);
    }
    std::ranges::sort(keyed); // equal keys by their rows
    std::ranges::transform(keyed, rows_.begin(), [](const auto& each) { return each.second; });
    keys_ = {};
}

std::optional<std::size_t> TransactionTable::RowOf(std::size_t transaction) const {
    const auto wanted = static_cast<std::uint32_t>(transaction);
    const bool isInOrder = query_.sortBy == TransactionField::Number && !query_.descending;
    const auto found =
        isInOrder ? std::ranges::lower_bound(rows_, wanted) : std::ranges::find(rows_, wanted);
    if (found == rows_.end() || *found != wanted) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - rows_.begin());
}

} // namespace busquill
