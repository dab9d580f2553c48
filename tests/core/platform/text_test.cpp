#include "platform/text.h"

#include <gtest/gtest.h>

#include <limits>

namespace busquill::test {
namespace {

TEST(Printf, FormatsLikePrintf) {
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

TEST(ParseInt, ReadsNoFurtherThanTheText) {
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

TEST(TrimRight, RemovesWhiteSpaceAtTheEndOnly) {
    EXPECT_EQ(TrimRight(" a b \t\r\n"), " a b");
    EXPECT_EQ(TrimRight(" \n"), "");
    EXPECT_EQ(TrimRight(""), "");
}

TEST(Utf8, StaysAsItIs) {
    for (const char* text : {"", "plain", "5 \xC2\xB5s", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                             "\xED\x9F\xBF", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(ToUtf8(text), text);
    }
}

TEST(Utf8, AnythingElseIsTakenForLatin1) {
    EXPECT_EQ(ToUtf8("5 \xB5s"), "5 \xC2\xB5s");
    EXPECT_EQ(ToUtf8("\xFF"), "\xC3\xBF");
    EXPECT_EQ(ToUtf8("\xC2"), "\xC3\x82");             // cut off
    EXPECT_EQ(ToUtf8("\xC0\x80"), "\xC3\x80\xC2\x80"); // longer than necessary
    EXPECT_EQ(ToUtf8("\xE0\x80\x80").size(), 6U);
    EXPECT_EQ(ToUtf8("\xED\xA0\x80").size(), 6U); // half of a surrogate pair
    EXPECT_EQ(ToUtf8("\xF4\x90\x80\x80").size(), 8U);
    EXPECT_EQ(ToUtf8("\xC3\x41"), "\xC3\x83\x41");
}

TEST(Text, ShortensWhatIsTooLongForAMessage) {
    EXPECT_EQ(Shortened("Mem Rd"), "Mem Rd");
    EXPECT_EQ(Shortened(std::string(60, 'x')), std::string(60, 'x'));
    EXPECT_EQ(Shortened(std::string(61, 'x')), std::string(60, 'x') + "...");
    // Not inside a character.
    EXPECT_EQ(Shortened(std::string(59, 'x') + "\xC3\xA4 and more"), std::string(59, 'x') + "...");
    EXPECT_EQ(Shortened(std::string(1000, '\x80')).size(), 60U);
}

} // namespace
} // namespace busquill::test
