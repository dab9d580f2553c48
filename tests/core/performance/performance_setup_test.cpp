#include "link/board_identity.h"
#include "performance/performance_setup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;

BoardTraits Board(const char* model) {
    return TraitsOfModel(model).value();
}

std::vector<int> ItemsOf(const PerformanceSetup& setup) {
    std::vector<int> items;
    for (const PerformanceItem& item : setup.items) {
        items.push_back(item.item);
    }
    return items;
}

std::vector<int> CyclesOf(const PerformanceSetup& setup) {
    std::vector<int> cycles;
    for (const PerformanceItem& item : setup.items) {
        cycles.push_back(item.cycle);
    }
    return cycles;
}

std::size_t OfferedCycles(const char* model) {
    const auto cycles = PerformanceCycles(Board(model));
    return cycles.size() - static_cast<std::size_t>(std::ranges::count(cycles, ""));
}

TEST(PerformanceSetup, StartsAsASetupThatNobodyHasChanged) {
    const PerformanceSetup setup;
    EXPECT_EQ(setup.type, 0);
    EXPECT_EQ(setup.setupName, "<New>");
    EXPECT_EQ(setup.updateInterval, 100);
    EXPECT_EQ(setup.chartType, 0);
    EXPECT_FALSE(setup.grid);
    const std::uint32_t colors[] = {0x000000, 0x0000FF, 0x00FF00, 0xFF0000,
                                    0x00FFFF, 0xFFFF00, 0xFF00FF, 0x000080};
    const int styles[] = {0, 1, 2, 3, 4, 0, 1, 2};
    for (std::size_t row = 0; row < 8; ++row) {
        EXPECT_EQ(setup.items[row].item, 0);
        EXPECT_EQ(setup.items[row].cycle, 0);
        EXPECT_EQ(setup.items[row].color, colors[row]) << row;
        EXPECT_EQ(setup.items[row].style, styles[row]) << row;
        EXPECT_EQ(PerformanceAddressText(setup.items[row].lowAddress), "0000000000000000");
        EXPECT_EQ(PerformanceAddressText(setup.items[row].highAddress), "ffffffffffffffff");
    }
}

TEST(PerformanceSetup, ClearKeepsOnlyTheType) {
    PerformanceSetup setup;
    setup.SetType(PerformanceStatistics);
    setup.setupName = "mine";
    setup.updateInterval = 5;
    setup.chartType = PerformancePieChart;
    setup.grid = true;
    setup.items[7].highAddress[0] = 1;
    setup.items[7].color = 1;
    setup.Clear();
    PerformanceSetup fresh;
    fresh.type = PerformanceStatistics;
    EXPECT_EQ(setup, fresh);
}

TEST(PerformanceSetup, ATypePresetsItsItemsInOrder) {
    PerformanceSetup setup;
    setup.SetType(PerformanceUtilization);
    EXPECT_THAT(ItemsOf(setup), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    setup.SetType(PerformanceTransferRate);
    EXPECT_THAT(ItemsOf(setup), ElementsAre(1, 2, 3, 4, 5, 0, 0, 0));
    setup.SetType(PerformanceLatency);
    EXPECT_THAT(ItemsOf(setup), ElementsAre(1, 2, 3, 4, 0, 0, 0, 0));
    setup.SetType(PerformanceMaxTypes);
    EXPECT_THAT(ItemsOf(setup), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(setup.type, PerformanceMaxTypes);
}

TEST(PerformanceSetup, ATypeOfOneItemPresetsCyclesAndLeavesTheOtherRows) {
    PerformanceSetup setup;
    for (PerformanceItem& item : setup.items) {
        item.item = 8;
        item.cycle = 23;
    }
    PerformanceSetup burst = setup;
    burst.SetType(PerformanceBurstDistribution);
    EXPECT_THAT(ItemsOf(burst), ElementsAre(1, 1, 1, 1, 8, 8, 8, 8));
    EXPECT_THAT(CyclesOf(burst), ElementsAre(0, 1, 4, 7, 23, 23, 23, 23));
    PerformanceSetup statistics = setup;
    statistics.SetType(PerformanceStatistics);
    EXPECT_THAT(ItemsOf(statistics), ElementsAre(1, 1, 1, 1, 1, 1, 8, 8));
    EXPECT_THAT(CyclesOf(statistics), ElementsAre(2, 3, 5, 6, 8, 9, 23, 23));
    PerformanceSetup latency = setup;
    latency.SetType(PerformanceLatency);
    EXPECT_THAT(CyclesOf(latency), ElementsAre(23, 23, 23, 23, 23, 23, 23, 23));
}

TEST(PerformanceTypes, EachHasItsNamesItemsAndScale) {
    EXPECT_EQ(PerformanceTypeOf(1).name, "Transfer Rate");
    EXPECT_EQ(PerformanceTypeOf(1).windowTitle, "Performance - Transfer Rate");
    EXPECT_EQ(PerformanceTypeOf(1).unit, "MB/s");
    EXPECT_EQ(PerformanceTypeOf(1).scale.Maximum(), 1000);
    EXPECT_EQ(PerformanceTypeOf(0).scale.Maximum(), 100);
    EXPECT_EQ(PerformanceTypeOf(5).name, "Max Types");
    EXPECT_EQ(PerformanceItemText(0, 0), "None");
    EXPECT_EQ(PerformanceItemText(0, 8), "Target Efficiency");
    EXPECT_EQ(PerformanceItemText(3, 1), "Cycle");
    EXPECT_EQ(PerformanceItemText(3, 2), "");
    EXPECT_EQ(PerformanceItemText(4, 7), "Split Response");
    for (const int outside : {-1, 9, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(PerformanceItemText(0, outside), "");
        EXPECT_EQ(PerformanceTypeOf(outside).name, "Max Types");
    }
}

TEST(PerformanceCycles, BelongToTheFamilyOfTheBoard) {
    EXPECT_EQ(OfferedCycles("PCIKite"), 24U);
    EXPECT_EQ(OfferedCycles("VMEKite"), 13U);
    EXPECT_EQ(OfferedCycles("VMELark"), 13U);
    EXPECT_EQ(OfferedCycles("VSBKite"), 18U);
    EXPECT_EQ(PerformanceCycleText(Board("PCIKite"), 13), "Mem Wr & Inv");
    EXPECT_EQ(PerformanceCycleText(Board("VMEKite"), 4), "");
    EXPECT_EQ(PerformanceCycleText(Board("VMEKite"), 14), "Int Ack");
    EXPECT_EQ(PerformanceCycleText(Board("VSBKite"), 9), "Alt Wr");
    EXPECT_EQ(PerformanceCycleText(Board("VSBKite"), 23), "E8");
    EXPECT_EQ(PerformanceCycleText(Board("PCIKite"), 24), "");
    EXPECT_EQ(PerformanceCycleText(Board("PCIKite"), -1), "");
}

TEST(PerformanceIntervals, HaveTextsInTheirUnit) {
    std::vector<std::string> texts;
    for (const std::int32_t interval : performanceIntervals) {
        texts.push_back(PerformanceIntervalText(interval));
    }
    EXPECT_THAT(texts, ElementsAre("1 ms", "5 ms", "10 ms", "20 ms", "40 ms", "80 ms", "100 ms",
                                   "200 ms", "400 ms", "800 ms", "1 sec", "5 sec", "10 sec",
                                   "20 sec", "40 sec", "1 min", "5 min", "10 min"));
}

TEST(PerformanceRowText, NamesTheItemAndItsCycle) {
    PerformanceSetup setup;
    setup.items[0].item = 1;
    setup.items[0].cycle = 2;
    EXPECT_EQ(PerformanceRowText(setup, 0, Board("PCIKite")), " Bus Busy : Mem Rd");
    EXPECT_EQ(PerformanceRowText(setup, 1, Board("PCIKite")), "");
    setup.items[0].cycle = 4;
    EXPECT_EQ(PerformanceRowText(setup, 0, Board("VMEKite")), " Bus Busy") << "no such cycle";
    setup.items[0].item = 15;
    EXPECT_EQ(PerformanceRowText(setup, 0, Board("PCIKite")), "  : I/O") << "no such item";
    setup.items[0].item = -3;
    EXPECT_EQ(PerformanceRowText(setup, 0, Board("PCIKite")), "");
}

TEST(PerformanceColumns, AreTheRowsThatAreOnWithTheirLettersWhereTheyCountTheSame) {
    PerformanceSetup setup;
    setup.items[1].item = 1;
    setup.items[3].item = 2;
    setup.items[6].item = 1;
    const std::vector<PerformanceColumn> columns = PerformanceColumns(setup, {});
    ASSERT_EQ(columns.size(), 3U);
    EXPECT_EQ(columns[0].name, "Bus Busy : All (B)");
    EXPECT_EQ(columns[1].name, "Bus Idle : All");
    EXPECT_EQ(columns[1].row, 3U);
    EXPECT_EQ(columns[2].name, "Bus Busy : All (G)");
    EXPECT_EQ(columns[2].row, 6U);
}

TEST(PerformancePayload, HasTheTypeThenThirtyBytesForEachRow) {
    PerformanceSetup setup;
    setup.type = PerformanceStatistics;
    setup.items[0].item = 1;
    setup.items[0].cycle = 23;
    setup.items[0].lowAddress = {0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x80};
    setup.items[0].highAddress = {0x11, 0x21, 0x31, 0x41, 0x51, 0x61, 0x71, 0x81};
    setup.items[7].item = 0x103; // only the low bytes are sent
    setup.items[7].cycle = 0x204;
    setup.items[7].color = 0xFFFFFF;
    setup.items[7].style = 4;

    std::vector<std::uint8_t> expected(241);
    const std::uint8_t first[] = {
        4,                                              // Statistics
        0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x80, // low address, byte 0 first
        0x11, 0x21, 0x31, 0x41, 0x51, 0x61, 0x71, 0x81, // high address
        23,                                             // cycle
        1,                                              // item
    };
    std::ranges::copy(first, expected.begin());
    for (std::size_t row = 1; row < 8; ++row) {
        std::fill_n(expected.begin() + 9 + static_cast<std::ptrdiff_t>(30 * row), 8, 0xFF);
    }
    expected[17 + 30 * 7] = 4;
    expected[18 + 30 * 7] = 3;
    EXPECT_EQ(BuildPerformanceSetup(setup), expected);
}

} // namespace
} // namespace busquill::test
