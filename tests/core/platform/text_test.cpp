#include "platform/text.h"

#include <gtest/gtest.h>

#include <limits>

namespace busquill::test {
namespace {

TEST(Printf, ComposesWhatPrintfPrints) {
    EXPECT_EQ(Printf("Error writing to %s, err %d", "COM1", 5), "Error writing to COM1, err 5");
    EXPECT_EQ(Printf("%02x ", 0x2A), "2a ");
    EXPECT_EQ(Printf("%d%%", 100), "100%");
    EXPECT_EQ(Printf("%s", ""), "");
}

TEST(Printf, HasNoLengthLimit) {
    const std::string longText(100'000, 'x');
    EXPECT_EQ(Printf("<%s>", longText.c_str()), "<" + longText + ">");
}

TEST(ParseInt, ReadsTheLeadingNumber) {
    const struct {
        std::string_view text;
        int value;
    } rows[] = {
        {"12", 12},    {"-3", -3}, {"+7", 7},   {"  42", 42}, {"\t\r\n\v\f8", 8},
        {"12abc", 12}, {"1.9", 1}, {"0x10", 0}, {"007", 7},   {"1 2", 1},
        {"", 0},       {"abc", 0}, {"-", 0},    {"+", 0},     {"--3", 0},
        {"+-3", 0},    {"- 3", 0}, {"   ", 0},  {"-0", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ParseInt(row.text), row.value) << row.text;
    }
}

TEST(ParseInt, ANumberOutOfRangeBecomesTheNearestLimit) {
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    EXPECT_EQ(ParseInt("2147483647"), highest);
    EXPECT_EQ(ParseInt("2147483648"), highest);
    EXPECT_EQ(ParseInt("99999999999999999999999999"), highest);
    EXPECT_EQ(ParseInt("-2147483648"), lowest);
    EXPECT_EQ(ParseInt("-2147483649"), lowest);
    EXPECT_EQ(ParseInt("-99999999999999999999999999"), lowest);
}

TEST(ParseInt, ReadsNoFurtherThanTheTextGoes) {
    EXPECT_EQ(ParseInt(std::string_view("12345").substr(0, 2)), 12);
    EXPECT_EQ(ParseInt(std::string_view("1\0002", 3)), 1);
}

TEST(ToLower, ChangesOnlyTheLettersAToZ) {
    EXPECT_EQ(ToLower("AZaz@[`{ 09"), "azaz@[`{ 09");
    EXPECT_EQ(ToLower("\xC3\x84"), "\xC3\x84");
}

TEST(EqualIgnoringCase, ComparesWithoutRegardToCase) {
    EXPECT_TRUE(EqualIgnoringCase(".TRA", ".tra"));
    EXPECT_TRUE(EqualIgnoringCase("", ""));
    EXPECT_FALSE(EqualIgnoringCase("ab", "abc"));
    EXPECT_FALSE(EqualIgnoringCase("abc", "ab"));
    EXPECT_FALSE(EqualIgnoringCase("[", "{"));
}

TEST(TrimRight, TakesWhiteSpaceOffTheEndOnly) {
    EXPECT_EQ(TrimRight(" a b \t\r\n"), " a b");
    EXPECT_EQ(TrimRight(" \n"), "");
    EXPECT_EQ(TrimRight(""), "");
}

} // namespace
} // namespace busquill::test
