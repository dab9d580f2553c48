#include "analysis/command_labels.h"
#include "analysis/transaction_follower.h"
#include "support/board_tables.h"

#include <gmock/gmock.h>

#include <random>
#include <set>
#include <tuple>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

std::vector<std::string> LabelsOfBus(const char* model, std::int32_t mode) {
    const BoardTables board(model, mode);
    return AllCommandLabels(*MakeBusTraffic(board.board, board.tables));
}

TEST(CommandLabels, OfABusBeginInTheOrderOfItsTable) {
    const auto pci = LabelsOfBus("PCIKite-1", BusPci);
    EXPECT_EQ(pci.front(), "Int Ack");
    EXPECT_THAT(pci, Contains("DAC-Mem Rd"));
    EXPECT_THAT(pci, Contains("C/BE 5")) << "a reserved command";
    EXPECT_EQ(std::set(pci.begin(), pci.end()).size(), pci.size());

    const auto vme = LabelsOfBus("VMEKite-1", BusVme);
    EXPECT_THAT(vme, testing::IsSupersetOf({"A32 SUPV DATA Rd", "AM 30 Wr"})) << vme.front();
    EXPECT_THAT(vme, Not(Contains("Mem Rd")));
}

class CommandsOfBuses : public testing::TestWithParam<std::tuple<const char*, std::int32_t>> {};

TEST_P(CommandsOfBuses, HaveTheLabelOfEachTransaction) {
    const BoardTables board(std::get<0>(GetParam()), std::get<1>(GetParam()));
    TransactionFollower follower(board.board, board.tables);
    CommandLabels labels(*follower.Traffic());
    const auto all = AllCommandLabels(*follower.Traffic());
    constexpr unsigned seed = 11;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::set<std::string> seen;
    for (std::int32_t number = 0; number < 100000; ++number) {
        SampleRecord record;
        for (std::uint8_t& byte : record.bytes) {
            byte = static_cast<std::uint8_t>(random());
        }
        for (const Transaction& each : follower.Add(number, record)) {
            if (!each.isHeadless) {
                seen.insert(labels.Of(each));
            }
        }
    }
    EXPECT_GT(seen.size(), 5U);
    EXPECT_THAT(all, testing::IsSupersetOf(seen));
}

INSTANTIATE_TEST_SUITE_P(Boards, CommandsOfBuses,
                         testing::Values(std::tuple("PCIKite-1", BusPci),
                                         std::tuple("PCIKite-1", BusPciX),
                                         std::tuple("VMEKite-1", BusVme),
                                         std::tuple("VMELark-1", BusVme),
                                         std::tuple("VMEKite-1", BusVsb)));

} // namespace
} // namespace busquill::test
