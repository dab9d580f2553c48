#include "signals/signal_changes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace busquill::test {
namespace {

TEST(NextBitChange, FindsTheNextDifferentBit) {
    const std::vector<std::uint32_t> words = {0x0000'00F0, 0, 0xFFFF'FFFF, 0x8000'0000};
    EXPECT_EQ(NextBitChange(words, 0, 128), 4U);
    EXPECT_EQ(NextBitChange(words, 4, 128), 8U);
    EXPECT_EQ(NextBitChange(words, 8, 128), 64U) << "skips a word of equal bits";
    EXPECT_EQ(NextBitChange(words, 64, 128), 96U);
    EXPECT_EQ(NextBitChange(words, 96, 128), 127U);
    EXPECT_EQ(NextBitChange(words, 127, 128), 128U);
}

TEST(NextBitChange, StopsAtTheEnd) {
    const std::vector<std::uint32_t> words = {0x0000'00F0, 0};
    EXPECT_EQ(NextBitChange(words, 0, 4), 4U);
    EXPECT_EQ(NextBitChange(words, 0, 3), 3U);
    EXPECT_EQ(NextBitChange(words, 8, 64), 64U);
    EXPECT_EQ(NextBitChange(words, 8, 100), 100U) << "after the words nothing changes";
    EXPECT_EQ(NextBitChange({}, 0, 10), 10U);
}

TEST(NextRowChange, FindsTheNextDifferentValue) {
    const std::vector<std::uint8_t> rows = {1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 9, 3, 1, 9, 3};
    EXPECT_EQ(NextRowChange(rows, 3, 0, 5), 3U);
    EXPECT_EQ(NextRowChange(rows, 3, 3, 5), 5U);
    EXPECT_EQ(NextRowChange(rows, 3, 0, 3), 3U);
    EXPECT_EQ(NextRowChange(rows, 3, 0, 2), 2U);
    EXPECT_EQ(NextRowChange(rows, 3, 4, 9), 9U) << "after the rows nothing changes";
    EXPECT_EQ(NextRowChange(rows, 0, 0, 9), 9U) << "a signal without values";
}

TEST(SignalChanges, AgreeWithALoopOverAllSamples) {
    constexpr unsigned seed = 20;
    std::mt19937 random(seed);
    for (int round = 0; round < 200; ++round) {
        const std::size_t rowBytes = 1 + random() % 9;
        const std::size_t count = 1 + random() % 300;
        const unsigned rarity = 1 + random() % 40;
        std::vector<std::uint8_t> rows(rowBytes * count);
        std::vector<std::uint32_t> words((count + 31) / 32);
        for (std::size_t i = 0; i < count; ++i) {
            const bool changes = i > 0 && random() % rarity == 0;
            for (std::size_t byte = 0; byte < rowBytes; ++byte) {
                rows[i * rowBytes + byte] = i == 0 ? 0 : rows[(i - 1) * rowBytes + byte];
            }
            rows[i * rowBytes + random() % rowBytes] ^= changes ? 0x10 : 0;
            const bool before = i > 0 && (words[(i - 1) / 32] >> ((i - 1) % 32) & 1) != 0;
            words[i / 32] |= (before != changes ? 1U : 0U) << (i % 32);
        }
        const std::size_t from = random() % count;
        const std::size_t end = from + random() % (count - from + 1);
        const auto walk = [&](auto same) {
            std::size_t at = from + 1;
            while (at < end && same(at)) {
                ++at;
            }
            return std::min(at, end);
        };
        const auto bit = [&](std::size_t i) { return words[i / 32] >> (i % 32) & 1; };
        EXPECT_EQ(NextBitChange(words, from, end),
                  walk([&](std::size_t i) { return bit(i) == bit(from); }))
            << "seed " << seed << " round " << round;
        EXPECT_EQ(NextRowChange(rows, rowBytes, from, end), walk([&](std::size_t i) {
                      return std::equal(&rows[i * rowBytes], &rows[i * rowBytes] + rowBytes,
                                        &rows[from * rowBytes]);
                  }))
            << "seed " << seed << " round " << round;
    }
}

} // namespace
} // namespace busquill::test
