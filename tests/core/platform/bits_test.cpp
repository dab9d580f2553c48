#include "platform/bits.h"

#include <gtest/gtest.h>

#include <array>

namespace busquill {
namespace {

template <typename Word>
std::vector<std::size_t> PlacesIn(Word word) {
    std::vector<std::size_t> places;
    for (const std::size_t bit : EachSetBit(word)) {
        places.push_back(bit);
    }
    return places;
}

std::vector<std::size_t> PlacesIn(const Bits& bits) {
    std::vector<std::size_t> places;
    bits.ForEachSet([&](std::size_t bit) { places.push_back(bit); });
    return places;
}

using Places = std::vector<std::size_t>;
using Words = std::vector<std::uint32_t>;

TEST(WordBits, WordsAndBytesAreJustEnoughForTheBits) {
    EXPECT_EQ(WordsFor(0), 0U);
    EXPECT_EQ(WordsFor(1), 1U);
    EXPECT_EQ(WordsFor(32), 1U);
    EXPECT_EQ(WordsFor(33), 2U);
    EXPECT_EQ(WordsFor(0xFFFFFFFF), 0x8000000U);
    EXPECT_EQ(BytesFor(0), 0U);
    EXPECT_EQ(BytesFor(1), 1U);
    EXPECT_EQ(BytesFor(8), 1U);
    EXPECT_EQ(BytesFor(9), 2U);
}

TEST(WordBits, ABitIsFoundInWordsOfAnyWidth) {
    const std::array<std::uint8_t, 2> bytes = {0x80, 0x01};
    EXPECT_FALSE(TestBit(bytes, 6));
    EXPECT_TRUE(TestBit(bytes, 7));
    EXPECT_TRUE(TestBit(bytes, 8));
    EXPECT_FALSE(TestBit(bytes, 9));
    const Words words = {0x80000000, 0x00000001};
    EXPECT_FALSE(TestBit(words, 30));
    EXPECT_TRUE(TestBit(words, 31));
    EXPECT_TRUE(TestBit(words, 32));
    EXPECT_FALSE(TestBit(words, 33));
    const std::array<std::uint64_t, 2> wide = {0x8000000000000000, 1};
    EXPECT_TRUE(TestBit(wide, 63));
    EXPECT_TRUE(TestBit(wide, 64));
    EXPECT_FALSE(TestBit(wide, 65));
}

TEST(WordBits, SettingAndClearingABitLeavesItsNeighbours) {
    Words words = {0, 0};
    SetBit(words, 31);
    SetBit(words, 32);
    EXPECT_EQ(words, (Words{0x80000000, 0x00000001}));
    words = {~0U, ~0U};
    UnsetBit(words, 31);
    AssignBit(words, 32, false);
    EXPECT_EQ(words, (Words{0x7FFFFFFF, 0xFFFFFFFE}));
    std::array<std::uint64_t, 2> wide{};
    SetBit(wide, 40);
    SetBit(wide, 127);
    EXPECT_EQ(wide, (std::array<std::uint64_t, 2>{std::uint64_t{1} << 40, std::uint64_t{1} << 63}));
    std::array<std::uint8_t, 2> bytes{};
    AssignBit(std::span(bytes), 15, true);
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 2>{0x00, 0x80}));
}

TEST(WordBits, AfterTheEndABitIsUnsetAndCannotBeSet) {
    Words words = {~0U, ~0U};
    EXPECT_FALSE(TestBit(words, 64));
    EXPECT_FALSE(TestBit(words, static_cast<std::size_t>(-1)));
    EXPECT_FALSE(TestBit(Words(), 0));
    UnsetBit(std::span(words).first(1), 32);
    SetBit(std::span<std::uint32_t>(), 0);
    EXPECT_EQ(words, (Words{~0U, ~0U}));
}

TEST(WordBits, LowBitsHaveTheWidthOfTheWord) {
    EXPECT_EQ(LowBits<std::uint32_t>(0), 0U);
    EXPECT_EQ(LowBits<std::uint32_t>(31), 0x7FFFFFFFU);
    EXPECT_EQ(LowBits<std::uint32_t>(32), 0xFFFFFFFFU);
    EXPECT_EQ(LowBits<std::uint32_t>(99), 0xFFFFFFFFU);
    EXPECT_EQ(LowBits<std::uint8_t>(3), 0x07);
    EXPECT_EQ(LowBits<std::uint8_t>(8), 0xFF);
    EXPECT_EQ(LowBits<std::uint64_t>(63), 0x7FFFFFFFFFFFFFFFU);
    EXPECT_EQ(LowBits<std::uint64_t>(64), 0xFFFFFFFFFFFFFFFFU);
}

TEST(WordBits, SetBitsAreVisitedInAscendingOrder) {
    EXPECT_EQ(PlacesIn(0U), Places());
    EXPECT_EQ(PlacesIn(0x80000001U), (Places{0, 31}));
    EXPECT_EQ(PlacesIn(std::uint8_t{0x82}), (Places{1, 7}));
    EXPECT_EQ(PlacesIn(std::uint64_t{0x8000000100000000}), (Places{32, 63}));
}

TEST(WordBits, FirstUnsetBeginsAtAGivenBit) {
    const Words words = {0xFFFFFFFF, 0x00000003};
    EXPECT_EQ(FirstUnset(words), 34U);
    EXPECT_EQ(FirstUnset(words, 33), 34U);
    EXPECT_EQ(FirstUnset(words, 40), 40U);
    EXPECT_EQ(FirstUnset(words, 63), 63U);
    EXPECT_EQ(FirstUnset(words, 64), 64U);
    EXPECT_EQ(FirstUnset(Words{0x7FFFFFFF, 0}), 31U);
    EXPECT_EQ(FirstUnset(Words{~0U}), 32U);
    EXPECT_EQ(FirstUnset({}), 0U);
}

TEST(WordBits, BitsAreCountedOverAllWords) {
    EXPECT_EQ(CountBits({}), 0U);
    EXPECT_EQ(CountBits(Words{0x80000001, 0, ~0U}), 34U);
}

TEST(WordBits, ANumberIsReadFromAnyPositionInBytes) {
    const std::array<std::uint8_t, 10> bytes = {0x21, 0x43, 0x65, 0x87, 0xA9,
                                                0xCB, 0xED, 0x0F, 0x32, 0x54};
    EXPECT_EQ(BitsAt(bytes, 0, 4), 0x1U);
    EXPECT_EQ(BitsAt(bytes, 4, 12), 0x432U);
    EXPECT_EQ(BitsAt(bytes, 7, 2), 0x2U);
    EXPECT_EQ(BitsAt(bytes, 0, 64), 0x0FEDCBA987654321U);
    EXPECT_EQ(BitsAt(bytes, 4, 64), 0x20FEDCBA98765432U);
    EXPECT_EQ(BitsAt(bytes, 16, 64), 0x54320FEDCBA98765U);
    EXPECT_EQ(BitsAt(bytes, 3, 0), 0U);
}

TEST(WordBits, BitsOfANumberAfterTheEndAreZero) {
    const std::array<std::uint8_t, 2> bytes = {0xFF, 0xFF};
    EXPECT_EQ(BitsAt(bytes, 12, 8), 0xFU);
    EXPECT_EQ(BitsAt(bytes, 16, 8), 0U);
    EXPECT_EQ(BitsAt({}, 0, 8), 0U);
}

TEST(Bits, HaveOneValueAtFirst) {
    EXPECT_EQ(Bits().Size(), 0U);
    EXPECT_EQ(Bits(40).Count(), 0U);
    EXPECT_EQ(Bits(40, true).Count(), 40U);
    EXPECT_EQ(Bits(64, true).Count(), 64U);
}

TEST(Bits, AreSetAndUnsetOneByOne) {
    Bits bits(33);
    bits.Set(31);
    bits.Set(32);
    EXPECT_EQ(PlacesIn(bits), (Places{31, 32}));
    EXPECT_FALSE(bits.Test(30));
    EXPECT_TRUE(bits.Test(31));
    EXPECT_TRUE(bits.Test(32));
    bits.Unset(31);
    bits.Assign(0, true);
    EXPECT_EQ(PlacesIn(bits), (Places{0, 32}));
}

TEST(Bits, AfterTheEndAreUnsetAndCannotBeSet) {
    Bits bits(33, true);
    EXPECT_FALSE(bits.Test(33));
    EXPECT_FALSE(bits.Test(1000));
    bits.Set(33);
    bits.Set(1000);
    bits.AssignIn(30, 1000, true);
    EXPECT_EQ(bits, Bits(33, true));
    EXPECT_EQ(bits.Words()[1], 1U);
    EXPECT_FALSE(Bits().Test(0));
}

TEST(Bits, ARunIsAssignedAndCountedAcrossWords) {
    Bits bits(100);
    bits.AssignIn(31, 65, true);
    EXPECT_EQ(bits.Words()[0], 0x80000000U);
    EXPECT_EQ(bits.Words()[1], 0xFFFFFFFFU);
    EXPECT_EQ(bits.Words()[2], 0x00000001U);
    EXPECT_EQ(bits.CountIn(0, 31), 0U);
    EXPECT_EQ(bits.CountIn(0, 32), 1U);
    EXPECT_EQ(bits.CountIn(32, 64), 32U);
    EXPECT_EQ(bits.CountIn(40, 50), 10U);
    EXPECT_EQ(bits.CountIn(60, 1000), 5U);
    EXPECT_EQ(bits.CountIn(50, 40), 0U);
    bits.AssignIn(33, 64, false);
    EXPECT_EQ(PlacesIn(bits), (Places{31, 32, 64}));
}

TEST(Bits, FirstUnsetIsTheSizeWhereAllAreSet) {
    Bits bits(40, true);
    EXPECT_EQ(bits.FirstUnset(), 40U);
    bits.Unset(31);
    bits.Unset(39);
    EXPECT_EQ(bits.FirstUnset(), 31U);
    EXPECT_EQ(bits.FirstUnset(32), 39U);
    EXPECT_EQ(bits.FirstUnset(40), 40U);
    EXPECT_EQ(Bits(32, true).FirstUnset(), 32U);
    EXPECT_EQ(Bits().FirstUnset(), 0U);
}

TEST(Bits, ResizingKeepsTheBitsThatFit) {
    Bits bits(40, true);
    bits.Resize(33);
    bits.Resize(70);
    EXPECT_EQ(bits.Count(), 33U);
    EXPECT_EQ(bits.FirstUnset(), 33U);
    bits.Reset(5);
    EXPECT_EQ(bits, Bits(5));
}

} // namespace
} // namespace busquill
