#include "analysis/transaction_tally.h"

namespace busquill {

void TransactionTally::Add(const Transaction& transaction) {
    if (transaction.isHeadless) {
        return;
    }
    Sum& sum = commands_[transaction.command];
    ++sum.transactions;
    sum.dataPhases += transaction.dataPhases;
    sum.bytes += transaction.bytes;
    ++lengths_[transaction.dataPhases];
    ++ends_[static_cast<std::size_t>(transaction.end)];
    waitStates_.initiator += transaction.waitStates.initiator;
    waitStates_.target += transaction.waitStates.target;
    acknowledgeTime_.total += transaction.acknowledgeTime.total;
    acknowledgeTime_.transfers += transaction.acknowledgeTime.transfers;
}

void TransactionTally::Report(TraceSummary& summary, const BusTraffic& traffic) const {
    std::map<CommandName, Sum> named;
    for (const auto& [command, sum] : commands_) {
        Sum& total = named[traffic.NameOf(command)];
        total.transactions += sum.transactions;
        total.dataPhases += sum.dataPhases;
        total.bytes += sum.bytes;
    }
    for (const auto& [name, sum] : named) {
        summary.commands.push_back({name.label, sum.transactions, sum.dataPhases, sum.bytes});
        summary.bytes += sum.bytes;
    }
    summary.burstLengths = lengths_;
    summary.retries = EndsBy(TransactionEnd::Retry);
    summary.disconnects =
        EndsBy(TransactionEnd::DisconnectWithData) + EndsBy(TransactionEnd::DisconnectWithoutData);
    summary.targetAborts = EndsBy(TransactionEnd::TargetAbort);
    summary.masterAborts = EndsBy(TransactionEnd::MasterAbort);
    summary.splitResponses = EndsBy(TransactionEnd::SplitResponse);
    summary.busErrors = EndsBy(TransactionEnd::BusError);
    if (traffic.HasClock()) {
        summary.waitStates = waitStates_;
    } else {
        summary.acknowledgeTime = acknowledgeTime_;
    }
}

} // namespace busquill
