#include "document/hex_fields.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Address = std::array<std::uint8_t, 8>;

TEST(HexAddressText, BeginsWithTheMostSignificantByte) {
    EXPECT_EQ(HexAddressText({0x0F, 0, 0xAB, 0, 0, 0, 0, 0x12}), "1200000000ab000f");
}

TEST(ParseHexAddress, FillsTheTopBytesFirst) {
    EXPECT_EQ(ParseHexAddress("1200000000AB000f"), (Address{0x0F, 0, 0xAB, 0, 0, 0, 0, 0x12}));
    EXPECT_EQ(ParseHexAddress("12"), (Address{0, 0, 0, 0, 0, 0, 0, 0x12}));
    EXPECT_EQ(ParseHexAddress("123"), (Address{0, 0, 0, 0, 0, 0, 0, 0x12}));
    EXPECT_EQ(ParseHexAddress("1"), Address{});
    EXPECT_EQ(ParseHexAddress(""), Address{});
    EXPECT_EQ(ParseHexAddress("0102030405060708ff"), (Address{8, 7, 6, 5, 4, 3, 2, 1}));
}

TEST(ParseHexAddress, TakesFromEachPairTheNumberItBeginsWith) {
    EXPECT_EQ(ParseHexAddress("zz1z 2"), (Address{0, 0, 0, 0, 0, 0x02, 0x01, 0}));
    EXPECT_EQ(ParseHexAddress("-1"), (Address{0, 0, 0, 0, 0, 0, 0, 0xFF}));
}

TEST(ParseHexByte, TakesTheLowByte) {
    EXPECT_EQ(ParseHexByte("1a"), 0x1A);
    EXPECT_EQ(ParseHexByte("0x1A"), 0x1A);
    EXPECT_EQ(ParseHexByte("12345"), 0x45);
    EXPECT_EQ(ParseHexByte(""), 0);
    EXPECT_EQ(ParseHexByte("x"), 0);
}

} // namespace
} // namespace busquill::test
