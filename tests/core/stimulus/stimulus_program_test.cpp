#include "stimulus/stimulus_program.h"
#include "support/board_tables.h"
#include "support/signal_definitions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::Not;

using Bytes = std::vector<std::uint8_t>;

class StimulusProgramTest : public testing::Test {
protected:
    TraceLevel& Level(int number) {
        return program.control.levels[static_cast<std::size_t>(number) - 1];
    }
    /// The bytes of a level's slot.
    Bytes Slot(int number) const {
        const Bytes bytes = BuildStimulusControl(program);
        const auto at = bytes.begin() + 5 * (number - 1);
        return {at, at + 5};
    }
    /// A list with nothing but one bit, whose first columns are set as in `data` and `mask`.
    static void SetOnly(CSignalList& list, std::int32_t dataIndex, std::uint32_t data,
                        std::uint32_t mask) {
        list.RemoveAllSignals();
        CSignal* signal = list.InsertBlank(nullptr);
        signal->dataIndex = dataIndex;
        SetSamples(*signal, {data}, 32);
        signal->mask = {mask};
    }

    BoardTables board{"PCIKite-1"};
    StimulusProgram program{board.tables};
};

TEST_F(StimulusProgramTest, BeginsWithOnePatternInOneLevel) {
    EXPECT_EQ(program.eventCount, 8);
    EXPECT_EQ(program.patterns.mode, ModeStimulus);
    EXPECT_EQ(program.control.events.mode, ModeEvents);
    EXPECT_FALSE(program.patterns.Empty());
    Bytes expected = {
        0x1F, // S1, All
        0x00, // else SL1, then SL1
        1,    // once
        1,    // duration
        1,    // wait
    };
    for (int level = 2; level <= 15; ++level) {
        expected.insert(expected.end(), {0x00, 0x00, 1, 1, 1});
    }
    expected.insert(expected.end(), {0, 0, 0, 0, 0});
    EXPECT_EQ(BuildStimulusControl(program), expected);
}

TEST_F(StimulusProgramTest, ASlotHoldsOutputConditionBranchesCountDurationAndWait) {
    Level(15) = {.ifExpr = ParseExpression("E3"),
                 .occurs = 100,
                 .thenGoto = 13,
                 .thenDuration = 200,
                 .thenWait = 255,
                 .elseGoto = 4,
                 .stimulus = 15};
    EXPECT_EQ(Slot(15), (Bytes{0xF3, 0x4D, 100, 200, 255}));
}

TEST_F(StimulusProgramTest, StopIsLevelFifteen) {
    Level(1).thenGoto = stimulusStop;
    EXPECT_EQ(Slot(1), (Bytes{0x1F, 0x0F, 1, 1, 1}));
    Level(1).elseGoto = stimulusStop;
    EXPECT_EQ(Slot(1), (Bytes{0x1F, 0xFF, 1, 1, 1}));
}

TEST_F(StimulusProgramTest, TheLastSlotStaysEmpty) {
    program.control.levels[15] = program.control.levels[0];
    const Bytes bytes = BuildStimulusControl(program);
    ASSERT_EQ(bytes.size(), 80U);
    EXPECT_THAT(Bytes(bytes.begin() + 75, bytes.end()), Each(0));
}

TEST_F(StimulusProgramTest, NumbersAreCutToTheirBytes) {
    Level(2).occurs = 256;
    Level(2).thenDuration = 300;
    Level(2).thenWait = -1;
    Level(2).stimulus = 17;
    EXPECT_EQ(Slot(2), (Bytes{0x10, 0x00, 0x00, 0x2C, 0xFF}));
}

TEST_F(StimulusProgramTest, DurationAndWaitOfTheOtherBranchAreNotSent) {
    const Bytes before = BuildStimulusControl(program);
    Level(1).elseDuration = 5;
    Level(1).elseWait = 7;
    EXPECT_EQ(BuildStimulusControl(program), before);
}

TEST_F(StimulusProgramTest, OnlyTheFirstTokenOfAConditionIsSent) {
    Level(3).ifExpr = ParseExpression("E2+E7");
    EXPECT_EQ(Slot(3)[0], 0x02);
    Level(3).ifExpr = ParseExpression("~E7"); // not an event
    EXPECT_EQ(Slot(3)[0], 0x0B);
    Level(3).ifExpr = {0, 0, 0, 0, 0, 0, 0x77, 0x0F}; // empty first token
    EXPECT_EQ(Slot(3)[0], 0x00);
}

TEST_F(StimulusProgramTest, EachPatternAndEventHasARowOfThirtyBytes) {
    SetOnly(program.patterns, 10, 0b101'0000'0000'0001, 0b111'1111'1111'1110);
    const Bytes patterns = BuildStimulusPatterns(program);
    ASSERT_EQ(patterns.size(), 450U);
    for (std::size_t row = 0; row < 15; ++row) {
        const int value = row == 0 || row == 12 || row == 14 ? 0x04 : 0x00; // bit 2 of byte 1
        const int compare = row == 0 ? 0x00 : 0x04;
        EXPECT_EQ(patterns[30 * row + 2], value) << row;
        EXPECT_EQ(patterns[30 * row + 3], compare) << row;
    }
    SetOnly(program.control.events, 0, 0b1000'0001, 0xFF);
    const Bytes events = BuildStimulusEvents(program);
    ASSERT_EQ(events.size(), 240U);
    EXPECT_EQ(events[0], 1);
    EXPECT_EQ(events[30], 0);
    EXPECT_EQ(events[210], 1);
}

TEST_F(StimulusProgramTest, SignalsWithoutABitWriteNothing) {
    SetOnly(program.patterns, -1, 0xFFFF, 0xFFFF);
    EXPECT_THAT(BuildStimulusPatterns(program), Each(0));
}

TEST_F(StimulusProgramTest, TheSmallestBoardHasFourEvents) {
    BoardTables lark("VME Lark", BusVme);
    StimulusProgram small(lark.tables);
    EXPECT_EQ(small.eventCount, 4);
    SetOnly(small.control.events, 0, 0xFF, 0xFF);
    EXPECT_EQ(BuildStimulusEvents(small).size(), 120U);
    EXPECT_EQ(BuildStimulusPatterns(small).size(), 450U);
}

TEST_F(StimulusProgramTest, NoPatternDrivesAnAnomaly) {
    EXPECT_THAT(RowNames(program.control.events), Contains("ANOMALY"));
    EXPECT_THAT(RowNames(program.patterns), Not(Contains("ANOMALY")));
}

TEST_F(StimulusProgramTest, ClearLeavesDefaultLevelsWithoutSignals) {
    Level(1).occurs = 9;
    program.Clear();
    EXPECT_EQ(Level(1).occurs, 1);
    EXPECT_TRUE(program.patterns.Empty());
    EXPECT_TRUE(program.control.events.Empty());
    program.Reset();
    EXPECT_FALSE(program.patterns.Empty());
    EXPECT_FALSE(program.control.events.Empty());
}

} // namespace
} // namespace busquill::test
