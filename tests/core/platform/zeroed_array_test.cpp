#include "platform/zeroed_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace busquill::test {
namespace {

using Words = ZeroedArray<std::uint32_t>;

TEST(ZeroedArrays, BeginWithZeros) {
    Words words;
    EXPECT_TRUE(words.empty());
    words.Reset(3);
    EXPECT_EQ(words, (Words{0, 0, 0}));
    words[1] = 7;
    words.Reset(3);
    EXPECT_EQ(words, (Words{0, 0, 0}));
    words.Reset(0);
    EXPECT_EQ(words, Words());
}

TEST(ZeroedArrays, HaveValueSemantics) {
    Words words = std::vector<std::uint32_t>{1, 2, 3};
    Words copy = words;
    copy[0] = 9;
    EXPECT_EQ(words, (std::vector<std::uint32_t>{1, 2, 3}));
    EXPECT_EQ(copy, (std::vector<std::uint32_t>{9, 2, 3}));
    const Words moved = std::move(copy);
    EXPECT_EQ(moved.size(), 3U);
    EXPECT_EQ(moved.front(), 9U);
    words = moved;
    const Words& itself = words;
    words = itself;
    EXPECT_EQ(words, moved);
    words.clear();
    EXPECT_NE(words, moved);
}

} // namespace
} // namespace busquill::test
