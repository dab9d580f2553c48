#include "analysis/transaction_totals.h"

#include "analysis/bus_traffic.h"
#include "signals/value_text.h"

#include <algorithm>

namespace busquill {

namespace {

void AddTo(TransactionTotals::OfCommand& total, const TransactionTotals::OfCommand& other) {
    total.transactions += other.transactions;
    total.dataPhases += other.dataPhases;
    total.bytes += other.bytes;
    total.wait = AddTimes(total.wait, other.wait);
    total.latency.Add(other.latency);
}

} // namespace

void TimeSpread::Add(std::int64_t time) noexcept {
    Add({1, time, time, time});
}

void TimeSpread::Add(const TimeSpread& other) noexcept {
    if (other.count == 0) {
        return;
    }
    least = count == 0 ? other.least : std::min(least, other.least);
    most = count == 0 ? other.most : std::max(most, other.most);
    sum = AddTimes(sum, other.sum);
    count += other.count;
}

std::int64_t TimeSpread::Mean() const noexcept {
    return count == 0 ? 0 : sum / static_cast<std::int64_t>(count);
}

void TransactionTotals::Add(const Transaction& transaction) {
    ++transactions_;
    ++ends_[static_cast<std::size_t>(transaction.end)];
    OfCommand& total = transaction.isHeadless ? headless_ : commands_[transaction.command];
    ++total.transactions;
    total.dataPhases += transaction.dataPhases;
    total.bytes += transaction.bytes;
    total.wait = AddTimes(total.wait, transaction.Wait());
    if (const auto latency = transaction.Latency()) {
        total.latency.Add(*latency);
    }
}

void TransactionTotals::Add(const TransactionTotals& other) {
    for (const auto& [command, total] : other.commands_) {
        AddTo(commands_[command], total);
    }
    AddTo(headless_, other.headless_);
    for (std::size_t i = 0; i < ends_.size(); ++i) {
        ends_[i] += other.ends_[i];
    }
    transactions_ += other.transactions_;
}

std::vector<TransactionTotals::OfCommand>
TransactionTotals::Commands(const BusTraffic& traffic) const {
    std::map<CommandName, OfCommand> named; // several codes may have one name
    for (const auto& [command, total] : commands_) {
        const CommandName name = traffic.NameOf(command);
        OfCommand& sum = named[name];
        sum.label = name.label;
        AddTo(sum, total);
    }
    std::vector<OfCommand> totals;
    totals.reserve(named.size() + 1);
    for (const auto& [name, total] : named) {
        totals.push_back(total);
    }
    if (headless_.transactions != 0) {
        totals.push_back(headless_);
    }
    return totals;
}

} // namespace busquill
