#include "exerciser/bus_address.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

constexpr BusAddress ones = {255, 255, 255, 255, 255, 255, 255, 255};

TEST(AddToAddress, CarriesFromByteToByte) {
    BusAddress address = {0xF0, 0xFF, 0xFF, 0, 0, 0, 0, 0x80};
    AddToAddress(0x20, address);
    EXPECT_EQ(address, (BusAddress{0x10, 0, 0, 1, 0, 0, 0, 0x80}));
    AddToAddress(0x01020304, address);
    EXPECT_EQ(address, (BusAddress{0x14, 3, 2, 2, 0, 0, 0, 0x80}));
}

TEST(AddToAddress, LosesTheCarryOutOfTheTopByte) {
    BusAddress address = ones;
    AddToAddress(1, address);
    EXPECT_EQ(address, BusAddress{});
}

TEST(StepLength, IsOneForEqualAddresses) {
    EXPECT_EQ(StepLength({}, {}, 32), (RangeStep{1, false}));
    EXPECT_EQ(StepLength(ones, ones, 248), (RangeStep{1, false}));
}

TEST(StepLength, IsExhaustedOnceTheEndLiesBelow) {
    EXPECT_EQ(StepLength({1}, {0}, 32), (RangeStep{0, true}));
    EXPECT_EQ(StepLength({0, 1}, {0xFF}, 32), (RangeStep{0, true}));
    EXPECT_EQ(StepLength(ones, {}, 32), (RangeStep{0, true}));
}

TEST(StepLength, IsTheRestUpToTheLimit) {
    EXPECT_EQ(StepLength({0}, {30}, 32).length, 31);
    EXPECT_EQ(StepLength({0}, {31}, 32).length, 32);
    EXPECT_EQ(StepLength({0}, {32}, 32).length, 32);
    EXPECT_EQ(StepLength({32}, {32}, 32).length, 1);
    EXPECT_EQ(StepLength({0}, {248}, 248).length, 248);
    EXPECT_EQ(StepLength({248}, {248}, 248).length, 1);
    EXPECT_EQ(StepLength({0}, {0xFE}, 255).length, 255);
}

TEST(StepLength, IsTheLimitWhenAnyHigherByteIsSet) {
    for (std::size_t byte = 1; byte < 8; ++byte) {
        BusAddress end{};
        end[byte] = 1;
        EXPECT_EQ(StepLength({}, end, 32), (RangeStep{32, false})) << byte;
    }
    EXPECT_EQ(StepLength({}, {0xFF}, 32).length, 32) << "256 bytes: the low byte is 0";
}

TEST(StepLength, OfTheWholeRangeIsZeroButNotExhausted) {
    EXPECT_EQ(StepLength({}, ones, 32), (RangeStep{0, false}));
}

TEST(StepLength, BorrowsAcrossBytes) {
    EXPECT_EQ(StepLength({0xF8, 0xFF}, {0x07, 0, 1}, 32), (RangeStep{16, false}));
}

TEST(RangeLength, CountsBothEnds) {
    EXPECT_EQ(RangeLength({5}, {5}), 1U);
    EXPECT_EQ(RangeLength({0, 0x10}, {0xFF, 0x1F}), 0x1000U);
    EXPECT_EQ(RangeLength({1}, {0}), 0U);
    EXPECT_EQ(RangeLength({2}, {0}), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(RangeLength({}, ones), 0U);
}

TEST(LowAddress, IsTheLowHalf) {
    EXPECT_EQ(LowAddress({0x78, 0x56, 0x34, 0x92, 1, 2, 3, 4}), 0x92345678U);
}

} // namespace
} // namespace busquill::test
