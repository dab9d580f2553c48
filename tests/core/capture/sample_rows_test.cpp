#include "capture/sample_rows.h"
#include "platform/text_file.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>

namespace busquill::test {
namespace {

/// Rows as the fast parser takes them, and the number of bytes that it consumed.
struct Taken {
    SampleRows rows;
    std::size_t bytes = 0;
};

Taken Take(const std::string& text, std::size_t limit = 100) {
    Taken taken;
    // The text that follows must not be parsed as part of it.
    const std::string padded = text + "7\n" + std::string(TextReader::readable, '7');
    taken.bytes =
        ParsePlainRows(std::string_view(padded).substr(0, text.size()), limit, taken.rows);
    return taken;
}

std::string Row(int number, const std::string& rest = "") {
    std::string row = std::to_string(number);
    for (int byte = 0; byte < 18; ++byte) {
        row += "," + std::to_string((number * 7 + byte * 31) & 255);
    }
    return row + rest + "\n";
}

TEST(PlainRows, TakesRowsUntilAnotherKindOfLine) {
    const std::string two = Row(-12) + Row(345678);
    const Taken taken = Take(two + "\"End of Trace Data\"\n");
    EXPECT_EQ(taken.bytes, two.size());
    EXPECT_EQ(taken.rows.numbers, (std::vector<std::int32_t>{-12, 345678}));
    EXPECT_EQ(taken.rows.records[0].bytes[0], static_cast<std::uint8_t>(-12 * 7));
    EXPECT_EQ(taken.rows.records[1].bytes[17], static_cast<std::uint8_t>(345678 * 7 + 17 * 31));
}

TEST(PlainRows, TakesNoMoreRowsThanTheLimit) {
    const Taken taken = Take(Row(1000) + Row(1001) + Row(1002), 2);
    EXPECT_EQ(taken.rows.Size(), 2U);
    EXPECT_EQ(taken.bytes, (Row(1000) + Row(1001)).size());
}

TEST(PlainRows, LeavesAnIncompleteLine) {
    const std::string row = Row(1000);
    for (std::size_t cut = 0; cut < row.size(); ++cut) {
        EXPECT_EQ(Take(row.substr(0, cut)).bytes, 0U) << cut;
    }
    EXPECT_EQ(Take(row).bytes, row.size());
}

TEST(PlainRows, ReadsNothingBeforeTheText) {
    // The first byte value is read from four characters, one of which would lie before the text.
    EXPECT_EQ(Take("0,5,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n").bytes, 0U);
}

TEST(PlainRows, CutsValuesToAByte) {
    EXPECT_EQ(Take("10,256,999,300,0,0,0,0,0,0,0,0,0,0,0,0,0,0,255\n").rows.records.at(0).bytes,
              (SampleRecord{{0, 231, 44, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255}}.bytes));
}

TEST(PlainRows, AreAsLongAsTheirNumbers) {
    std::string longest = "-999999999";
    std::string shortest = "10";
    for (int byte = 0; byte < 18; ++byte) {
        longest += ",255";
        shortest += ",0";
    }
    const Taken taken = Take(longest + "\n" + shortest + "\n");
    EXPECT_EQ(taken.rows.numbers, (std::vector<std::int32_t>{-999999999, 10}));
    EXPECT_EQ(taken.rows.records.at(0).bytes[17], 255);
    EXPECT_EQ(taken.rows.records.at(1).bytes, SampleRecord().bytes);
}

TEST(PlainRows, HaveNoOtherCharacterAnywhere) {
    for (const char odd : {' ', '-', '"', 'a', '\r', ',', '\xB2', '\0'}) {
        const std::string row = Row(12345);
        for (std::size_t place = 0; place < row.size(); ++place) {
            std::string changed = row;
            const bool isSame = std::exchange(changed[place], odd) == odd;
            const bool isSign = place == 0 && odd == '-';
            EXPECT_EQ(Take(changed).bytes != 0, isSame || isSign) << place << " " << int{odd};
        }
    }
}

struct OddRow {
    const char* name;
    const char* text;
};
class NotPlain : public testing::TestWithParam<OddRow> {};

TEST_P(NotPlain, IsLeftToTheGeneralParser) {
    EXPECT_EQ(Take(GetParam().text).bytes, 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NotPlain,
    testing::Values(OddRow{"EighteenFields", "10,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17\n"},
                    OddRow{"TwentyFields", "10,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19\n"},
                    OddRow{"EmptyField", "10,1,2,3,4,5,6,7,8,,10,11,12,13,14,15,16,17,18\n"},
                    OddRow{"FourDigits", "10,1,2,3,4,5,6,7,8,9999,1,1,2,3,4,5,6,7,8\n"},
                    OddRow{"Blank", "10,1,2,3,4,5,6,7,8, 9,10,11,12,13,14,15,16,17,18\n"},
                    OddRow{"Quotes", "\"10\",1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18\n"},
                    OddRow{"NegativeByte", "10,1,2,3,-4,5,6,7,8,9,10,11,12,13,14,15,16,17,18\n"},
                    OddRow{"Letter", "10,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,1f,18\n"},
                    OddRow{"OnlyASign", "-,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18\n"},
                    OddRow{"TenDigits",
                           "1234567890,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18\n"},
                    OddRow{"CarriageReturn", "10,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18\r\n"},
                    OddRow{"Empty", "\n"}),
    [](const auto& row) { return row.param.name; });

TEST(PlainRows, AgreesWithParsingLineByLine) {
    constexpr unsigned seed = 20261;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto pick = [&](unsigned limit) { return random() % limit; };
    int plain = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string line = std::to_string(static_cast<int>(pick(200000)) - 100000);
        for (int field = 0; field < 18; ++field) {
            line += "," + std::to_string(pick(3) == 0 ? pick(1000) : pick(256));
        }
        for (unsigned change = pick(3); change != 0; --change) {
            constexpr std::string_view odd = "0123456789,,-- \"\r/:.\x80";
            const char c = odd[pick(odd.size())];
            const std::size_t at = pick(static_cast<unsigned>(line.size()));
            pick(2) == 0 ? line.insert(at, 1, c) : line.replace(at, 1, 1, c);
        }
        SampleRows slow;
        const bool isPlain = ParsePlainRow(line, slow);
        const Taken fast = Take(line + "\n");
        if (fast.bytes == 0) {
            continue; // the general parser takes it
        }
        ++plain;
        ASSERT_TRUE(isPlain) << line;
        ASSERT_EQ(fast.bytes, line.size() + 1) << line;
        ASSERT_EQ(fast.rows.numbers, slow.numbers) << line;
        ASSERT_EQ(fast.rows.records, slow.records) << line;
    }
    EXPECT_GT(plain, 5000);
}

struct Skip {
    const char* name;
    std::string text;
    std::size_t rows; // rows of `text` to skip
};
class SkippedRows : public testing::TestWithParam<Skip> {};

TEST_P(SkippedRows, EndAtAnotherKindOfLine) {
    std::int64_t last = -100;
    std::size_t begin = 0;
    std::size_t end = 0;
    for (std::size_t row = 0; row < GetParam().rows; ++row) {
        begin = end;
        end = GetParam().text.find('\n', begin) + 1;
    }
    EXPECT_EQ(SkipAscendingRows(GetParam().text, last), end);
    EXPECT_EQ(last, end == 0 ? -100 : std::stoi(GetParam().text.substr(begin)));
}

INSTANTIATE_TEST_SUITE_P(Rows, SkippedRows,
                         testing::Values(Skip{"All", Row(-12) + Row(0) + Row(7), 3},
                                         Skip{"Descending", Row(5) + Row(4), 1},
                                         Skip{"Repeated", Row(5) + Row(5) + Row(6), 1},
                                         Skip{"NotAboveTheRowBefore", Row(-100), 0},
                                         Skip{"Piece", Row(5) + "6,1,2", 1},
                                         Skip{"Words", Row(5) + "End\n", 1}, Skip{"Empty", "\n", 0},
                                         Skip{"Nothing", "", 0}, Skip{"OnlyASign", "-\n", 0},
                                         Skip{"NoComma", "5\n", 0},
                                         Skip{"TenDigits", "1234567890,1\n", 0},
                                         Skip{"QuoteInALaterLine", Row(5) + "6,\"7\n8\n", 1}),
                         [](const auto& each) { return each.param.name; });

TEST(SampleRowsText, IsReadBackAsItWas) {
    std::string text;
    SampleRecord record;
    for (std::size_t i = 0; i < record.bytes.size(); ++i) {
        record.bytes[i] = static_cast<std::uint8_t>(i * 15);
    }
    AppendRow(text, -123, record);
    EXPECT_EQ(text, "-123,0,15,30,45,60,75,90,105,120,135,150,165,180,195,210,225,240,255\n");
    EXPECT_EQ(Take(text).rows.records.at(0), record);
}

} // namespace
} // namespace busquill::test
