#include "support/board_tables.h"
#include "tracesetup/setup_encoding.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A list with one signal at a data index.
CSignalList ListOf(std::int32_t dataIndex, std::uint32_t data, std::uint32_t mask, bool masked) {
    CSignalList list(NoTables());
    list.mode = ModeEvents;
    CSignal* signal = list.InsertBlank(nullptr);
    signal->dataIndex = dataIndex;
    signal->data = {data};
    signal->numSamples = 32;
    if (masked) {
        signal->mask = {mask};
    }
    return list;
}

TEST(EventRows, TheHighestBitIsInTheLastPair) {
    const Bytes row = BuildEventRows(ListOf(119, 1, 1, true), 1);
    Bytes expected(30);
    expected[28] = 0x80;
    expected[29] = 0x80;
    EXPECT_EQ(row, expected);
}

TEST(EventRows, BitsAfterTheRowAreNotSent) {
    // Two rows, so that a write past the end of the first would be visible.
    EXPECT_EQ(BuildEventRows(ListOf(120, 1, 1, true), 2), Bytes(60));
    EXPECT_EQ(BuildEventRows(ListOf(143, 1, 1, true), 2), Bytes(60));
    EXPECT_EQ(BuildEventRows(ListOf(-1, 1, 1, true), 1), Bytes(30));
}

TEST(EventRows, ASignalWithoutAMaskSetsNoCompareBits) {
    Bytes expected(30);
    expected[2] = 0x04;
    EXPECT_EQ(BuildEventRows(ListOf(10, 1, 0, false), 1), expected);
}

TEST(EventRows, EachColumnHasItsRow) {
    const Bytes rows = BuildEventRows(ListOf(0, 0b1010, 0b0110, true), 4);
    ASSERT_EQ(rows.size(), 120U);
    const std::pair<int, int> pairs[] = {{0, 0}, {1, 1}, {0, 1}, {1, 0}};
    for (std::size_t c = 0; c < 4; ++c) {
        EXPECT_EQ(rows[c * 30], pairs[c].first) << c;
        EXPECT_EQ(rows[c * 30 + 1], pairs[c].second) << c;
    }
}

TEST(TraceControl, RowsOfTwentyBytes) {
    BoardTables board("PCIKite-1");
    TraceSetup setup(board.tables);
    setup.levels[1].ifExpr = {1, 2, 3, 4, 5, 6, 7, 8};
    setup.levels[1].storeExpr = {11, 12, 13, 14, 15, 16, 17, 18};
    setup.levels[1].occurs = 0x1234;
    setup.levels[1].thenGoto = 5;
    setup.levels[1].elseGoto = 2;
    setup.levels[1].elseTrigger = true;
    const Bytes bytes = BuildTraceControl(setup);
    ASSERT_EQ(bytes.size(), 160U);
    const Bytes first = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, // if All
                         0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, // store All
                         1,    0,                                        // once
                         0x08, 0x00};                                    // trigger, L1; else L1
    const Bytes second = {1,  2,  3,  4,  5,  6,  7,    8,    11, 12,
                          13, 14, 15, 16, 17, 18, 0x34, 0x12, 5,  0x0A};
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 20), first);
    EXPECT_EQ(Bytes(bytes.begin() + 20, bytes.begin() + 40), second);
}

TEST(TraceControl, CountsAndLevelsAreCutToTheirFields) {
    BoardTables board("PCIKite-1");
    TraceSetup setup(board.tables);
    setup.levels[0].occurs = 65536;
    setup.levels[0].thenGoto = 9;
    const Bytes bytes = BuildTraceControl(setup);
    EXPECT_EQ(bytes[16], 0);
    EXPECT_EQ(bytes[17], 0);
    EXPECT_EQ(bytes[18], 0x09);
}

TraceSetup SetupWith(SignalTables& tables, std::int32_t clock, std::int32_t triggerPosition,
                     std::int32_t zoomClock) {
    TraceSetup setup(tables);
    setup.clock = clock;
    setup.triggerPosition = triggerPosition;
    setup.powerZoomClock = zoomClock;
    return setup;
}

TEST(TraceParams, TheClockSwapsTheFirstTwoStepsOfItsScale) {
    BoardTables board("PCIKite-1");
    const std::array<std::uint8_t, 19> codes{0, 2,  0,  1,  3,  4,  5,  6, 7, 8,
                                             9, 10, 11, 12, 13, 14, 15, 0, 0};
    for (std::size_t value = 0; value < codes.size(); ++value) {
        EXPECT_EQ(BuildTraceParams(SetupWith(board.tables, static_cast<std::int32_t>(value), 0, 0)),
                  (Bytes{codes[value], 0, 0}))
            << value;
    }
}

TEST(TraceParams, TheTriggerPositionHasItsOwnScale) {
    BoardTables board("PCIKite-1");
    const std::array<std::uint8_t, 8> codes{0, 3, 4, 0, 1, 2, 0, 0};
    for (std::size_t value = 0; value < codes.size(); ++value) {
        EXPECT_EQ(BuildTraceParams(SetupWith(board.tables, 0, static_cast<std::int32_t>(value), 0)),
                  (Bytes{0, codes[value], 0}))
            << value;
    }
}

TEST(TraceParams, TheZoomClockCountsFromOneToEight) {
    BoardTables board("PCIKite-1");
    const std::array<std::uint8_t, 11> codes{0, 0, 1, 2, 3, 4, 5, 6, 7, 0, 0};
    for (std::size_t value = 0; value < codes.size(); ++value) {
        EXPECT_EQ(BuildTraceParams(SetupWith(board.tables, 0, 0, static_cast<std::int32_t>(value))),
                  (Bytes{0, 0, codes[value]}))
            << value;
    }
}

TEST(TraceParams, NegativeIndicesAreCodeZero) {
    BoardTables board("PCIKite-1");
    EXPECT_EQ(BuildTraceParams(SetupWith(board.tables, -1, -1, -1)), (Bytes{0, 0, 0}));
}

TEST(SearchControl, IsTwiceTheSideAndTheLowBytesOfTheDistance) {
    EXPECT_EQ(BuildSearchControl(0x12345678, true), (Bytes{2, 0x78, 0x56, 0x34}));
    EXPECT_EQ(BuildSearchControl(0x12345678, false), (Bytes{0, 0x78, 0x56, 0x34}));
}

} // namespace
} // namespace busquill::test
