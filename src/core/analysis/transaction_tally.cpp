#include "analysis/transaction_tally.h"

namespace busquill {

void TransactionTally::Add(const Transaction& transaction) {
    Sum& sum = commands_[transaction.command];
    ++sum.transactions;
    sum.dataPhases += transaction.dataPhases;
    sum.bytes += transaction.bytes;
    ++lengths_[transaction.dataPhases];
}

void TransactionTally::Report(TraceSummary& summary,
                              const std::function<CommandName(std::uint32_t)>& nameOf) const {
    std::map<CommandName, Sum> named;
    for (const auto& [command, sum] : commands_) {
        Sum& total = named[nameOf(command)];
        total.transactions += sum.transactions;
        total.dataPhases += sum.dataPhases;
        total.bytes += sum.bytes;
    }
    for (const auto& [name, sum] : named) {
        summary.commands.push_back({name.label, sum.transactions, sum.dataPhases, sum.bytes});
        summary.bytes += sum.bytes;
    }
    summary.burstLengths = lengths_;
}

} // namespace busquill
