#include "exerciser/data_file.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

Bytes Read(std::string_view text) {
    const TempDir dir;
    return ReadDataFile(dir.Write("a.dat", text)).value();
}

TEST(ReadDataFile, TakesTwoDigitsForAByteInEitherCase) {
    EXPECT_THAT(Read("00 7f fF\n"), ElementsAre(0x00, 0x7F, 0xFF));
}

TEST(ReadDataFile, CarriesAByteOverToTheNextInItsLine) {
    EXPECT_THAT(Read("1f 2"), ElementsAre(0x1F, 0xF2));
    EXPECT_THAT(Read("123"), ElementsAre(0x23));
    EXPECT_THAT(Read("00 ff 7"), ElementsAre(0x00, 0xFF, 0xF7));
    EXPECT_THAT(Read("1 2 3"), ElementsAre(0x01, 0x12, 0x23));
}

TEST(ReadDataFile, ClearsTheByteAtTheNextLine) {
    EXPECT_THAT(Read("1f\n2"), ElementsAre(0x1F, 0x02));
    EXPECT_THAT(Read("1f\r\n2\r\n"), ElementsAre(0x1F, 0x02));
    EXPECT_THAT(Read("1f\n\n\n2\n"), ElementsAre(0x1F, 0x02));
}

TEST(ReadDataFile, AnyOtherCharacterEndsAByte) {
    EXPECT_THAT(Read("01,02;03\t04\rg05"), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_THAT(Read("0x12"), ElementsAre(0x00, 0x12));
    EXPECT_THAT(Read(std::string_view("12\00034\xFF", 6)), ElementsAre(0x12, 0x34));
    EXPECT_THAT(Read("@G`g/:"), IsEmpty()) << "neighbours of the digits";
}

TEST(ReadDataFile, HasNoBytesInAFileWithoutDigits) {
    EXPECT_THAT(Read(""), IsEmpty());
    EXPECT_THAT(Read(" ,\r\n\n"), IsEmpty());
}

TEST(ReadDataFile, TakesALineOfAnyLength) {
    std::string text;
    for (int i = 0; i < 600'000; ++i) {
        text += i % 2 == 0 ? "5a " : "a5 ";
    }
    const Bytes bytes = Read(text);
    ASSERT_EQ(bytes.size(), 600'000U);
    EXPECT_EQ(bytes.front(), 0x5A);
    EXPECT_EQ(bytes.back(), 0xA5);
}

TEST(ReadDataFile, IsNothingForAFileThatCannotBeRead) {
    const TempDir dir;
    EXPECT_FALSE(ReadDataFile(dir.File("none.dat")));
    EXPECT_FALSE(ReadDataFile(dir.Path()));
}

TEST(DataFileLine, HasTwoDigitsAndABlankForEachByte) {
    EXPECT_EQ(DataFileLine(Bytes{0x00, 0x0A, 0xFF}), "00 0a ff \n");
    EXPECT_EQ(DataFileLine({}), "\n");
}

TEST(DataFile, ReadsBackWhatIsWritten) {
    std::string text;
    Bytes all;
    for (int i = 0; i < 256; ++i) {
        const Bytes line = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(255 - i), 7};
        text += DataFileLine(line);
        all.insert(all.end(), line.begin(), line.end());
    }
    EXPECT_EQ(Read(text), all);
}

} // namespace
} // namespace busquill::test
