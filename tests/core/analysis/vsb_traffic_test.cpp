#include "support/board_tables.h"
#include "waves.h"

#include <gtest/gtest.h>

namespace busquill::test {

namespace {

using Lengths = std::map<std::uint64_t, std::uint64_t>;

constexpr std::uint32_t spaceAlternate = 1;
constexpr std::uint32_t spaceIo = 2;
constexpr std::uint32_t spaceSystem = 3;

class VsbStats : public testing::Test {
protected:
    Waves Access(std::string_view pas, std::string_view ds, std::string_view ack) {
        Waves waves(bus);
        waves.Line("PAS", pas).Line("DS", ds).Line("ACK", ack);
        return waves.Set("SPACE", spaceSystem).Set("SIZE", 0);
    }

    BoardTables bus{"VSBKite"};
};

} // namespace

TEST_F(VsbStats, CountTransactionsBySpaceAndDirection) {
    Waves waves = Access("~___~___~___~___~", "~~__~~__~~__~~__~", "~~~_~~~_~~~_~~~_~");
    waves.Line("WR", "~~~~~____~~~~____");
    waves.At(9, "SPACE", spaceIo).At(13, "SPACE", spaceAlternate);
    const std::vector<CommandCount> expected = {
        {"Sys Wr", 1, 1, 4}, {"Sys Rd", 1, 1, 4}, {"I/O Rd", 1, 1, 4}, {"Alt Wr", 1, 1, 4}};
    EXPECT_EQ(waves.Summary().commands, expected);
}

TEST_F(VsbStats, NameASpaceThatIsNotInTheTableByItsCode) {
    const TraceSummary summary = Access("~___~", "~~__~", "~~~_~").Set("SPACE", 0).Summary();
    EXPECT_EQ(Labels(summary), std::vector<std::string>{"SPACE 0 Rd"});
}

TEST_F(VsbStats, CountBytesBySize) {
    constexpr std::array<std::uint64_t, 4> bytes = {4, 1, 2, 3};
    for (std::uint32_t size = 0; size < bytes.size(); ++size) {
        const TraceSummary summary = Access("~___~", "~~__~", "~~~_~").Set("SIZE", size).Summary();
        EXPECT_EQ(summary.bytes, bytes[size]) << size;
    }
}

TEST_F(VsbStats, CountNoMoreBytesThanTheTargetIsWide) {
    struct Case {
        std::uint32_t asack, size, address;
        std::uint64_t bytes;
    };
    for (const auto& [asack, size, address, bytes] : {
             Case{0b00, 0, 0, 4}, Case{0b01, 0, 0, 2}, Case{0b10, 0, 0, 1},
             Case{0b00, 0, 1, 3}, // up to the end of its width
             Case{0b01, 3, 1, 1}, Case{0b01, 1, 0, 1}, Case{0b11, 0, 1, 4}, // it does not tell
         }) {
        const TraceSummary summary = Access("~___~", "~~__~", "~~~_~")
                                         .Set("ASACK", asack)
                                         .Set("SIZE", size)
                                         .Set("AD", address)
                                         .Summary();
        EXPECT_EQ(summary.bytes, bytes) << asack << " " << size << " " << address;
    }
}

TEST_F(VsbStats, CountATransferForEachAnsweredStrobe) {
    const TraceSummary summary = Access("~_______~", "~~__~__~~", "~~~_~~_~~").Summary();
    EXPECT_EQ(summary.burstLengths, (Lengths{{2, 1}}));
    EXPECT_EQ(summary.acknowledgeTime, (AcknowledgeTime{20, 2}));
}

TEST_F(VsbStats, TakeAnAnswerThatIsThereWithTheStrobeForItsOwn) {
    // ACK was high for less than a sample.
    const TraceSummary summary = Access("~_______~", "~~__~__~~", "~~~____~~").Summary();
    EXPECT_EQ(summary.burstLengths, (Lengths{{2, 1}}));
    EXPECT_EQ(summary.masterAborts, 0U);
}

TEST_F(VsbStats, CountBusErrors) {
    const TraceSummary summary =
        Access("~____~", "~~___~", "~~~~~~").Line("ERR", "~~~__~").Summary();
    EXPECT_EQ(summary.busErrors, 1U);
    EXPECT_EQ(summary.retries, 0U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{0, 1}}));
}

TEST_F(VsbStats, IgnoreATransactionThatBeganBefore) {
    const TraceSummary summary = Access("____~~", "~__~~~", "~~_~~~").Summary();
    EXPECT_TRUE(summary.commands.empty());
    EXPECT_EQ(summary.idleSamples, 2U);
}

TEST_F(VsbStats, CountAnOpenTransactionAsFarAsItIsCaptured) {
    const TraceSummary summary = Access("~___", "~~__", "~~~_").Summary();
    const std::vector<CommandCount> expected = {{"Sys Rd", 1, 1, 4}};
    EXPECT_EQ(summary.commands, expected);
    EXPECT_EQ(summary.unfinished, 1U);
}

TEST_F(VsbStats, CallTheBusIdleWithoutAnyStrobe) {
    EXPECT_EQ(Access("~__~~", "~~~_~", "~~~~~").Summary().idleSamples, 2U);
}

} // namespace busquill::test
