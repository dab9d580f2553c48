#pragma once

#include "analysis/bus_traffic.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace busquill {

/// The labels of all commands of a bus in the order of its table, each once.
[[nodiscard]] std::vector<std::string> AllCommandLabels(const BusTraffic& traffic);

/// The labels of transactions' commands, each looked up once. The traffic outlives it.
class CommandLabels {
public:
    explicit CommandLabels(const BusTraffic& traffic) : traffic_(traffic) {}

    /// Empty for a headless transaction.
    [[nodiscard]] const std::string& Of(const Transaction& transaction);

private:
    const BusTraffic& traffic_;
    std::unordered_map<std::uint32_t, std::string> labels_;
};

} // namespace busquill
