#include "analysis/found_rows.h"
#include "platform/bits.h"

#include <gtest/gtest.h>

#include <random>

namespace busquill {

// How a failed test prints it.
inline void PrintTo(const FoundRows::Row& row, std::ostream* out) {
    *out << (row.isHit ? "hit " : "finding ") << row.sample;
}

namespace test {
namespace {

/// A bit for each of these samples.
std::vector<std::uint32_t> WordsOf(std::initializer_list<std::size_t> samples,
                                   std::size_t count = 200) {
    Bits bits(count);
    for (const std::size_t sample : samples) {
        bits.Set(sample);
    }
    return {bits.Words().begin(), bits.Words().end()};
}

std::vector<FoundRows::Row> AllOf(const FoundRows& rows) {
    std::vector<FoundRows::Row> all;
    for (std::size_t row = 0; row < rows.Size(); ++row) {
        all.push_back(rows.At(row));
    }
    return all;
}

using Rows = std::vector<FoundRows::Row>;

TEST(FoundRowLists, AreEmptyWithoutAnything) {
    EXPECT_EQ(FoundRows().Size(), 0U);
    EXPECT_EQ(FoundRows({}, {}).Size(), 0U);
    EXPECT_EQ(FoundRows(WordsOf({}), WordsOf({})).Size(), 0U);
    EXPECT_EQ(FoundRows().Find({0, false}), std::nullopt);
    EXPECT_EQ(FoundRows().CountBefore(5), 0U);
}

TEST(FoundRowLists, AreInTheOrderOfTheCaptureWithTheFindingOfASampleFirst) {
    const FoundRows rows(WordsOf({3, 40}), WordsOf({0, 3, 199}));
    EXPECT_EQ(AllOf(rows), (Rows{{0, true}, {3, false}, {3, true}, {40, false}, {199, true}}));
    EXPECT_EQ(rows.Find({3, true}), 2U);
    EXPECT_EQ(rows.Find({3, false}), 1U);
    EXPECT_EQ(rows.Find({40, true}), std::nullopt);
    EXPECT_EQ(rows.CountBefore(4), 3U);
    EXPECT_EQ(rows.CountBefore(3), 1U);
    EXPECT_EQ(rows.CountBefore(5000), 5U);
}

TEST(FoundRowLists, MayHaveOneKindOnly) {
    EXPECT_EQ(AllOf(FoundRows(WordsOf({3, 40}), {})), (Rows{{3, false}, {40, false}}));
    EXPECT_EQ(AllOf(FoundRows({}, WordsOf({3, 40}))), (Rows{{3, true}, {40, true}}));
}

TEST(FoundRowLists, LeaveOutSamplesThatAreNotShown) {
    const FoundRows rows(WordsOf({3, 40}), WordsOf({0, 3, 199}), WordsOf({3, 100}));
    EXPECT_EQ(AllOf(rows), (Rows{{3, false}, {3, true}}));
    EXPECT_EQ(FoundRows(WordsOf({3, 40}), {}, {}).Size(), 0U);
}

TEST(FoundRowLists, EveryRowIsFoundAgainInALongCapture) {
    std::mt19937 random(42);
    std::vector<std::uint32_t> findings(5000);
    std::vector<std::uint32_t> hits(5000);
    for (std::size_t word = 0; word < 5000; ++word) {
        findings[word] = random() % 7 == 0 ? static_cast<std::uint32_t>(random()) : 0;
        hits[word] = word > 2000 && word < 3000 ? 0 : static_cast<std::uint32_t>(random());
    }
    const FoundRows rows(findings, hits);
    ASSERT_EQ(rows.Size(), CountBits(findings) + CountBits(hits));
    FoundRows::Row last{0, false};
    for (std::size_t row = 0; row < rows.Size(); ++row) {
        const FoundRows::Row at = rows.At(row);
        ASSERT_TRUE(TestBit(at.isHit ? hits : findings, at.sample)) << row;
        ASSERT_EQ(rows.Find(at), row);
        ASSERT_TRUE(row == 0 || at.sample > last.sample ||
                    (at.sample == last.sample && at.isHit && !last.isHit))
            << row;
        last = at;
    }
}

} // namespace
} // namespace test
} // namespace busquill
