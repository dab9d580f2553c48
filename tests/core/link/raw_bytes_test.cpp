#include "link/raw_bytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

TEST(RawBytes, AreCutAtBlanks) {
    EXPECT_EQ(ParseRawBytes("2a"), Bytes{0x2A});
    EXPECT_EQ(ParseRawBytes("  2a   0 FF "), (Bytes{0x2A, 0, 0xFF})) << "several blanks are one";
    EXPECT_THAT(ParseRawBytes(""), IsEmpty());
    EXPECT_THAT(ParseRawBytes("   "), IsEmpty());
}

TEST(RawBytes, AreTheLowBytesOfWhatIsANumber) {
    EXPECT_EQ(ParseRawBytes("1ff"), Bytes{0xFF});
    EXPECT_EQ(ParseRawBytes("-1"), Bytes{0xFF});
    EXPECT_EQ(ParseRawBytes("0x2a"), Bytes{0x2A});
    EXPECT_EQ(ParseRawBytes("2axyz"), Bytes{0x2A});
    EXPECT_EQ(ParseRawBytes("xyz"), Bytes{0});
}

TEST(RawBytes, OfALongLineTheFirst256CharactersCount) {
    std::string text;
    for (int i = 0; i < 100; ++i) {
        text += "11 ";
    }
    const Bytes bytes = ParseRawBytes(text);
    ASSERT_EQ(bytes.size(), 86U);
    EXPECT_EQ(bytes.back(), 0x1) << "cut in its middle";
}

TEST(RawBytes, AreWrittenInLowerCase) {
    EXPECT_EQ(FormatRawBytes(Bytes{0x2A}), "2a ");
    EXPECT_EQ(FormatRawBytes(Bytes{0, 0xFF}), "00 ff ");
    EXPECT_EQ(FormatRawBytes({}), "");
}

TEST(RawLines, HaveEightBytesEach) {
    EXPECT_THAT(RawLines({}), IsEmpty());
    const Bytes bytes = {'*', 'A', 'z', ' ', '~', 0x7F, 0x00, 0xFF};
    EXPECT_THAT(RawLines(bytes), ElementsAre("2a 41 7a 20 7e 7f 00 ff    '*Az ~   '"));
}

TEST(RawLines, ALastOneIsFilledWithBlanks) {
    const Bytes bytes = {'1', '2', '3', '4', '5', '6', '7', '8', '*'};
    EXPECT_THAT(RawLines(bytes), ElementsAre("31 32 33 34 35 36 37 38    '12345678'",
                                             "2a                         '*       '"));
}

} // namespace
} // namespace busquill::test
