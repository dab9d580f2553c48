#include "support/board_tables.h"
#include "tracesetup/trace_setup.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

TEST(TraceSetup, TheDefaultTriggersAtOnceAndStoresEverything) {
    BoardTables board("PCIKite-1");
    const TraceSetup setup(board.tables);
    EXPECT_EQ(ClockText(setup.clock), "Sync");
    EXPECT_EQ(PowerZoomText(setup.powerZoomClock), "3.75 ns");
    EXPECT_EQ(TriggerText(setup.triggerPosition), "50%");
    TraceLevel first;
    first.storeExpr = first.ifExpr = expressionAll;
    first.thenTrigger = true;
    first.stimulus = 1;
    EXPECT_EQ(setup.levels[0], first);
    for (std::size_t i = 1; i < setup.levels.size(); ++i) {
        EXPECT_EQ(setup.levels[i], TraceLevel()) << i;
    }
    EXPECT_EQ(setup.events.mode, ModeEvents);
    EXPECT_EQ(setup.events[0].mask.size(), 1U);
}

TEST(TraceSetup, ResetKeepsTypeAndVersion) {
    BoardTables board("PCIKite-1");
    TraceSetup setup(board.tables);
    setup.fileType = "type";
    setup.version = "2";
    setup.name = "name";
    setup.levels[3].occurs = 9;
    setup.Reset();
    EXPECT_EQ(setup.fileType, "type");
    EXPECT_EQ(setup.version, "2");
    EXPECT_EQ(setup.name, "");
    EXPECT_EQ(setup.levels[3], TraceLevel());
}

TEST(TraceSetup, ACopyTakesTheNameAsDescription) {
    BoardTables board("PCIKite-1");
    TraceSetup source(board.tables);
    source.name = "name";
    source.description = "description";
    source.levels[2].occurs = 7;
    TraceSetup copy(board.tables);
    copy.CopyFrom(source);
    EXPECT_EQ(copy.description, "name");
    EXPECT_EQ(copy.name, "name");
    EXPECT_EQ(copy.levels[2].occurs, 7);
    EXPECT_EQ(copy.events.Size(), source.events.Size());
}

TEST(Texts, OfClocksAndTriggerPositions) {
    EXPECT_EQ(ClockText(0), "Unknown");
    EXPECT_EQ(ClockText(4), "7.5 ns");
    EXPECT_EQ(ClockText(16), "30.72 us");
    EXPECT_EQ(ClockText(17), "");
    EXPECT_EQ(PowerZoomText(1), "1.875 ns");
    EXPECT_EQ(PowerZoomText(8), "240 ns");
    EXPECT_EQ(TriggerText(1), "0%");
    EXPECT_EQ(TriggerText(5), "100%");
    EXPECT_EQ(TriggerText(-1), "");
}

TEST(Expression, TheFirstTokenIsInTheHighestNibble) {
    EXPECT_EQ(ParseExpression("E1.E2+~E3"), (Expression{0, 0, 0, 0, 0, 0xB3, 0x2A, 0x19}));
    EXPECT_EQ(FormatExpression({0, 0, 0, 0, 0, 0xB3, 0x2A, 0x19}), "E1.E2+~E3");
}

TEST(Expression, AllAndNoneAreExact) {
    EXPECT_EQ(ParseExpression("All"), expressionAll);
    EXPECT_EQ(ParseExpression("None"), expressionNone);
    EXPECT_EQ(FormatExpression(expressionAll), "All");
    EXPECT_EQ(FormatExpression(expressionNone), "None");
    EXPECT_EQ(ParseExpression("all"), expressionNone);
}

TEST(Expression, AllWithOneNibbleChangedPrintsItsTokenOnly) {
    Expression bytes = expressionAll;
    bytes[3] = 0xF5;
    EXPECT_EQ(FormatExpression(bytes), "E5");
}

TEST(Expression, UnknownEventsAndCharactersAreDropped) {
    EXPECT_EQ(ParseExpression("E9"), expressionNone);
    EXPECT_EQ(ParseExpression("E0 !? E"), expressionNone);
    EXPECT_EQ(FormatExpression(ParseExpression(" ( E8 x E1 ) ")), "(E8xE1)");
}

TEST(Expression, TheSeventeenthTokenIsDropped) {
    EXPECT_EQ(FormatExpression(ParseExpression("E1+E1+E1+E1+E1+E1+E1+E1+E2")),
              "E1+E1+E1+E1+E1+E1+E1+E1+");
}

TEST(TraceGoto, TextAndBack) {
    EXPECT_EQ(FormatTraceGoto(0, true), "Goto L1, Trigger");
    EXPECT_EQ(FormatTraceGoto(7, false), "Goto L8");
    std::int32_t level = 5;
    bool trigger = false;
    ParseTraceGoto("Goto L3, Trigger", level, trigger);
    EXPECT_EQ(level, 2);
    EXPECT_TRUE(trigger);
}

TEST(TraceGoto, AnInvalidLevelKeepsItsOldValue) {
    std::int32_t level = 4;
    bool trigger = true;
    ParseTraceGoto("Goto L9", level, trigger);
    EXPECT_EQ(level, 4);
    EXPECT_FALSE(trigger);
    ParseTraceGoto("Goto L", level, trigger);
    EXPECT_EQ(level, 4);
}

TEST(StimulusGoto, TextAndBack) {
    EXPECT_EQ(FormatStimulusGoto(15, 1, 1), "STOP");
    EXPECT_EQ(FormatStimulusGoto(2, 5, 1), "Goto SL3, Dur 5");
    EXPECT_EQ(FormatStimulusGoto(0, 1, 9), "Goto SL1, Wait 9");
    std::int32_t level = 0;
    std::int32_t duration = 0;
    std::int32_t wait = 0;
    ParseStimulusGoto("Goto SL15, Dur 12, Wait 3", level, duration, wait);
    EXPECT_EQ(level, 14);
    EXPECT_EQ(duration, 12);
    EXPECT_EQ(wait, 3);
    ParseStimulusGoto("Goto SL16", level, duration, wait);
    EXPECT_EQ(level, 0);
    EXPECT_EQ(duration, 1);
    EXPECT_EQ(wait, 1);
}

TEST(StoredSamples, AreAllIfEachLevelOfTheRunStoresAllAndTheClockToo) {
    BoardTables board("PCIKite-1");
    TraceSetup setup(board.tables); // the other levels store nothing, and are not reached
    EXPECT_TRUE(StoresAll(setup));
    setup.levels[0].elseGoto = 2;
    EXPECT_FALSE(StoresAll(setup));
    setup.levels[2].storeExpr = expressionAll;
    EXPECT_TRUE(StoresAll(setup));
    setup.levels[2].storeExpr = ParseExpression("E1");
    EXPECT_FALSE(StoresAll(setup));
    setup.levels[0].elseGoto = 0;
    setup.clock = clockTransfer;
    EXPECT_FALSE(StoresAll(setup));
}

TEST(StimulusGoto, StopTakesPrecedenceOverAGoto) {
    std::int32_t level = 0;
    std::int32_t duration = 0;
    std::int32_t wait = 0;
    ParseStimulusGoto("Goto SL2 STOP", level, duration, wait);
    EXPECT_EQ(level, stimulusStop);
}

TEST(StimulusRef, TextAndBack) {
    EXPECT_EQ(FormatStimulusRef(0), "None");
    EXPECT_EQ(FormatStimulusRef(15), "S15");
    EXPECT_EQ(ParseStimulusRef("S15"), 15);
    EXPECT_EQ(ParseStimulusRef("S99"), 99);
    EXPECT_EQ(ParseStimulusRef("S3 None"), 0);
    EXPECT_EQ(ParseStimulusRef("3"), 0);
}

} // namespace
} // namespace busquill::test
