#pragma once

#include "analysis/bus_traffic.h"
#include "analysis/trace_summary.h"
#include "analysis/transaction_totals.h"

#include <cstdint>
#include <map>

namespace busquill {

/// What statistics tell about transactions: their totals, lengths and waits.
class TransactionTally {
public:
    /// A headless transaction is not counted: nothing is known about it.
    void Add(const Transaction& transaction);
    /// Fills in everything about transactions; commands with the same name are added up.
    void Report(TraceSummary& summary, const BusTraffic& traffic) const;

private:
    TransactionTotals totals_;
    std::map<std::uint64_t, std::uint64_t> lengths_;
    WaitStates waitStates_;
    AcknowledgeTime acknowledgeTime_;
};

} // namespace busquill
