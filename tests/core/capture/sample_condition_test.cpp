#include "capture/kept_expressions.h"
#include "capture/sample_condition.h"
#include "capture/sample_rows.h"
#include "platform/text.h"
#include "signals/cell_text.h"
#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"

#include <gmock/gmock.h>

#include <functional>
#include <numeric>
#include <random>
#include <tuple>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

class SampleConditions : public testing::Test {
protected:
    using Records = std::vector<SampleRecord>;
    using Numbers = std::vector<std::int32_t>;

    static Numbers From(std::int32_t first, std::size_t count) {
        Numbers numbers(count);
        std::iota(numbers.begin(), numbers.end(), first);
        return numbers;
    }

    /// The numbers of the samples for which the expression holds.
    Numbers Found(const Records& records, const Numbers& numbers, std::string_view text) {
        const auto parsed = SampleCondition::Parse(text, board.tables, {&list});
        if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
            ADD_FAILURE() << text << ": " << error->message << " at " << error->place;
            return {};
        }
        const auto& condition = std::get<SampleCondition>(parsed);
        Numbers found;
        constexpr std::size_t block = RecordPattern::blockSize;
        for (std::size_t first = 0; first < records.size(); first += block) {
            const std::size_t count = std::min(block, records.size() - first);
            const bool follows = first != 0 && numbers[first - 1] + 1 == numbers[first];
            const std::uint32_t matches =
                condition.MatchesOf({.records = std::span(records).subspan(first, count),
                                     .numbers = std::span(numbers).subspan(first, count),
                                     .before = follows ? &records[first - 1] : nullptr});
            for (std::size_t i = 0; i < 32; ++i) {
                if ((matches >> i & 1) != 0) {
                    found.push_back(numbers.at(first + i));
                }
            }
        }
        return found;
    }
    Numbers Found(const Records& records, std::string_view text) {
        return Found(records, From(0, records.size()), text);
    }

    ExpressionError ErrorOf(std::string_view text) {
        const auto parsed = SampleCondition::Parse(text, board.tables, {&list});
        const auto* const error = std::get_if<ExpressionError>(&parsed);
        return error != nullptr ? *error : ExpressionError{std::string_view::npos, "none"};
    }
    bool IsMasked(std::string_view text) {
        return std::get<SampleCondition>(SampleCondition::Parse(text, board.tables, {&list}))
            .IsMasked();
    }

    BoardTables board{"PCIKite-1"};
    CSignalList list{board.tables};
};

TEST_F(SampleConditions, CompareNumbersOfAnyBaseWithXForAnyDigit) {
    const auto records = CaptureBuilder()
                             .Write(0xFEBF0010, 0x12345678)
                             .Write(0xFEBF00A0, 0x12345678)
                             .Write(0x0EBF0010, 1)
                             .Records();
    EXPECT_THAT(Found(records, "AD == 0xFEBF0010"), ElementsAre(0));
    EXPECT_THAT(Found(records, "AD == 0xFEBF_XXXX"), ElementsAre(0, 2));
    EXPECT_THAT(Found(records, "ad[31:0] == 0xxEBF_0010"), ElementsAre(0, 4));
    EXPECT_THAT(Found(records, "AD == 1234_5678"), ElementsAre(1, 3));
    EXPECT_THAT(Found(records, "AD[7..0] == 0b0001_X0X0"), ElementsAre(0, 4));
    EXPECT_THAT(Found(records, "AD[4] == 1 and FRAME == 0"), ElementsAre(0, 4));
    EXPECT_THAT(Found(records, "AD != 0xFEBF_XXXX"), ElementsAre(1, 3, 4, 5));
    EXPECT_THAT(Found(records, "AD < 0x10"), ElementsAre(5));
    EXPECT_THAT(Found(records, "AD <= 1"), ElementsAre(5));
    EXPECT_THAT(Found(records, "AD > 0xFEBF0010"), ElementsAre(2));
    EXPECT_THAT(Found(records, "AD >= 0xFEBF0010"), ElementsAre(0, 2));
    EXPECT_THAT(Found(records, "AD in 0xFEBF0000..0xFEBF00FF"), ElementsAre(0, 2));
    EXPECT_THAT(Found(records, "AD in 0x0EBF0010..0x12345678"), ElementsAre(1, 3, 4));
    EXPECT_THAT(Found(records, "AD < 0"), IsEmpty());
    EXPECT_THAT(Found(records, "AD[31:0] > 0xFFFF_FFFF"), IsEmpty());
    EXPECT_THAT(Found(records, "C/BE[3..0] == 7"), ElementsAre(0, 2, 4));
    EXPECT_THAT(Found(records, "`C/BE`[3..0] == 7"), ElementsAre(0, 2, 4));
}

TEST_F(SampleConditions, ReadTheDigitsOfAListingAsItShowsThem) {
    const auto records = CaptureBuilder()
                             .Write(0xFEBF0010, 0x12345678)
                             .Write(0x00001000, 0x0B101000)
                             .Read(0x10, 7)
                             .Records();
    EXPECT_THAT(Found(records, "AD == FEBF0010"), ElementsAre(0));
    EXPECT_THAT(Found(records, "AD == febf_00xx"), ElementsAre(0));
    EXPECT_THAT(Found(records, "AD == 00001000"), ElementsAre(2));
    EXPECT_THAT(Found(records, "ADDRESS32 == 1000"), ElementsAre(2));
    EXPECT_THAT(Found(records, "ADDRESS32 in 1000..febf00ff"), ElementsAre(0, 2));
    EXPECT_THAT(Found(records, "AD == 0B101000"), ElementsAre(3));
    EXPECT_THAT(Found(records, "AD[3..0] == 0b1000 and FRAME == 1"), ElementsAre(1));
    EXPECT_THAT(Found(records, "sample == 3"), ElementsAre(3));
    // Columns of labels have no digits that could be taken from them.
    EXPECT_THAT(ErrorOf("`RULE CHECK` == A0").message,
                StartsWith("expected a number, or a label in double quotes: \""));
    EXPECT_EQ(Found(CaptureBuilder().Idle().Finding(112).Records(), "`RULE CHECK` == 112"),
              Numbers{0});
    EXPECT_EQ(ErrorOf("AD[7..0] == 100").message, "AD[7:0] has 8 bits; 0x100 does not fit");
    EXPECT_EQ(ErrorOf("C/BE[2..0] == 9").message, "C/BE[2:0] has 3 bits; 9 does not fit");
}

TEST_F(SampleConditions, TakeTimesWithDecimals) {
    const auto records = CaptureBuilder().Idle(4).Records();
    const Numbers numbers = From(-1, 4);
    const std::vector<std::int64_t> times = {-1509, -500, 30, 2000};
    const auto matches = [&](std::string_view text) {
        const auto parsed = SampleCondition::Parse(text, board.tables, {&list});
        return std::get<SampleCondition>(parsed).MatchesOf(
            {.records = records, .numbers = numbers, .times = times});
    };
    EXPECT_EQ(matches("ACCUM in -0.5us..0.002ms"), 0b1110U);
    EXPECT_EQ(matches("ACCUM > -1.51us and ACCUM < 0.031us"), 0b0111U);
    // As the listing shows them.
    EXPECT_EQ(matches("ACCUM == -1.50us"), 0b0001U);
    EXPECT_EQ(matches("ACCUM == -1.51us"), 0b0000U);
    EXPECT_EQ(matches("ACCUM != -1.5us"), 0b1110U);
    EXPECT_EQ(matches("ACCUM == 2.000us"), 0b1000U);
}

TEST_F(SampleConditions, CompareTheUpperHalfOfANarrowBusOnlyWhereDigitsAreWritten) {
    auto records = CaptureBuilder().Write(0x10, 0xAB).Records();
    records[0].bytes[4] = 0xFF; // AD[39:32]
    EXPECT_THAT(Found(records, "AD == 0x10"), ElementsAre(0));
    EXPECT_THAT(Found(records, "AD in 0x10..0x10"), ElementsAre(0));
    EXPECT_THAT(Found(records, "AD < 0xAB"), ElementsAre(0));
    EXPECT_THAT(Found(records, "AD == 0x0000_0000_10"), IsEmpty());
    EXPECT_THAT(Found(records, "AD[39:32] == 0xFF"), ElementsAre(0));
    EXPECT_THAT(Found(records, "AD[39:32] == 0"), ElementsAre(1));
    board.board.bus.busWidth = 1;
    EXPECT_THAT(Found(records, "AD == 0x10"), IsEmpty());
}

TEST_F(SampleConditions, CompareLabelsInThePhaseInWhichTheyAreShown) {
    const auto records =
        CaptureBuilder().Read(0x10).Idle().Address(0, PciCommand::InterruptAcknowledge).Records();
    EXPECT_THAT(Found(records, "COMMAND == \"Mem Rd\""), ElementsAre(0));
    EXPECT_THAT(Found(records, "command == \"mem*\""), ElementsAre(0));
    EXPECT_THAT(Found(records, "COMMAND == \"*\""), ElementsAre(0, 4));
    EXPECT_THAT(Found(records, "COMMAND != \"Mem Rd\""), ElementsAre(4));
    EXPECT_THAT(Found(records, "not COMMAND == \"Mem Rd\""), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(Found(records, "COMMAND == 6"), ElementsAre(0));
    EXPECT_THAT(Found(records, "COMMAND != 6"), ElementsAre(4));
    EXPECT_THAT(Found(records, "ADDRESS32 in 0..0x13"), ElementsAre(0, 4));
    EXPECT_THAT(Found(records, "ADDRESS32[7..4] == 1"), ElementsAre(0));
    EXPECT_THAT(Found(records, "ADR/DATA == \"Address\""), ElementsAre(0, 4));
}

TEST_F(SampleConditions, FindFindingsAndPauses) {
    const auto records = CaptureBuilder().Idle().Finding(112).Idle(2).After(55, 1).Records();
    EXPECT_THAT(Found(records, "`RULE CHECK` == \"Target Retry\""), ElementsAre(0));
    EXPECT_THAT(Found(records, "`RULE CHECK` == \"*\""), ElementsAre(0));
    EXPECT_THAT(Found(records, "`RULE CHECK` != \"Target Retry\""), IsEmpty());
    EXPECT_THAT(Found(records, "`rule check` == 112"), ElementsAre(0));
    EXPECT_THAT(Found(records, "TIME > 1us"), ElementsAre(2));
    EXPECT_THAT(Found(records, "time == 30"), ElementsAre(0, 1));
    EXPECT_THAT(Found(records, "time != 30 ns"), ElementsAre(2));
    EXPECT_THAT(Found(records, "time in 50us..60us"), ElementsAre(2));
}

TEST_F(SampleConditions, KnowTheNumbersOfSamples) {
    const auto records = CaptureBuilder().Idle(5).Records();
    const Numbers numbers = From(-2, 5);
    EXPECT_THAT(Found(records, numbers, "sample < 0"), ElementsAre(-2, -1));
    EXPECT_THAT(Found(records, numbers, "sample in -1..1"), ElementsAre(-1, 0, 1));
    EXPECT_THAT(Found(records, numbers, "sample != 0 and sample > -2"), ElementsAre(-1, 1, 2));
}

TEST_F(SampleConditions, CompareTheTimeSinceTheTrigger) {
    const auto records = CaptureBuilder().Idle(4).Records();
    const Numbers numbers = From(-1, 4);
    const std::vector<std::int64_t> times = {-30, 0, 30, 60};
    const auto matches = [&](std::string_view text) {
        const auto parsed = SampleCondition::Parse(text, board.tables, {&list});
        const auto& condition = std::get<SampleCondition>(parsed);
        EXPECT_TRUE(condition.NeedsTimes());
        return condition.MatchesOf({.records = records, .numbers = numbers, .times = times});
    };
    EXPECT_EQ(matches("ACCUM < 0"), 0b0001U);
    EXPECT_EQ(matches("accum in -30ns..30ns and not sample == 0"), 0b0101U);
    EXPECT_EQ(matches("ACCUM >= 60"), 0b1000U);
    EXPECT_EQ(ErrorOf("ACCUM changes").message, "ACCUM has no edges");
    EXPECT_THAT(ErrorOf("DELTA == 1").message, StartsWith("there is no signal \"DELTA\""));
    EXPECT_FALSE(std::get<SampleCondition>(SampleCondition::Parse("TIME > 1", board.tables, {}))
                     .NeedsTimes());
}

TEST_F(SampleConditions, AreReadInUpperAndLowerCase) {
    const auto records = CaptureBuilder().Idle().Read(0x10, 5).Idle().Records();
    EXPECT_THAT(Found(records, "frame FALLS Or NOT irdy == 1"), ElementsAre(1, 2, 3));
    EXPECT_THAT(Found(records, "Sample In 1..2\nAND Ad[4] Changes"), ElementsAre(1, 2));
    EXPECT_THAT(ErrorOf("END == retry").message, StartsWith("\"END\" belongs to transactions"));
    // A row with the name of a word of the language.
    CSignal* row = list.AddSignal(nullptr, board.tables.busSignals.FindByName("AD"), 1, 4, 7, 0,
                                  Radix::Hex, true);
    row->groupName = "In";
    EXPECT_THAT(Found(records, "`in` == 1"), ElementsAre(1));
    EXPECT_THAT(SampleCondition::Complete("in", 2, board.tables, {&list}).texts, Contains("`In`"));
}

TEST_F(SampleConditions, UseKeptExpressions) {
    KeptExpressions kept;
    kept.Keep("idle", "FRAME == 1 and IRDY == 1");
    kept.Keep("slow", "wait > 4");
    const auto records = CaptureBuilder().Idle().Read(0x10, 5).Idle().Records();
    const auto parsed = SampleCondition::Parse("not @idle", board.tables, {&list}, &kept);
    const Numbers numbers = From(0, records.size());
    EXPECT_EQ(std::get<SampleCondition>(parsed).MatchesOf({.records = records, .numbers = numbers}),
              0b01110U);
    EXPECT_THAT(SampleCondition::Complete("@", 1, board.tables, {&list}, &kept).texts,
                ElementsAre("@idle"));
}

TEST_F(SampleConditions, FindEdges) {
    //                                     0      1      2    3      4
    const auto records = CaptureBuilder().Idle().Read(0x10, 5).Idle().Records();
    EXPECT_THAT(Found(records, "FRAME falls"), ElementsAre(1));
    EXPECT_THAT(Found(records, "FRAME rises"), ElementsAre(2));
    EXPECT_THAT(Found(records, "IRDY changes"), ElementsAre(2, 4));
    EXPECT_THAT(Found(records, "AD[31:0] changes"), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(Found(records, "AD[4] rises"), ElementsAre(1));
    EXPECT_THAT(Found(records, "FRAME changes and AD == 0x10"), ElementsAre(1));
    EXPECT_THAT(Found(records, "not FRAME changes"), ElementsAre(0, 3, 4));
}

TEST_F(SampleConditions, HaveNoEdgeAtTheFirstSampleAndAfterMissingOnes) {
    const auto low = CaptureBuilder().Address(0, 0).Idle().Address(0, 0).Records();
    EXPECT_THAT(Found(low, "FRAME falls"), ElementsAre(2));
    EXPECT_THAT(Found(low, {1, 2, 4}, "FRAME falls"), IsEmpty());
    EXPECT_THAT(Found(low, {1, 3, 4}, "FRAME falls"), ElementsAre(4));
    EXPECT_THAT(Found(low, {1, 3, 4}, "FRAME rises"), IsEmpty());
    EXPECT_THAT(Found(low, {1, 3, 4}, "AD[31:0] changes or C/BE changes"), ElementsAre(4));
}

TEST_F(SampleConditions, FindEdgesBetweenBlocks) {
    auto builder = CaptureBuilder();
    builder.Idle(32).Address(0x10, 0).Idle(31).Address(0, 0);
    EXPECT_THAT(Found(builder.Records(), "FRAME falls"), ElementsAre(32, 64));
    EXPECT_THAT(Found(builder.Records(), "FRAME rises"), ElementsAre(33));
    EXPECT_THAT(Found(builder.Records(), "C/BE changes"), ElementsAre(32, 33, 64));
}

TEST_F(SampleConditions, FindNothingPastTheEndOfABlock) {
    const auto records = CaptureBuilder().Idle(8).Records();
    const Numbers numbers = From(0, 8);
    for (const char* text : {"FRAME falls", "FRAME == 1", "FRAME changes", "not FRAME == 0",
                             "not AD in 5..99", "sample > 1 or FRAME falls"}) {
        const auto condition =
            std::get<SampleCondition>(SampleCondition::Parse(text, board.tables, {}));
        EXPECT_EQ(condition.MatchesOf({.records = std::span(records).first(4),
                                       .numbers = std::span(numbers).first(4)}) >>
                      4,
                  0U)
            << text;
    }
}

TEST_F(SampleConditions, Combine) {
    const auto records = CaptureBuilder().Write(0x10, 0x20).Read(0x10, 0x30).Records();
    EXPECT_THAT(Found(records, "FRAME == 0 or IRDY == 0 and TRDY == 0"), ElementsAre(0, 1, 2, 4));
    EXPECT_THAT(Found(records, "(FRAME == 0 or IRDY == 0) and TRDY == 0"), ElementsAre(1, 4));
    EXPECT_THAT(Found(records, "not (FRAME == 0 or IRDY == 0)"), IsEmpty());
    EXPECT_THAT(Found(records, "not (IRDY == 0 and TRDY == 0)"), ElementsAre(0, 2, 3));
    EXPECT_THAT(Found(records, "FRAME == 0 and FRAME == 1"), IsEmpty());
    EXPECT_THAT(Found(records, "FRAME == 0 or FRAME == 1"), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(Found(records, "sample > 1 and (AD in 0x11..0x30 or FRAME == 0)"),
                ElementsAre(2, 4));
    EXPECT_THAT(Found(records, "not sample > 1 and not FRAME == 0"), ElementsAre(1));
    std::string nested = "FRAME == 0";
    for (int i = 0; i < 29; ++i) {
        nested = "(sample < 0 or sample >= 0 and " + nested + ")";
    }
    EXPECT_THAT(Found(records, nested), ElementsAre(0, 2));
    EXPECT_EQ(ErrorOf("(" + nested + ")").message, "too many parentheses inside each other");
}

TEST_F(SampleConditions, FindExactlyWhatIsInARange) {
    Records records(64);
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i].bytes[0] = static_cast<std::uint8_t>(i);
    }
    for (std::int32_t low = 0; low < 64; low += 3) {
        for (std::int32_t high = low; high < 64; ++high) {
            const std::string text = Printf("AD[5..0] in %x..%x", static_cast<unsigned>(low),
                                            static_cast<unsigned>(high));
            ASSERT_EQ(Found(records, text), From(low, static_cast<std::size_t>(high - low) + 1))
                << text;
        }
    }
}

/// Expressions put together at random, and whether they hold for a sample, computed plainly.
class RandomExpressions {
public:
    struct Made {
        std::string text;
        std::function<bool(std::size_t)> holds; // for a sample; as long as the maker lives
    };

    RandomExpressions(const std::vector<SampleRecord>& records, unsigned seed)
        : records_(records), random_(seed) {}

    Made Make(int depth) {
        const auto kind = random_() % (depth == 0 ? 5 : 9);
        if (kind < 5) {
            return Leaf(kind);
        }
        const Made a = Make(depth - 1);
        if (kind == 5) {
            return {"not (" + a.text + ")", [a](std::size_t i) { return !a.holds(i); }};
        }
        const Made b = Make(depth - 1);
        return kind == 6 ? Made{"(" + a.text + " or " + b.text + ")",
                                [a, b](std::size_t i) { return a.holds(i) || b.holds(i); }}
                         : Made{"(" + a.text + " and " + b.text + ")",
                                [a, b](std::size_t i) { return a.holds(i) && b.holds(i); }};
    }

private:
    Made Leaf(std::uint32_t kind) {
        const int line = static_cast<int>(random_() % 8);
        const auto bit = [this, line](std::size_t i) { return records_[i].Bit(line); };
        const std::string name = "AD[" + std::to_string(line) + "]";
        const auto value = [this](std::size_t i) { return records_[i].bytes[0]; };
        const auto low = static_cast<std::uint8_t>(random_() % 128);
        const auto high = static_cast<std::uint8_t>(low + random_() % 128);
        switch (kind) {
        case 0:
            return {name + " == 1", bit};
        case 1:
            return {Printf("AD[7..0] in 0x%x..0x%x", low, high),
                    [=](std::size_t i) { return low <= value(i) && value(i) <= high; }};
        case 2:
            return {name + " rises", [=](std::size_t i) { return i > 0 && bit(i) && !bit(i - 1); }};
        case 3:
            return {"sample < " + std::to_string(low), [=](std::size_t i) { return i < low; }};
        default:
            return {Printf("AD[7..0] != %x", high),
                    [=](std::size_t i) { return value(i) != high; }};
        }
    }

    const std::vector<SampleRecord>& records_;
    std::mt19937 random_;
};

TEST_F(SampleConditions, HoldWhereEachPartOfThemSays) {
    Records records(100);
    std::mt19937 random(3);
    for (SampleRecord& record : records) {
        record.bytes[0] = static_cast<std::uint8_t>(random());
    }
    for (unsigned seed = 0; seed < 400; ++seed) {
        RandomExpressions expressions(records, seed);
        const auto made = expressions.Make(5);
        Numbers expected;
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (made.holds(i)) {
                expected.push_back(static_cast<std::int32_t>(i));
            }
        }
        ASSERT_EQ(Found(records, made.text), expected) << "seed " << seed << ": " << made.text;
    }
}

TEST_F(SampleConditions, MayHaveManyParts) {
    Records records(40);
    for (SampleRecord& record : records) {
        record.bytes.fill(0xFF);
    }
    std::string flat = "sample >= 0";
    std::string nested = "FRAME == 1";
    for (int i = 0; i < 200; ++i) {
        flat += " and AD[" + std::to_string(i % 32) + "] == 1";
    }
    for (int i = 0; i < 9; ++i) {
        nested = "((sample >= 0 or (" + nested + ")) and IRDY == 1)";
    }
    for (const std::string& text : {flat, nested}) {
        EXPECT_EQ(Found(records, text).size(), records.size()) << text;
    }
}

TEST_F(SampleConditions, BecomeMasksWherePatternsAreEnough) {
    for (const char* text :
         {"FRAME == 0", "AD == 0xFEBF_XXXX and FRAME == 0", "AD in 0x1000..0x1FFF",
          "not FRAME == 0", "COMMAND == \"Mem Rd\"",
          "COMMAND == \"Mem Rd\" or COMMAND == \"Mem Wr\"", "not (FRAME == 1 or IRDY == 1)",
          "not (FRAME == 0 and IRDY == 0)", "(FRAME == 0 or IRDY == 0) and TRDY == 0",
          "AD >= 0x8000_0000", "ADDRESS32 == 0x10"}) {
        EXPECT_TRUE(IsMasked(text)) << text;
    }
    for (const char* text :
         {"AD in 5..99", "FRAME falls", "sample > 4", "TIME > 1us", "FRAME == 0 and AD in 5..99"}) {
        EXPECT_FALSE(IsMasked(text)) << text;
    }
}

TEST_F(SampleConditions, KnowTheRowsOfTheCapture) {
    CSignal* row = list.AddSignal(nullptr, board.tables.busSignals.FindByName("AD"), 1, 4, 7, 0,
                                  Radix::Hex, true);
    row->groupName = "My nibble";
    const auto records = CaptureBuilder().Write(0x35, 0x53).Records();
    EXPECT_THAT(Found(records, "`My nibble` == 3"), ElementsAre(0));
    EXPECT_THAT(Found(records, "`my nibble`[1..0] == 1"), ElementsAre(1));
    EXPECT_THAT(Found(records, "`My nibble` changes"), ElementsAre(1));
    EXPECT_EQ(ErrorOf("`My nibble` == 0x10").message, "My nibble has 4 bits; 0x10 does not fit");
    EXPECT_EQ(ErrorOf("`My nibble`[4] == 0").message, "My nibble has the bits 3 to 0");
    EXPECT_THAT(ErrorOf("nibble == 3").message, HasSubstr("`My nibble`"));
}

TEST_F(SampleConditions, OfferWhatCanStandAtTheCursor) {
    // The cursor is at the "|".
    const auto complete = [&](std::string text) {
        const std::size_t cursor = text.find('|');
        text.erase(cursor, 1);
        return SampleCondition::Complete(text, cursor, board.tables, {&list});
    };
    const auto offered = [&](const std::string& text) { return complete(text).texts; };
    EXPECT_THAT(offered("|"), IsSupersetOf({"FRAME", "COMMAND", "`RULE CHECK`", "AD[63:0]",
                                            "C/BE[7:0]", "TIME", "sample", "not", "("}));
    EXPECT_THAT(offered("|"), Not(Contains("and")));
    EXPECT_THAT(offered("fr|"), ElementsAre("FRAME"));
    EXPECT_THAT(offered("FRAME falls and C/|"), ElementsAre("C/BE[7:0]"));
    EXPECT_THAT(offered("rule|"), IsSupersetOf({"`RULE CHECK`"}));
    EXPECT_THAT(offered("`rule c|"), IsSupersetOf({"`RULE CHECK`"}));
    EXPECT_THAT(offered("FRAME |"),
                ElementsAre("==", "!=", "<", "<=", ">", ">=", "in", "rises", "falls", "changes"));
    EXPECT_THAT(offered("FRAME r|"), ElementsAre("rises"));
    EXPECT_THAT(offered("AD |"), ElementsAre("==", "!=", "<", "<=", ">", ">=", "in", "changes"));
    EXPECT_THAT(offered("TIME |"), ElementsAre("==", "!=", "<", "<=", ">", ">=", "in"));
    EXPECT_THAT(offered("FRAME =|"), ElementsAre("=="));
    EXPECT_THAT(offered("COMMAND == |"), IsSupersetOf({"\"Mem Rd\"", "\"I/O Wr\""}));
    EXPECT_THAT(offered("COMMAND ==|"), IsSupersetOf({"\"Mem Rd\"", "\"I/O Wr\""}));
    EXPECT_THAT(offered("COMMAND == \"Spc|"), ElementsAre("\"Spc Cyc\""));
    EXPECT_THAT(offered("COMMAND == spc|"), ElementsAre("\"Spc Cyc\""));
    EXPECT_THAT(offered("COMMAND == \"Spc Cyc\" |"), ElementsAre("and", "or"));
    EXPECT_THAT(offered("AD in 5 |"), ElementsAre(".."));
    EXPECT_THAT(offered("not (FRAME falls |"), ElementsAre("and", "or", ")"));
    EXPECT_THAT(offered("not (FRAME falls) o|"), ElementsAre("or"));
    EXPECT_THAT(offered("FRAME == |"), IsEmpty());
    EXPECT_THAT(offered("NOPE == 1 and |"), IsEmpty());
    // Only what is before the cursor counts, and is replaced from the beginning of its word.
    EXPECT_THAT(offered("fr| == 0 and"), ElementsAre("FRAME"));
    EXPECT_EQ(complete("IRDY == 0 and fr| == 0").place, 14U);
    EXPECT_EQ(complete("COMMAND == \"Mem R|").place, 11U);
    EXPECT_EQ(complete("IRDY |").place, 5U);
}

/// Compares what is found with the texts of the listing.
class LabelsOfBoards : public testing::TestWithParam<std::tuple<const char*, std::int32_t>> {};

TEST_P(LabelsOfBoards, AreFoundWhereTheListingShowsThem) {
    BoardTables board(std::get<0>(GetParam()), std::get<1>(GetParam()));
    constexpr unsigned seed = 7;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    SampleRows rows;
    for (std::int32_t i = 0; i < 512; ++i) {
        SampleRecord record;
        for (std::uint8_t& byte : record.bytes) {
            byte = static_cast<std::uint8_t>(random());
        }
        rows.Add(i, record);
    }
    int compared = 0;
    for (const auto& def : board.tables.decodedSignals.Defs()) {
        const auto found = FindSignal(def->name, board.tables, {});
        if (!def->ReadsAsLabel() || !found || found->decoded != def) {
            continue;
        }
        CSignalList list(board.tables);
        const CSignal* column =
            list.AddSignal(nullptr, def, 32, 0, 0, def->color, Radix::Hex, true);
        list.ResizeSamples(static_cast<std::uint32_t>(rows.Size()));
        list.LoadSamples(0, rows.records);
        std::vector<std::string> shown;
        for (std::size_t i = 0; i < rows.Size(); ++i) {
            const ListedSample sample{i, rows.numbers[i], &rows.records[i], {}};
            shown.push_back(CellText(board.board, *column, sample, false));
        }
        for (const std::string& label : LabelsOf(*def)) {
            const std::string text = QuotedName(def->name) + " == \"" + label + '"';
            const std::string other = QuotedName(def->name) + " != \"" + label + '"';
            const auto is =
                std::get<SampleCondition>(SampleCondition::Parse(text, board.tables, {}));
            const auto isOther =
                std::get<SampleCondition>(SampleCondition::Parse(other, board.tables, {}));
            for (std::size_t i = 0; i < rows.Size(); ++i) {
                const SampleBlock block{.records = std::span(rows.records).subspan(i, 1),
                                        .numbers = std::span(rows.numbers).subspan(i, 1)};
                ASSERT_EQ(is.MatchesOf(block) != 0, shown[i] == label) << text << shown[i];
                ASSERT_EQ(isOther.MatchesOf(block) != 0, !shown[i].empty() && shown[i] != label)
                    << other << shown[i];
            }
            ++compared;
        }
    }
    EXPECT_GT(compared, 0);
}

INSTANTIATE_TEST_SUITE_P(Boards, LabelsOfBoards,
                         testing::Values(std::tuple("PCIKite-1", BusPci),
                                         std::tuple("PCIKite-1", BusPciX),
                                         std::tuple("VMEKite-1", BusVme),
                                         std::tuple("VMELark-1", BusVme),
                                         std::tuple("VMEKite-1", BusVsb)));

TEST_F(SampleConditions, TellNamesThatNeedBackquotes) {
    const auto mistake = [](const char* text) {
        const BoardTables pciX("PCIKite", BusPciX);
        const auto parsed = SampleCondition::Parse(text, pciX.tables, {});
        const auto* const error = std::get_if<ExpressionError>(&parsed);
        return error == nullptr ? ExpressionError{99, "none"} : *error;
    };
    const ExpressionError command = mistake("FRAME == 0 and command(pci-x) == \"Mem Wr\"");
    EXPECT_EQ(command.place, 15U);
    EXPECT_THAT(command.message, EndsWith("is put into backquotes: `COMMAND(PCI-X)`"));
    EXPECT_THAT(mistake("RULE CHECK == 3").message, EndsWith("backquotes: `RULE CHECK`"));
    EXPECT_EQ(mistake("`COMMAND(PCI-X)` == \"Mem Wr\" and `RULE CHECK` == 3").message, "none");
    EXPECT_THAT(mistake("RULES == 3").message, StartsWith("there is no signal"));
}

TEST_F(SampleConditions, SayWhatIsWrongAndWhere) {
    struct Case {
        const char* text;
        std::size_t place;
        const char* begins;
    };
    for (const auto& [text, place, begins] : {
             Case{"", 0, "expected a signal: COMMAND, "},
             Case{"FRAM == 0", 0, "there is no signal \"FRAM\": FRAME, "},
             Case{"FRAME == 0 and RULECHECK == 1", 15,
                  "there is no signal \"RULECHECK\": `RULE CHECK`, "},
             Case{"AD == 0x10 and wait > 4", 15, "\"wait\" belongs to transactions; samples have"},
             Case{"end == retry", 0, "\"end\" belongs to transactions"},
             Case{"FRAME == 2", 9, "FRAME has 1 bit; 2 does not fit"},
             Case{"AD[7..0] in 0..0x100", 15, "AD[7:0] has 8 bits; 0x100 does not fit"},
             Case{"AD[64] == 0", 0, "AD has the bits 63 to 0"},
             Case{"AD in 0x2000..0x1fff", 6, "the range ends before it begins"},
             Case{"COMMAND == \"Mem Rt\"", 11, "COMMAND has no label \"Mem Rt\": \"Mem Rd\", "},
             Case{"COMMAND == \"Mem "
                  "Rdxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\"",
                  11,
                  "COMMAND has no label \"Mem "
                  "Rdxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...\": "},
             Case{"COMMAND == \"X*\"", 11, "COMMAND has no label \"X*\": "},
             Case{"COMMAND == \"\"", 12, "the label is empty"},
             Case{"COMMAND == \"Mem", 15, "expected \" at the end of the label"},
             Case{"FRAME == \"on\"", 9, "FRAME has no labels; compare it with a number"},
             Case{"AD rises", 0, "AD has 64 lines; only a single line rises or falls, AD changes"},
             Case{"COMMAND changes", 0, "COMMAND has no edges"},
             Case{"TIME falls", 0, "TIME has no edges"},
             Case{"AD == -1", 6, "AD has no sign"},
             Case{"AD == 5ns", 7, "AD is not a time and takes no unit"},
             Case{"sample > 1ms", 10, "sample is not a time and takes no unit"},
             Case{"TIME == 0xX", 8, "a time has no X"},
             Case{"AD == 1.5", 6, "a hexadecimal number has no decimals"},
             Case{"AD == 0b1.1", 6, "a binary number has no decimals"},
             Case{"TIME > 1,5us", 7, "decimals follow a point, as in 1.5us"},
             Case{"AD[2..0] == XX1", 12, "a number with X begins with 0x or 0b"},
             Case{"AD[2..0] == 101", 12,
                  "AD[2:0] has 3 bits; 101 does not fit; its bits are written 0b101"},
             Case{"AD[2..0] == 1010", 12, "AD[2:0] has 3 bits; 1010 does not fit"},
             Case{"COMMAND == Mem", 11,
                  "expected a number, or a label in double quotes: \"Mem Rd\", \"Mem Wr\", "},
             Case{"COMMAND == \"Mem\"", 11, "COMMAND has no label \"Mem\": \"Mem Rd\", "},
             Case{"COMMAND == \"Mem Rd\" or \"Mem Wr\"", 23,
                  "write the name again: COMMAND == \"Mem Wr\""},
             Case{"COMMAND != 6 and 7", 17, "write the name again: COMMAND != 7"},
             Case{"AD == A000 or B000", 14, "write the name again: AD == B000"},
             Case{"AD == A000 or ADD == B000", 14,
                  "there is no signal \"ADD\": ADDRESS32, AD[63:0], "},
             Case{"AD == A000 or ADD changes", 14, "there is no signal \"ADD\""},
             Case{"AD == A000 or NONE", 14, "there is no signal \"NONE\""},
             Case{"FRAME == 0 & IRDY == 0", 11, "expected \"and\" or \"or\""},
             Case{"FRAME == 0 and != 1", 15, "expected a signal"},
             Case{"FRAME == 0.5", 9, "FRAME is a whole number"},
             Case{"sample > 1F", 9, "a hexadecimal number begins with 0x"},
             Case{"AD == FEBG", 6, "expected a hexadecimal number"},
             Case{"AD", 2, "expected ==, !=, <, <=, >, >=, changes or in"},
             Case{"FRAME", 5, "expected ==, !=, <, <=, >, >=, rises, falls, changes or in"},
             Case{"FRAME = 0", 6, "= is written =="},
             Case{"and", 0, "expected a signal"},
             Case{"FRAME falls IRDY rises", 12, "expected \"and\" or \"or\""},
         }) {
        const ExpressionError error = ErrorOf(text);
        EXPECT_EQ(error.place, place) << text;
        EXPECT_THAT(error.message, StartsWith(begins)) << text;
    }
}

} // namespace
} // namespace busquill::test
