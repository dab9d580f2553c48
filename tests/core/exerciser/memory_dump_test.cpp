#include "exerciser/memory_dump.h"
#include "exerciser/read_memory.h"

#include <gtest/gtest.h>

#include <vector>

namespace busquill::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(DumpBytesPerRow, TakesFourCharactersForEachByteBesidesTwelve) {
    EXPECT_EQ(DumpBytesPerRow(760, 10), 16);
    EXPECT_EQ(DumpBytesPerRow(759, 10), 15);
    EXPECT_EQ(DumpBytesPerRow(160, 10), 1);
    EXPECT_EQ(DumpBytesPerRow(159, 10), 0);
}

TEST(DumpBytesPerRow, IsZeroInANarrowWindow) {
    EXPECT_EQ(DumpBytesPerRow(120, 10), 0);
    EXPECT_EQ(DumpBytesPerRow(0, 10), 0);
    EXPECT_EQ(DumpBytesPerRow(0, 0), 0);
}

TEST(DumpRowText, ShowsAddressBytesAndCharacters) {
    EXPECT_EQ(DumpRowText(0x1000, 0, 4, Bytes{0x41, 0x00, 0x7E, 0xFF}),
              " 00001000  41 00 7e ff  A.~.");
}

TEST(DumpRowText, AdvancesTheAddressByRowsAndWrapsIt) {
    EXPECT_EQ(DumpRowText(0x1000, 3, 4, {}), " 0000100c               ");
    EXPECT_EQ(DumpRowText(0xFFFFFFFF, 1, 1, {}), " 00000000      ");
}

TEST(DumpRowText, FillsMissingBytesWithBlanks) {
    EXPECT_EQ(DumpRowText(0, 0, 4, Bytes{0x30, 0x31}), " 00000000  30 31        01");
}

TEST(DumpRowText, ShowsTheAddressAloneWithoutRoomForBytes) {
    EXPECT_EQ(DumpRowText(0xABCDEF, 999, 0, {}), " 00abcdef   ");
}

TEST(DumpRowText, ShowsABlankButNoControlCharacter) {
    EXPECT_EQ(DumpRowText(0, 0, 5, Bytes{0x7F, 0x20, 0x1F, 0x21, 0x80}),
              " 00000000  7f 20 1f 21 80  . .!.");
}

TEST(DumpRowBytes, AreThoseOfTheRow) {
    const Bytes memory = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    const auto row = [&](int index, int perRow) {
        const auto bytes = DumpRowBytes(memory, index, perRow);
        return Bytes(bytes.begin(), bytes.end());
    };
    EXPECT_EQ(row(0, 4), (Bytes{0, 1, 2, 3}));
    EXPECT_EQ(row(1, 4), (Bytes{4, 5, 6, 7}));
    EXPECT_EQ(row(2, 4), (Bytes{8}));
    EXPECT_EQ(row(3, 4), Bytes{});
    EXPECT_EQ(row(999, 0), Bytes{});
    EXPECT_EQ(row(0, 9), memory);
}

TEST(DemoDumpByte, ScalesARandomNumber) {
    EXPECT_EQ(DemoDumpByte(0), 0);
    EXPECT_EQ(DemoDumpByte(128), 0);
    EXPECT_EQ(DemoDumpByte(129), 1);
    EXPECT_EQ(DemoDumpByte(16384), 127);
    EXPECT_EQ(DemoDumpByte(32766), 254);
    EXPECT_EQ(DemoDumpByte(32767), 255);
}

TEST(ReadMemory, TestsEachStepAgainstTheLimitByItself) {
    ReadMemory memory(7);
    EXPECT_EQ(memory.BaseAddress(), 7U);
    EXPECT_TRUE(memory.Add(Bytes(199'990, 1)));
    EXPECT_FALSE(memory.Add(Bytes(11, 2)));
    EXPECT_TRUE(memory.Add(Bytes(10, 3)));
    EXPECT_FALSE(memory.Add(Bytes(1, 4)));
    ASSERT_EQ(memory.Bytes().size(), 200'000U);
    EXPECT_EQ(memory.Bytes()[199'989], 1);
    EXPECT_EQ(memory.Bytes()[199'990], 3);
}

} // namespace
} // namespace busquill::test
