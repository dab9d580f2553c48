#include "support/board_tables.h"
#include "waves.h"

#include <gtest/gtest.h>

namespace busquill::test {

namespace {

constexpr std::uint32_t memoryReadDword = 0x6;
constexpr std::uint32_t memoryWrite = 0x7;
constexpr std::uint32_t ioWrite = 0x3;
constexpr std::uint32_t aliasToReadBlock = 0x8;
constexpr std::uint32_t configRead = 0xA;
constexpr std::uint32_t splitCompletion = 0xC;
constexpr std::uint32_t memoryReadBlock = 0xE;

class PciXStats : public testing::Test {
protected:
    /// Sample 1 is the address phase, 2 the attribute phase; C/BE is high after them. Both sides
    /// are ready in samples 4 to 6; the last two follow the end of FRAME.
    Waves ThreeDataPhases(std::uint32_t command) {
        return Begun("~____~~~", command)
            .Line("IRDY", "~~~____~")
            .Line("DEVSEL", "~~~____~")
            .Line("TRDY", "~~~~___~");
    }
    Waves Begun(std::string_view frame, std::uint32_t command) {
        Waves waves(bus);
        waves.Line("FRAME", frame).Set("SBO", 0);
        waves.At(1, "ADR/DATA", 1).At(1, "C/BE", 0xF0 | command).At(1, "AD", 0);
        return waves.At(2, "SBO", 1).At(2, "C/BE", 0xF0);
    }

    BoardTables bus{"PCIKite", BusPciX};
};

} // namespace

TEST_F(PciXStats, GoOnAfterFrame) {
    Waves waves = ThreeDataPhases(memoryWrite);
    waves.At(4, "C/BE", 0xFC).At(5, "C/BE", 0xF0).At(6, "C/BE", 0xF7);
    const TraceSummary summary = waves.Summary();
    const std::vector<CommandCount> expected = {{"Mem Wr", 1, 3, 2 + 4 + 1}};
    EXPECT_EQ(summary.commands, expected);
    EXPECT_EQ(summary.unfinished, 0U);
}

TEST_F(PciXStats, CountNoWaitStateInTheAttributePhase) {
    EXPECT_EQ(ThreeDataPhases(memoryWrite).Summary().waitStates, (WaitStates{0, 1}));
}

TEST_F(PciXStats, TakeTheBytesOfABlockFromItsWidthUpToTheByteCount) {
    struct Case {
        std::uint32_t low, high;
        std::uint64_t bytes;
    };
    for (const auto& [low, high, bytes] : {
             Case{10, 0, 10}, Case{12, 0, 12}, Case{1, 1, 12}, // 257 were announced
             Case{0, 0, 12},                                   // 4096
         }) {
        const TraceSummary summary =
            ThreeDataPhases(memoryReadBlock).At(2, "AD", low).At(2, "C/BE", 0xF0 | high).Summary();
        EXPECT_EQ(Command(summary, "Mem Rd Blk").bytes, bytes) << low << " " << high;
    }
}

TEST_F(PciXStats, TakeTheBytesOfAWideBlock) {
    const TraceSummary summary = ThreeDataPhases(memoryReadBlock)
                                     .Line("REQ64", "~_______")
                                     .Line("ACK64", "~~~____~")
                                     .At(2, "AD", 100)
                                     .Summary();
    EXPECT_EQ(summary.bytes, 24U);
}

TEST_F(PciXStats, BeginABlockAtTheByteOfItsAddress) {
    const auto bytes = [&](std::uint32_t count) {
        return ThreeDataPhases(memoryReadBlock)
            .At(1, "AD", 0x1003)
            .At(2, "AD", count)
            .Summary()
            .bytes;
    };
    EXPECT_EQ(bytes(100), 1U + 4 + 4);
    EXPECT_EQ(bytes(7), 7U);
    EXPECT_EQ(bytes(1), 1U);
}

TEST_F(PciXStats, TakeTheWholeWidthOfABlockWithoutAttributes) {
    EXPECT_EQ(ThreeDataPhases(memoryReadBlock).At(2, "SBO", 0).Summary().bytes, 12U);
}

TEST_F(PciXStats, TakeTheLanesOfOneWordFromTheAttributes) {
    const TraceSummary summary = Begun("~__~~~", configRead)
                                     .Line("IRDY", "~~~__~")
                                     .Line("DEVSEL", "~~~__~")
                                     .Line("TRDY", "~~~~_~")
                                     .At(2, "C/BE", 0xF8)
                                     .Summary();
    const std::vector<CommandCount> expected = {{"Cfg Rd", 1, 1, 3}};
    EXPECT_EQ(summary.commands, expected);
}

TEST_F(PciXStats, TakeTheLanesOfOneWordFromItsDataWithoutAttributes) {
    const TraceSummary summary = Begun("~__~~~", configRead)
                                     .Line("IRDY", "~~~__~")
                                     .Line("DEVSEL", "~~~__~")
                                     .Line("TRDY", "~~~~_~")
                                     .At(2, "SBO", 0)
                                     .At(4, "C/BE", 0xFC)
                                     .Summary();
    EXPECT_EQ(summary.bytes, 2U);
}

TEST_F(PciXStats, TakeASampleWithBothMarksAsAnAttributePhase) {
    const TraceSummary summary =
        ThreeDataPhases(memoryReadBlock).At(2, "ADR/DATA", 1).At(2, "AD", 8).Summary();
    const std::vector<CommandCount> expected = {{"Mem Rd Blk", 1, 3, 8}};
    EXPECT_EQ(summary.commands, expected);
}

TEST_F(PciXStats, CountCodesOfOneNameAsOneCommand) {
    Waves waves(bus);
    waves.Line("FRAME", "~_~_~_~").Set("SBO", 0);
    for (const auto& [sample, command] :
         {std::pair{1U, memoryReadBlock}, {3U, aliasToReadBlock}, {5U, splitCompletion}}) {
        waves.At(sample, "ADR/DATA", 1).At(sample, "C/BE", 0xF0 | command);
    }
    const std::vector<CommandCount> expected = {{"Mem Rd Blk", 2, 0, 0}, {"Split Cmpl", 1, 0, 0}};
    EXPECT_EQ(waves.Summary().commands, expected);
}

TEST_F(PciXStats, CountNoDataInTheSplitResponseToARead) {
    const auto summary = [&](std::uint32_t command) {
        return Begun("~__~~~~", command)
            .Line("IRDY", "~~~___~")
            .Line("DEVSEL", "~~~_~~~")
            .Line("TRDY", "~~~~_~~")
            .Summary();
    };
    EXPECT_EQ(summary(memoryReadDword).splitResponses, 1U);
    EXPECT_EQ(Command(summary(memoryReadDword), "Mem Rd DW").dataPhases, 0U);
    EXPECT_EQ(summary(memoryReadDword).masterAborts, 0U);
    EXPECT_EQ(summary(ioWrite).splitResponses, 1U);
    EXPECT_EQ(Command(summary(ioWrite), "I/O Wr").dataPhases, 1U);
    // The target ends in sample 5.
    EXPECT_EQ(summary(ioWrite).waitStates, (WaitStates{0, 1}));
}

TEST_F(PciXStats, DistinguishADisconnectFromATargetAbortByTrdy) {
    const auto summary = [&](const char* trdy) {
        return Begun("~___~~~", memoryWrite)
            .Line("IRDY", "~~~___~")
            .Line("DEVSEL", "~~~_~~~")
            .Line("BSTOP", "~~~~_~~")
            .Line("TRDY", trdy)
            .Summary();
    };
    EXPECT_EQ(summary("~~~~_~~").disconnects, 1U);
    EXPECT_EQ(summary("~~~~_~~").targetAborts, 0U);
    EXPECT_EQ(Command(summary("~~~~_~~"), "Mem Wr").dataPhases, 1U);
    EXPECT_EQ(summary("~~~~~~~").disconnects, 0U);
    EXPECT_EQ(summary("~~~~~~~").targetAborts, 1U);
}

TEST_F(PciXStats, CountARetryThatTheTargetEndsAtOnce) {
    const TraceSummary summary = Begun("~____~~~", memoryWrite)
                                     .Line("IRDY", "~~~____~")
                                     .Line("DEVSEL", "~~~__~~~")
                                     .Line("BSTOP", "~~~~_~~~")
                                     .Summary();
    EXPECT_EQ(summary.retries, 1U);
    EXPECT_EQ(summary.waitStates, (WaitStates{0, 1}));
}

} // namespace busquill::test
