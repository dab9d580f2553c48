#include "analysis/transaction_follower.h"
#include "analysis/transaction_totals.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

Transaction Make(std::uint32_t command, std::uint64_t words, std::uint64_t waits,
                 std::optional<std::int64_t> latency, TransactionEnd end) {
    Transaction made;
    made.command = command;
    made.dataPhases = words;
    made.bytes = 4 * words;
    made.waitStates.target = waits;
    made.time = 1000;
    made.firstData = latency ? std::optional(1000 + *latency) : std::nullopt;
    made.end = end;
    return made;
}

Transaction Headless() {
    Transaction made;
    made.isHeadless = true;
    return made;
}

TEST(TransactionTotals, OfTwoCapturesAreThoseOfAllTheirTransactions) {
    TransactionTotals first;
    first.Add(Make(PciCommand::MemoryRead, 2, 3, 90, TransactionEnd::Complete));
    first.Add(Make(PciCommand::MemoryRead, 0, 1, {}, TransactionEnd::Retry));
    first.Add(Headless());
    TransactionTotals second;
    second.Add(Make(PciCommand::MemoryRead, 4, 5, 30, TransactionEnd::Complete));
    second.Add(Make(PciCommand::MemoryWrite, 8, 0, 60, TransactionEnd::Complete));
    second.Add(Headless());
    TransactionTotals sum;
    sum.Add(first);
    sum.Add(second);

    const BoardTables bus("PCIKite", BusPci, 0);
    const TransactionFollower follower(bus.board, bus.tables);
    const auto commands = sum.Commands(*follower.Traffic());
    ASSERT_EQ(commands.size(), 3U);
    EXPECT_EQ(commands[0],
              (TransactionTotals::OfCommand{"Mem Rd", 3, 6, 24, 9, TimeSpread{2, 30, 90, 120}}));
    EXPECT_EQ(commands[1],
              (TransactionTotals::OfCommand{"Mem Wr", 1, 8, 32, 0, TimeSpread{1, 60, 60, 60}}));
    EXPECT_EQ(commands[2], (TransactionTotals::OfCommand{"", 2, 0, 0, 0, TimeSpread{}}));
    EXPECT_EQ(sum.Transactions(), 6U);
    EXPECT_EQ(sum.EndsBy(TransactionEnd::Complete), 3U);
    EXPECT_EQ(sum.EndsBy(TransactionEnd::Retry), 1U);
    EXPECT_EQ(sum.EndsBy(TransactionEnd::Unknown), 2U);
}

} // namespace
} // namespace busquill::test
