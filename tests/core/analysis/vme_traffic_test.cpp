#include "support/board_tables.h"
#include "waves.h"

#include <gtest/gtest.h>

namespace busquill::test {

namespace {

using Lengths = std::map<std::uint64_t, std::uint64_t>;

constexpr std::uint32_t amA64Block64 = 0x00;
constexpr std::uint32_t amA64 = 0x01;
constexpr std::uint32_t amA32Lock = 0x05;
constexpr std::uint32_t amA32 = 0x09;
constexpr std::uint32_t amA32Block64 = 0x08;
constexpr std::uint32_t amA24Block = 0x3B;
constexpr std::uint32_t amTwoEdge = 0x20;
constexpr std::uint32_t amReserved = 0x2E;

/// On the tiers of the family, which record the same lines at different bits.
class VmeStats : public testing::TestWithParam<const char*> {
protected:
    Waves Access(std::string_view as, std::string_view ds, std::string_view dtack,
                 std::uint32_t modifier = amA32) {
        Waves waves(bus);
        waves.Line("AS", as).Line("DS", ds).Line("DS", ds, 1).Line("DTACK", dtack);
        return waves.Set("AM", modifier).Set("LWORD", 0).Set("AD", 0);
    }
    /// Two strobes, both answered.
    Waves TwoStrobes(std::uint32_t modifier) {
        return Access("~_______~", "~~__~__~~", "~~~_~~_~~", modifier);
    }

    BoardTables bus{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Tiers, VmeStats, testing::Values("VMEKite", "VMEWren", "VMELark"));

} // namespace

TEST_P(VmeStats, CountTransactionsByModifierAndDirection) {
    Waves waves = Access("~___~___~___~", "~~__~~__~~__~", "~~~_~~~_~~~_~");
    waves.Line("WRITE", "~~~~~____~~~~");
    for (const std::size_t sample : {9U, 10U, 11U}) {
        waves.At(sample, "AM", amA24Block);
    }
    const TraceSummary summary = waves.Summary();
    const std::vector<CommandCount> expected = {{"A32 NON PRVL DATA Rd", 1, 1, 4},
                                                {"A32 NON PRVL DATA Wr", 1, 1, 4},
                                                {"A24 NON PRVL BLT Rd", 1, 1, 4}};
    EXPECT_EQ(summary.commands, expected);
    EXPECT_EQ(summary.bytes, 12U);
    EXPECT_EQ(summary.unfinished, 0U);
}

TEST_P(VmeStats, TakeTheDirectionFromTheFirstDataStrobe) {
    const TraceSummary summary =
        Access("~____~", "~~~__~", "~~~~_~").Line("WRITE", "~~~__~").Summary();
    EXPECT_EQ(Labels(summary), std::vector<std::string>{"A32 NON PRVL DATA Wr"});
}

TEST_P(VmeStats, CallAReadWithAWriteAfterItAReadModifyWrite) {
    const TraceSummary summary = TwoStrobes(amA32).Line("WRITE", "~~~~____~").Summary();
    const std::vector<CommandCount> expected = {{"A32 NON PRVL DATA RMW", 1, 2, 8}};
    EXPECT_EQ(summary.commands, expected);
}

TEST_P(VmeStats, KeepTheDirectionOfTheFirstDataStrobe) {
    const TraceSummary summary = TwoStrobes(amA32).Line("WRITE", "____~~~~~").Summary();
    EXPECT_EQ(Labels(summary), std::vector<std::string>{"A32 NON PRVL DATA Wr"});
}

TEST_P(VmeStats, TakeTheDirectionAfterTheStrobeOfAWideAddress) {
    const TraceSummary summary = TwoStrobes(amA64).Line("WRITE", "~~~~____~").Summary();
    EXPECT_EQ(Labels(summary), std::vector<std::string>{"A64 STA Wr"});
}

TEST_P(VmeStats, NameAModifierThatIsNotInTheTableByItsCode) {
    const TraceSummary summary = TwoStrobes(amReserved).Summary();
    EXPECT_EQ(Labels(summary), std::vector<std::string>{"AM 2E Rd"});
}

TEST_P(VmeStats, CountATransferForEachAnsweredStrobe) {
    const TraceSummary summary =
        Access("~___________~", "~~__~~__~~__~", "~~~_~~~_~~~_~", amA24Block).Summary();
    EXPECT_EQ(Command(summary, "A24 NON PRVL BLT Rd").dataPhases, 3U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{3, 1}}));
}

TEST_P(VmeStats, CountAnAcknowledgeOnceHoweverLongItStays) {
    EXPECT_EQ(Access("~______~", "~~_____~", "~~~____~").Summary().burstLengths, (Lengths{{1, 1}}));
    // Twice within one strobe.
    EXPECT_EQ(Access("~_______~", "~~______~", "~~~_~__~~").Summary().burstLengths,
              (Lengths{{1, 1}}));
}

TEST_P(VmeStats, TakeAnAnswerThatIsThereWithTheStrobeForItsOwn) {
    // DTACK was high for less than a sample: otherwise the strobe could not have begun.
    const TraceSummary block =
        Access("~__________~", "~~__~__~__~~", "~~~_______~~", amA24Block).Summary();
    EXPECT_EQ(block.burstLengths, (Lengths{{3, 1}}));
    EXPECT_EQ(block.masterAborts, 0U);
    const TraceSummary single = Access("~___~__~", "~~__~__~", "~~~____~").Summary();
    EXPECT_EQ(single.burstLengths, (Lengths{{1, 2}}));
    EXPECT_EQ(single.masterAborts, 0U);
    const TraceSummary failed =
        Access("~___~__~", "~~__~__~", "~~~~~~~~").Line("BERR", "~~~____~").Summary();
    EXPECT_EQ(failed.busErrors, 2U);
}

TEST_P(VmeStats, IgnoreAnAcknowledgeWithoutAStrobe) {
    EXPECT_EQ(Access("~____~", "~~~~~~", "~~_~~~").Summary().burstLengths, (Lengths{{0, 1}}));
}

TEST_P(VmeStats, CountBytesByStrobesAndLongWord) {
    struct Case {
        bool ds0, ds1, longWord, a1;
        std::uint64_t bytes;
    };
    for (const auto& [ds0, ds1, longWord, a1, bytes] : {
             Case{true, true, true, false, 4},
             Case{true, true, true, true, 2}, // the two in the middle
             Case{true, false, true, false, 3},
             Case{false, true, true, false, 3},
             Case{true, true, false, true, 2},
             Case{true, false, false, false, 1},
             Case{false, true, false, true, 1},
         }) {
        const TraceSummary summary = Access("~___~", "~~~~~", "~~~_~")
                                         .Line("DS", ds0 ? "~~__~" : "~~~~~")
                                         .Line("DS", ds1 ? "~~__~" : "~~~~~", 1)
                                         .Set("LWORD", longWord ? 0 : 1)
                                         .Set("AD", a1 ? 2 : 0)
                                         .Summary();
        EXPECT_EQ(summary.bytes, bytes) << ds0 << ds1 << longWord << a1;
    }
}

TEST_P(VmeStats, CountStrobesThatAreSkewedAsOneTransfer) {
    const TraceSummary summary =
        Access("~____~", "~~___~", "~~~~_~").Line("DS", "~~~__~", 1).Summary();
    const std::vector<CommandCount> expected = {{"A32 NON PRVL DATA Rd", 1, 1, 4}};
    EXPECT_EQ(summary.commands, expected);
}

TEST_P(VmeStats, TakeTheFirstStrobeOfAWideBlockAsItsAddress) {
    for (const std::uint32_t modifier : {amA32Block64, amA64Block64, 0x0CU, 0x38U, 0x3CU}) {
        // LWORD is a data line in such a block.
        const TraceSummary summary = TwoStrobes(modifier).Set("LWORD", 1).Summary();
        EXPECT_EQ(summary.burstLengths, (Lengths{{1, 1}})) << modifier;
        EXPECT_EQ(summary.bytes, 8U) << modifier;
        EXPECT_EQ(summary.acknowledgeTime, (AcknowledgeTime{10, 1})) << modifier;
    }
}

TEST_P(VmeStats, TakeTheFirstStrobeOfAWideAddressAsItsUpperPart) {
    for (const std::uint32_t modifier : {amA64, 0x03U, 0x34U, 0x37U}) {
        const TraceSummary summary = TwoStrobes(modifier).Summary();
        EXPECT_EQ(summary.burstLengths, (Lengths{{1, 1}})) << modifier;
        EXPECT_EQ(summary.bytes, 4U) << modifier;
    }
}

TEST_P(VmeStats, CountNoDataInLocksAndTwoEdgeTransfers) {
    for (const std::uint32_t modifier : {amA32Lock, amTwoEdge, 0x04U, 0x21U, 0x2CU, 0x32U, 0x35U}) {
        const TraceSummary summary = TwoStrobes(modifier).Summary();
        EXPECT_EQ(summary.burstLengths, (Lengths{{0, 1}})) << modifier;
        EXPECT_EQ(summary.bytes, 0U) << modifier;
    }
}

TEST_P(VmeStats, CountBusErrors) {
    const TraceSummary summary =
        Access("~______~", "~~_____~", "~~~~~~~~").Line("BERR", "~~~~___~").Summary();
    EXPECT_EQ(summary.busErrors, 1U);
    EXPECT_EQ(summary.retries, 0U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{0, 1}}));
    EXPECT_EQ(summary.acknowledgeTime, AcknowledgeTime{});
}

TEST_P(VmeStats, IgnoreASecondAnswerToAStrobe) {
    const TraceSummary summary =
        Access("~______~", "~~_____~", "~~~~~_~~").Line("BERR", "~~~_~~_~").Summary();
    EXPECT_EQ(summary.busErrors, 1U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{0, 1}}));
}

TEST_P(VmeStats, CallAnErrorWithRetryARetry) {
    const TraceSummary summary = Access("~______~", "~~_____~", "~~~~~~~~")
                                     .Line("BERR", "~~~~___~")
                                     .Line("RETRY", "~~~____~")
                                     .Summary();
    EXPECT_EQ(summary.busErrors, 0U);
    EXPECT_EQ(summary.retries, 1U);
}

TEST_P(VmeStats, CallARetryWithoutAnErrorARetry) {
    const TraceSummary summary =
        Access("~_______~", "~~____~~~", "~~~~~~~~~").Line("RETRY", "~~~~__~~~").Summary();
    EXPECT_EQ(summary.retries, 1U);
    EXPECT_EQ(summary.masterAborts, 0U);
}

TEST_P(VmeStats, TakeAnAnswerInTheSampleAfterTheAddressStrobe) {
    const TraceSummary summary =
        Access("~____~~_____~", "~~____~~_____", "~~~~~_~~~~~~_").Summary();
    EXPECT_EQ(summary.masterAborts, 0U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{1, 2}}));
    const TraceSummary failed =
        Access("~____~", "~~____", "~~~~~~").Line("BERR", "~~~~~_").Summary();
    EXPECT_EQ(failed.busErrors, 1U);
    EXPECT_EQ(failed.masterAborts, 0U);
    const TraceSummary over = Access("~____~", "~~___~", "~~~~~_").Summary();
    EXPECT_EQ(over.masterAborts, 0U) << "it was answered";
    EXPECT_EQ(over.burstLengths, (Lengths{{0, 1}})) << "the lanes of its data are not known";
}

TEST_P(VmeStats, AddUpTheTimeFromStrobeToAcknowledge) {
    // 30 ns, 0 ns, and a strobe without an answer.
    const TraceSummary summary = Access("~__________~", "~~____~_~__~", "~~~~~_~_~~~~").Summary();
    EXPECT_EQ(summary.acknowledgeTime, (AcknowledgeTime{30, 2}));
}

TEST_P(VmeStats, IgnoreATransactionThatBeganBefore) {
    const TraceSummary summary = Access("______~~", "~~__~~~~", "~~~_~~~~").Summary();
    EXPECT_TRUE(summary.commands.empty());
    EXPECT_TRUE(summary.burstLengths.empty());
    EXPECT_EQ(summary.acknowledgeTime, AcknowledgeTime{});
    EXPECT_EQ(summary.time, 70);
    EXPECT_EQ(summary.idleSamples, 2U);
}

TEST_P(VmeStats, CountAnOpenTransactionAsFarAsItIsCaptured) {
    const TraceSummary summary = Access("~_____", "~~__~_", "~~~_~~").Summary();
    const std::vector<CommandCount> expected = {{"A32 NON PRVL DATA Rd", 1, 1, 4}};
    EXPECT_EQ(summary.commands, expected);
    EXPECT_EQ(summary.unfinished, 1U);
}

TEST_P(VmeStats, AttributeAStrobeToTheTransactionInWhichItBegan) {
    // The next address arrives while the data strobe is still asserted; DTACK falls once more.
    const TraceSummary summary = Access("~___~______~", "~~_____~~__~", "~~~_~_~~~~_~").Summary();
    EXPECT_EQ(summary.burstLengths, (Lengths{{1, 2}}));
    EXPECT_EQ(summary.acknowledgeTime, (AcknowledgeTime{20, 2}));
}

TEST_P(VmeStats, IgnoreAnAnswerThatArrivesTooLate) {
    const TraceSummary summary = Access("~___~_____~", "~~________~", "~~~~~~~__~~").Summary();
    EXPECT_EQ(summary.burstLengths, (Lengths{{0, 2}}));
}

TEST_P(VmeStats, TakeTransactionsForOneIfNoSampleBetweenThemIsStored) {
    const TraceSummary summary = Access("~______~", "~~__~__~", "~~~_~~_~").Summary();
    const std::vector<CommandCount> expected = {{"A32 NON PRVL DATA Rd", 1, 2, 8}};
    EXPECT_EQ(summary.commands, expected);
    // Only the samples with an acknowledge: there is one strobe to be seen.
    EXPECT_EQ(Access("~___~", "~___~", "~___~").Summary().burstLengths, (Lengths{{1, 1}}));
}

TEST_P(VmeStats, CallTheBusIdleWithoutAnyStrobe) {
    const TraceSummary summary = Access("~__~~~~", "~~~_~~~", "~~~~~~~").Summary();
    EXPECT_EQ(summary.idleSamples, 4U); // 0, 4, 5 and 6
    EXPECT_EQ(summary.idleTime, 30);    // up to 1, 5 and 6
    Waves oneStrobe = Access("~~~", "~_~", "~~~");
    EXPECT_EQ(oneStrobe.Line("DS", "~~~", 1).Summary().idleSamples, 2U);
}

TEST(VmeInterrupts, HaveTheNamesOfTheTable) {
    for (const auto& [model, label] :
         {std::pair{"VMEKite", "Interrupt"}, {"VMEWren", "Interrupt"}, {"VMELark", "IACK"}}) {
        const BoardTables bus(model);
        Waves waves(bus);
        waves.Line("AS", "~___~___~").Line("DS", "~~__~~__~").Line("DTACK", "~~~_~~~_~");
        waves.Line("IACK", "~___~~~~~").Set("AM", amA64Block64);
        const TraceSummary summary = waves.Summary();
        // Listed after the modifiers; the modifier of an acknowledge carries no information.
        EXPECT_EQ(Labels(summary), (std::vector<std::string>{"A64 MBLT Rd", label}));
        EXPECT_EQ(Command(summary, label).dataPhases, 1U) << model;
        EXPECT_EQ(Command(summary, label).bytes, 1U) << model;
    }
}

} // namespace busquill::test
