#include "document/csv_line.h"
#include "platform/text_file.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Fields = std::vector<std::string>;

struct SplitLine {
    Fields fields;
    bool goesOn = false;
};

SplitLine Split(std::string_view line, Fields fields = {}) {
    const bool goesOn = CsvSplitLine(line, fields);
    return {std::move(fields), goesOn};
}

/// A line that ends outside quotes.
Fields Whole(std::string_view line) {
    const SplitLine split = Split(line);
    EXPECT_FALSE(split.goesOn) << line;
    return split.fields;
}

std::vector<Fields> ReadAll(const std::string& path) {
    TextReader file;
    EXPECT_TRUE(file.Open(path));
    std::vector<Fields> records;
    Fields fields = {"left from before"};
    while (ReadCsvRecord(file, fields)) {
        records.push_back(fields);
    }
    return records;
}

TEST(CsvQuote, LeavesDigitsBare) {
    EXPECT_EQ(CsvQuote("12"), "12");
    EXPECT_EQ(CsvQuote("0"), "0");
    EXPECT_EQ(CsvQuote("007"), "007");
    EXPECT_EQ(CsvQuote("123456789012345678901234567890"), "123456789012345678901234567890");
}

TEST(CsvQuote, LeavesDigitsWithALeadingMinusBare) {
    EXPECT_EQ(CsvQuote("-3"), "-3");
}

TEST(CsvQuote, LeavesALoneMinusBare) {
    EXPECT_EQ(CsvQuote("-"), "-");
}

TEST(CsvQuote, QuotesTheEmptyText) {
    EXPECT_EQ(CsvQuote(""), "\"\"");
}

TEST(CsvQuote, QuotesEverythingElse) {
    EXPECT_EQ(CsvQuote("1.0"), "\"1.0\"");
    EXPECT_EQ(CsvQuote("--3"), "\"--3\"");
    EXPECT_EQ(CsvQuote("3-"), "\"3-\"");
    EXPECT_EQ(CsvQuote("+3"), "\"+3\"");
    EXPECT_EQ(CsvQuote(" 3"), "\" 3\"");
    EXPECT_EQ(CsvQuote("FF"), "\"FF\"");
    EXPECT_EQ(CsvQuote("a,b"), "\"a,b\"");
    EXPECT_EQ(CsvQuote("\xB2"), "\"\xB2\"");
}

TEST(CsvQuote, DoesNotEscapeADoubleQuote) {
    EXPECT_EQ(CsvQuote("a\"b"), "\"a\"b\"");
}

TEST(CsvSplitLine, SplitsAHeaderLine) {
    EXPECT_THAT(Whole("\"FileType\",\"Trace Data File\""),
                ElementsAre("FileType", "Trace Data File"));
    EXPECT_THAT(Whole("\"Version\",\"1.0\""), ElementsAre("Version", "1.0"));
}

TEST(CsvSplitLine, SplitsBareNumbers) {
    EXPECT_THAT(Whole("-12,0,0,16"), ElementsAre("-12", "0", "0", "16"));
    EXPECT_THAT(Whole("\"Trace Data\",-5,10"), ElementsAre("Trace Data", "-5", "10"));
}

TEST(CsvSplitLine, AnEmptyLineHasNoFields) {
    EXPECT_THAT(Whole(""), IsEmpty());
    EXPECT_THAT(Whole(" \t, ,\t"), IsEmpty());
}

TEST(CsvSplitLine, EmptyFieldsCountOnlyInQuotes) {
    EXPECT_THAT(Whole("1,,2"), ElementsAre("1", "2"));
    EXPECT_THAT(Whole(",1,"), ElementsAre("1"));
    EXPECT_THAT(Whole("1,\"\",2"), ElementsAre("1", "", "2"));
    EXPECT_THAT(Whole("\"\""), ElementsAre(""));
}

TEST(CsvSplitLine, SkipsBlanksAndTabsBeforeAField) {
    EXPECT_THAT(Whole("  a,\t \"b\""), ElementsAre("a", "b"));
}

TEST(CsvSplitLine, KeepsBlanksInsideAndAfterABareField) {
    EXPECT_THAT(Whole("a b ,c\t"), ElementsAre("a b ", "c\t"));
}

TEST(CsvSplitLine, KeepsCommasAndBlanksInQuotes) {
    EXPECT_THAT(Whole("\" a, b\t\""), ElementsAre(" a, b\t"));
}

TEST(CsvSplitLine, AQuoteInsideABareFieldEndsIt) {
    EXPECT_THAT(Whole("ab\"cd"), ElementsAre("ab", "cd"));
    EXPECT_THAT(Whole("ab\",cd"), ElementsAre("ab", "cd"));
}

TEST(CsvSplitLine, TheClosingQuoteEndsTheFieldAndTheRestStartsAnother) {
    EXPECT_THAT(Whole("\"a\"b,c"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Whole("\"a\" b"), ElementsAre("a", "b"));
}

TEST(CsvSplitLine, ADoubledQuoteIsNotAnEscape) {
    EXPECT_THAT(Whole("\"a\"\"b\""), ElementsAre("a", "b"));
}

TEST(CsvSplitLine, AQuoteInsideAWrittenValueSplitsIt) {
    const SplitLine split = Split(CsvQuote("a\"b"));
    EXPECT_THAT(split.fields, ElementsAre("a", "b"));
    EXPECT_FALSE(split.goesOn);
}

TEST(CsvSplitLine, KeepsBytesThatAreNotText) {
    EXPECT_THAT(Whole(std::string_view("a\0b,\xFF", 5)),
                ElementsAre(std::string("a\0b", 3), "\xFF"));
}

TEST(CsvSplitLine, ALineThatEndsInQuotesAsksForTheNext) {
    const SplitLine split = Split("\"Description\",\"first");
    EXPECT_TRUE(split.goesOn);
    EXPECT_THAT(split.fields, ElementsAre("Description", "first\r\n"));
}

TEST(CsvSplitLine, AnOpeningQuoteAtTheLineEndStartsAValue) {
    const SplitLine split = Split("1,\"");
    EXPECT_TRUE(split.goesOn);
    EXPECT_THAT(split.fields, ElementsAre("1", "\r\n"));
}

TEST(CsvSplitLine, ContinuesTheLastField) {
    const SplitLine split = Split("second\",3", {"Description", "first\r\n"});
    EXPECT_FALSE(split.goesOn);
    EXPECT_THAT(split.fields, ElementsAre("Description", "first\r\nsecond", "3"));
}

TEST(CsvSplitLine, ContinuesInQuotesSoThatCommasBelongToTheValue) {
    const SplitLine split = Split(" a, b", {"x\r\n"});
    EXPECT_TRUE(split.goesOn);
    EXPECT_THAT(split.fields, ElementsAre("x\r\n a, b\r\n"));
}

TEST(CsvSplitLine, AnEmptyLineInsideAValueIsALineBreak) {
    const SplitLine split = Split("", {"x\r\n"});
    EXPECT_TRUE(split.goesOn);
    EXPECT_THAT(split.fields, ElementsAre("x\r\n\r\n"));
}

TEST(CsvSplitLine, AnEmptyUnfinishedFieldIsContinuedToo) {
    EXPECT_THAT(Split("\",2", {""}).fields, ElementsAre("", "2"));
}

TEST(CsvSplitLine, ASecondValueMayStayOpenAfterTheFirstCloses) {
    const SplitLine split = Split("b\",\"c", {"a\r\n"});
    EXPECT_TRUE(split.goesOn);
    EXPECT_THAT(split.fields, ElementsAre("a\r\nb", "c\r\n"));
}

TEST(ReadCsvRecord, ReadsARecordForEachLine) {
    const TempDir dir;
    EXPECT_THAT(ReadAll(dir.Write("a.tra", "\"Version\",\"1.0\"\n\n1,2\r\n")),
                ElementsAre(ElementsAre("Version", "1.0"), IsEmpty(), ElementsAre("1", "2")));
}

TEST(ReadCsvRecord, JoinsTheLinesOfAValue) {
    const TempDir dir;
    const std::string path = dir.Write("a.tra", "\"Description\",\"one\ntwo\r\n\nfour\",5\n6\n");
    EXPECT_THAT(
        ReadAll(path),
        ElementsAre(ElementsAre("Description", "one\r\ntwo\r\n\r\nfour", "5"), ElementsAre("6")));
}

TEST(ReadCsvRecord, AValueWithLineBreaksIsReadBackWithCarriageReturnsAndLineFeeds) {
    const TempDir dir;
    const std::string path = dir.Write("a.tra", CsvQuote("one\ntwo") + "\n");
    EXPECT_THAT(ReadAll(path), ElementsAre(ElementsAre("one\r\ntwo")));
}

TEST(ReadCsvRecord, AValueOpenAtTheEndOfTheFileIsKept) {
    const TempDir dir;
    EXPECT_THAT(ReadAll(dir.Write("a.tra", "1,\"open\nstill")),
                ElementsAre(ElementsAre("1", "open\r\nstill\r\n")));
}

TEST(ReadCsvRecord, AnEmptyFileHasNoRecords) {
    const TempDir dir;
    EXPECT_THAT(ReadAll(dir.Write("a.tra", "")), IsEmpty());
}

/// A value with an opening quote and more than 20 MiB of lines of 1023 characters.
void WriteHugeValue(const std::string& path, std::string_view end) {
    std::ofstream file(path, std::ios::binary);
    file << "\"Description\",\"";
    const std::string line = std::string(1023, 'x') + "\n";
    for (int i = 0; i < 20 * 1024; ++i) {
        file << line;
    }
    file << end;
}

TEST(ReadCsvRecord, DropsTheRestOfAValueThatGrowsBeyondTheLongestRecord) {
    const TempDir dir;
    const std::string path = dir.File("huge.tra");
    WriteHugeValue(path, "last\",\"lost\"\n\"Version\",\"1.0\"\n");
    const std::vector<Fields> records = ReadAll(path);
    ASSERT_EQ(records.size(), 2U);
    ASSERT_EQ(records[0].size(), 2U);
    EXPECT_EQ(records[0][0], "Description");
    EXPECT_LE(records[0][1].size(), maxCsvRecord);
    EXPECT_GT(records[0][1].size(), maxCsvRecord - 2048);
    EXPECT_EQ(records[0][1].find('l'), std::string::npos);
    EXPECT_THAT(records[1], ElementsAre("Version", "1.0"));
}

TEST(ReadCsvRecord, ADroppedRecordMayOpenFurtherValuesWithoutGrowing) {
    const TempDir dir;
    const std::string path = dir.File("huge.tra");
    WriteHugeValue(path, "\",\"again\n\",1,2,\"more\nend\",3\n4\n");
    const std::vector<Fields> records = ReadAll(path);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].size(), 2U);
    EXPECT_THAT(records[1], ElementsAre("4"));
}

TEST(ReadCsvRecord, ManySmallFieldsCountWithTheMemoryThatTheyTake) {
    const TempDir dir;
    const std::string path = dir.File("fields.tra");
    {
        std::ofstream file(path, std::ios::binary);
        file << '"';
        for (int i = 0; i < 3'000'000; ++i) {
            file << "\",\"\n"; // closes a value and opens the next
        }
    }
    const std::vector<Fields> records = ReadAll(path);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_LE(records[0].size(), maxCsvRecord / sizeof(std::string));
}

} // namespace
} // namespace busquill::test
