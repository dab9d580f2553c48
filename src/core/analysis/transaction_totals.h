#pragma once

#include "analysis/transaction.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace busquill {

class BusTraffic;

/// Least, mean and greatest of some times, in ns.
struct TimeSpread {
    std::uint64_t count = 0;
    std::int64_t least = 0;
    std::int64_t most = 0;
    std::int64_t sum = 0;

    void Add(std::int64_t time) noexcept;
    void Add(const TimeSpread& other) noexcept;
    /// 0 if there are none.
    [[nodiscard]] std::int64_t Mean() const noexcept;

    friend bool operator==(const TimeSpread&, const TimeSpread&) = default;
};

/// What some transactions add up to: by command, and by how they ended.
class TransactionTotals {
public:
    struct OfCommand {
        std::string label; // empty for headless transactions
        std::uint64_t transactions = 0;
        std::uint64_t dataPhases = 0;
        std::uint64_t bytes = 0;
        std::int64_t wait = 0; // as Transaction::Wait
        TimeSpread latency;

        friend bool operator==(const OfCommand&, const OfCommand&) = default;
    };

    void Add(const Transaction& transaction);
    /// Those of another capture of the same bus.
    void Add(const TransactionTotals& other);
    /// In the order of the bus's table, headless ones last.
    [[nodiscard]] std::vector<OfCommand> Commands(const BusTraffic& traffic) const;
    [[nodiscard]] std::uint64_t EndsBy(TransactionEnd end) const noexcept {
        return ends_[static_cast<std::size_t>(end)];
    }
    [[nodiscard]] std::uint64_t Transactions() const noexcept { return transactions_; }

private:
    std::map<std::uint32_t, OfCommand> commands_;
    OfCommand headless_;
    std::array<std::uint64_t, transactionEndCount> ends_{};
    std::uint64_t transactions_ = 0;
};

} // namespace busquill
