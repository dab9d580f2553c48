#pragma once

#include "analysis/trace_summary.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <tuple>

namespace busquill {

/// A transaction, or the sum of several with the same command.
struct Transaction {
    std::uint32_t command = 0; // a code specific to the bus
    std::uint64_t dataPhases = 0;
    std::uint64_t bytes = 0;
};

/// The name of a command, and its position in the order of commands.
struct CommandName {
    std::size_t place = 0;
    std::string label;

    friend bool operator<(const CommandName& a, const CommandName& b) {
        return std::tie(a.place, a.label) < std::tie(b.place, b.label);
    }
};

/// Transactions by command and by length.
class TransactionTally {
public:
    void Add(const Transaction& transaction);
    /// Fills in commands, lengths and bytes; commands with the same name are added up.
    void Report(TraceSummary& summary,
                const std::function<CommandName(std::uint32_t)>& nameOf) const;

private:
    struct Sum {
        std::uint64_t transactions = 0;
        std::uint64_t dataPhases = 0;
        std::uint64_t bytes = 0;
    };

    std::map<std::uint32_t, Sum> commands_;
    std::map<std::uint64_t, std::uint64_t> lengths_;
};

} // namespace busquill
