#include "capture/search_condition.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Conditions : public testing::Test {
protected:
    /// The indexes of the records that match all patterns.
    std::vector<int> Matches(const std::vector<SampleRecord>& records,
                             std::initializer_list<const char*> patterns) {
        SearchCondition condition;
        for (const char* pattern : patterns) {
            EXPECT_EQ(condition.Add(pattern, board.tables, {}), "") << pattern;
        }
        std::vector<int> places;
        const std::uint32_t matches = condition.MatchesOf(records);
        for (int i = 0; i < static_cast<int>(records.size()); ++i) {
            if ((matches >> i & 1) != 0) {
                places.push_back(i);
            }
        }
        return places;
    }
    std::string Wrong(const char* pattern) {
        SearchCondition condition;
        std::string wrong = condition.Add(pattern, board.tables, {});
        EXPECT_TRUE(condition.Empty());
        return wrong;
    }
    static SampleRecord With(std::initializer_list<int> bits) {
        SampleRecord record;
        for (const int bit : bits) {
            record.bytes[static_cast<std::size_t>(bit) / 8] |=
                static_cast<std::uint8_t>(1U << (bit % 8));
        }
        return record;
    }

    BoardTables board{"PCIKite-1"};
};

TEST_F(Conditions, ValuesAreHexadecimalAndAnXIsAnyDigit) {
    const auto records = CaptureBuilder()
                             .Write(0xFEBF0010, 0x12345678)
                             .Write(0xFEBF00A0, 0x12345678)
                             .Write(0x0EBF0010, 1)
                             .Records();
    EXPECT_THAT(Matches(records, {"AD[31:0]=FEBF0010"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"ad[31:0]=febf00x0"}), ElementsAre(0, 2));
    EXPECT_THAT(Matches(records, {"AD[31:0]=xEBF0010"}), ElementsAre(0, 4));
    EXPECT_THAT(Matches(records, {" AD[31:0] = 12345678 "}), ElementsAre(1, 3));
    EXPECT_THAT(Matches(records, {"AD[31:0]=1234 5678"}), ElementsAre(1, 3));
    EXPECT_THAT(Matches(records, {"FRAME=0"}), ElementsAre(0, 2, 4));
    EXPECT_THAT(Matches(records, {"FRAME=x"}), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST_F(Conditions, MissingDigitsAreZeros) {
    const auto records = CaptureBuilder().Write(0x10, 0xF0000010).Records();
    EXPECT_THAT(Matches(records, {"AD[31:0]=10"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"AD[31:0]=0x10"}), ElementsAre(0));
    // With all digits given, the x is any digit.
    EXPECT_THAT(Matches(CaptureBuilder().Write(0x0A000010, 0x10).Records(), {"AD[31:0]=0x000010"}),
                ElementsAre(0, 1));
}

TEST_F(Conditions, MissingDigitsOfAbsentLinesAreAny) {
    auto records = CaptureBuilder().Write(0x10, 0xAB).Records();
    records[0].bytes[4] = 0xFF; // AD[39:32]
    EXPECT_THAT(Matches(records, {"AD=10"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"AD[39:0]=10"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"AD[39:0]=0000000010"}), IsEmpty());
    EXPECT_THAT(Matches(records, {"C/BE=7"}), ElementsAre(0)); // the upper half is F
    EXPECT_THAT(Matches(records, {"C/BE=07"}), IsEmpty());
    for (const std::int32_t mode : {BusPci, BusPciX}) {
        board.board.bus = {mode, 1, 0, 0, 0};
        EXPECT_THAT(Matches(records, {"AD=10"}), IsEmpty());
        board.board.bus = {mode, 0, 0, 0, 0};
        EXPECT_THAT(Matches(records, {"AD=10"}), ElementsAre(0));
    }
    // On another bus the same bits have another meaning.
    BoardTables vme("VMEKite-1", BusVme);
    SearchCondition condition;
    EXPECT_EQ(condition.Add("bit 40=1", vme.tables, {}), "");
    EXPECT_EQ(condition.MatchesOf(records), 0U);
}

TEST_F(Conditions, AllPatternsMustHold) {
    const auto records = CaptureBuilder().Write(0x10, 0x20).Read(0x10, 0x30).Records();
    EXPECT_THAT(Matches(records, {"AD[31:0]=10", "FRAME=0"}), ElementsAre(0, 2));
    EXPECT_THAT(Matches(records, {"AD[31:0]=10", "FRAME=0", "C/BE[3:0]=6"}), ElementsAre(2));
    EXPECT_THAT(Matches(records, {"FRAME=0", "FRAME=1"}), IsEmpty());
}

TEST_F(Conditions, LabelsOfDecodedSignalsMatchInTheirPhaseOnly) {
    // In data phases with all lanes enabled, C/BE has the code of an interrupt acknowledge; in idle
    // clocks that of "Mem Wr & Inv". Neither is a command.
    const auto records =
        CaptureBuilder().Read(0x10).Idle().Address(0, PciCommand::InterruptAcknowledge).Records();
    EXPECT_THAT(Matches(records, {"COMMAND=Mem Rd"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"command=mem rd"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"COMMAND=Mem"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"COMMAND=Int Ack"}), ElementsAre(4));
    EXPECT_THAT(Matches(records, {"COMMAND=Mem Wr & Inv"}), IsEmpty());
    EXPECT_THAT(Matches(records, {"COMMAND=F6"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"ADDRESS32=10"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"ADR/DATA=Address"}), ElementsAre(0, 4));
}

TEST_F(Conditions, DataDoNotMatchAsAddresses) {
    const auto records = CaptureBuilder().Write(0x10, 0x10).Records();
    EXPECT_THAT(Matches(records, {"DATA32=10"}), ElementsAre(1));
    EXPECT_THAT(Matches(records, {"ADDRESS32=10"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"AD[31:0]=10"}), ElementsAre(0, 1));
}

TEST_F(Conditions, FindingsAndTimesAreFoundAlthoughTheBoardCannotCompareThem) {
    const auto records = CaptureBuilder().Idle().Finding(112).Idle(2).After(55).Records();
    EXPECT_THAT(Matches(records, {"RULE CHECK=Target Retry"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"RULE CHECK=70"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"TIME=000DC"}), ElementsAre(2)); // 55 ns: count 55, unit 0
}

TEST_F(Conditions, AValueOfZerosIsCompared) {
    const auto records =
        CaptureBuilder().Write(0, 0).Write(0x10, 0xFF).Idle().After(0).Idle().Records();
    EXPECT_THAT(Matches(records, {"ADDRESS32=00000000"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"ADDRESS32=0"}), ElementsAre(0));
    EXPECT_THAT(Matches(records, {"DATA32=00000000"}), ElementsAre(1, 4, 5)); // idle lines are 0
    EXPECT_THAT(Matches(records, {"DATA32=00000000", "IRDY=0"}), ElementsAre(1));
    EXPECT_THAT(Matches(records, {"TIME=00000"}), ElementsAre(4));
    EXPECT_EQ(Wrong("TIME=000000"), "TIME takes 5 hexadecimal digits, x for any; not \"000000\"");
}

TEST_F(Conditions, AFieldOfPciXCanBeZero) {
    board.board.bus = {BusPciX, 1, 0, 0, 0};
    const std::vector<SampleRecord> records = {With({93}),     With({93, 24}), With({93, 0, 64}),
                                               With({93, 16}), With({93, 15}), With({93, 10})};
    EXPECT_THAT(Matches(records, {"TAG=00"}), ElementsAre(0, 2, 3, 4, 5));
    EXPECT_THAT(Matches(records, {"BUS#=00"}), ElementsAre(0, 1, 2, 4, 5));
    EXPECT_THAT(Matches(records, {"DEVICE#=00"}), ElementsAre(0, 1, 2, 3, 5));
    EXPECT_THAT(Matches(records, {"FUNCTION#=0"}), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(Matches(records, {"BYTE CNT=000"}), ElementsAre(0, 1, 3, 4, 5));
    EXPECT_THAT(Matches(records, {"ATTRIBUTE=00000000"}), ElementsAre(0));
    EXPECT_EQ(Wrong("TAG=here"), "TAG(PCI-X) takes 2 hexadecimal digits, x for any; not \"here\"");
}

TEST_F(Conditions, ALabelWithSeveralCodesMatchesEach) {
    board.board.bus = {BusPciX, 1, 0, 0, 0};
    const std::vector<SampleRecord> records = {With({95, 67}),             // 1000
                                               With({95, 65, 66, 67}),     // 1110
                                               With({95, 65, 66}),         // 0110
                                               With({95, 93, 65, 66, 67}), // of the attributes
                                               With({67})};                // of data
    EXPECT_THAT(Matches(records, {"COMMAND=Mem Rd Blk"}), ElementsAre(0, 1));
    EXPECT_THAT(Matches(records, {"COMMAND=Mem Rd Blk", "C/BE=x8"}), ElementsAre(0));
}

TEST_F(Conditions, AttributesOfPciXMatchWhereTheyAreShown) {
    board.board.bus = {BusPciX, 1, 0, 0, 0};
    const std::vector<SampleRecord> records = {With({93, 24}),         // attribute, tag 1
                                               With({95, 24, 66, 67}), // split completion
                                               With({95, 24, 65, 66}), // another address
                                               With({24}),             // data
                                               With({24, 66, 67})};    // with lanes disabled
    EXPECT_THAT(Matches(records, {"TAG=01"}), ElementsAre(0, 1));
    EXPECT_THAT(Matches(records, {"ATTRIBUTE=01000000"}), ElementsAre(0, 1));
}

TEST_F(Conditions, BitReversedBuses) {
    BoardTables lark("VMELark-1", BusVme);
    SearchCondition condition;
    ASSERT_EQ(condition.Add("BG=1", lark.tables, {}), "");
    const std::vector<SampleRecord> records = {With({80}), With({83})};
    EXPECT_EQ(condition.MatchesOf(records), 2U);
}

TEST_F(Conditions, ErrorsSayWhatIsValid) {
    EXPECT_THAT(Wrong("FRAME"), HasSubstr("NAME=VALUE"));
    EXPECT_THAT(Wrong("NOPE=1"),
                HasSubstr("no signal \"NOPE\" on this bus; there are COMMAND, ADDRESS32"));
    EXPECT_EQ(Wrong("FRAME=10"), "FRAME takes 1 hexadecimal digit, x for any; not \"10\"");
    EXPECT_EQ(Wrong("C/BE[1:0]=4"), "C/BE[1:0] takes 1 hexadecimal digit, x for any; not \"4\"");
    EXPECT_EQ(Wrong("AD[31:0]="), "AD[31:0] takes 8 hexadecimal digits, x for any; not \"\"");
    EXPECT_THAT(Wrong("COMMAND=Rd"), HasSubstr("or a label: I/O Rd, Mem Rd, Cfg Rd"));
}

} // namespace
} // namespace busquill::test
