#include "analysis/transaction_tally.h"

namespace busquill {

void TransactionTally::Add(const Transaction& transaction) {
    if (transaction.isHeadless) {
        return;
    }
    totals_.Add(transaction);
    ++lengths_[transaction.dataPhases];
    waitStates_.initiator += transaction.waitStates.initiator;
    waitStates_.target += transaction.waitStates.target;
    acknowledgeTime_.total += transaction.acknowledgeTime.total;
    acknowledgeTime_.transfers += transaction.acknowledgeTime.transfers;
}

void TransactionTally::Report(TraceSummary& summary, const BusTraffic& traffic) const {
    for (const auto& each : totals_.Commands(traffic)) {
        summary.commands.push_back({each.label, each.transactions, each.dataPhases, each.bytes});
        summary.bytes += each.bytes;
    }
    summary.burstLengths = lengths_;
    summary.retries = totals_.EndsBy(TransactionEnd::Retry);
    summary.disconnects = totals_.EndsBy(TransactionEnd::DisconnectWithData) +
                          totals_.EndsBy(TransactionEnd::DisconnectWithoutData);
    summary.targetAborts = totals_.EndsBy(TransactionEnd::TargetAbort);
    summary.masterAborts = totals_.EndsBy(TransactionEnd::MasterAbort);
    summary.splitResponses = totals_.EndsBy(TransactionEnd::SplitResponse);
    summary.busErrors = totals_.EndsBy(TransactionEnd::BusError);
    if (traffic.HasClock()) {
        summary.waitStates = waitStates_;
    } else {
        summary.acknowledgeTime = acknowledgeTime_;
    }
}

} // namespace busquill
