#pragma once

#include "analysis/bus_traffic.h"
#include "analysis/trace_summary.h"

#include <array>
#include <cstdint>
#include <map>

namespace busquill {

/// Transactions by command, by length and by how they ended.
class TransactionTally {
public:
    /// A headless transaction is not counted: nothing is known about it.
    void Add(const Transaction& transaction);
    /// Fills in everything about transactions; commands with the same name are added up.
    void Report(TraceSummary& summary, const BusTraffic& traffic) const;

private:
    struct Sum {
        std::uint64_t transactions = 0;
        std::uint64_t dataPhases = 0;
        std::uint64_t bytes = 0;
    };

    [[nodiscard]] std::uint64_t EndsBy(TransactionEnd end) const noexcept {
        return ends_[static_cast<std::size_t>(end)];
    }

    std::map<std::uint32_t, Sum> commands_;
    std::map<std::uint64_t, std::uint64_t> lengths_;
    std::array<std::uint64_t, transactionEndCount> ends_{};
    WaitStates waitStates_;
    AcknowledgeTime acknowledgeTime_;
};

} // namespace busquill
