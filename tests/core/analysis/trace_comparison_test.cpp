#include "analysis/trace_comparison.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class Comparison : public testing::Test {
protected:
    static SampleRows RowsOf(const std::vector<std::int32_t>& numbers) {
        SampleRows rows;
        for (const std::int32_t number : numbers) {
            rows.Add(number, SampleRecord());
        }
        return rows;
    }

    /// "a" where only A has a sample, "b", or "=" for both, with the number; each piece on its own.
    static std::vector<std::string> Paired(const std::vector<SampleRows>& a,
                                           const std::vector<SampleRows>& b, int originA = 0,
                                           int originB = 0) {
        SamplePairs pairs(originA, originB);
        std::size_t nextA = 0;
        std::size_t nextB = 0;
        std::vector<std::string> found;
        while (true) {
            if (pairs.NeedsA()) {
                pairs.GiveA(nextA < a.size() ? &a[nextA] : nullptr);
                ++nextA;
            }
            if (pairs.NeedsB()) {
                pairs.GiveB(nextB < b.size() ? &b[nextB] : nullptr);
                ++nextB;
            }
            const auto pair = pairs.Next();
            if (!pair) {
                return found;
            }
            const char* who = pair->a == nullptr ? "b" : pair->b == nullptr ? "a" : "=";
            found.push_back(who + std::to_string(pair->number));
        }
    }

    BoardTables board{"PCIKite-1"};
    TraceComparison comparison{board.tables};
};

TEST_F(Comparison, PairsSamplesOfTheSameNumber) {
    EXPECT_THAT(Paired({RowsOf({-2, -1}), RowsOf({0, 3})}, {RowsOf({-1, 0, 1}), RowsOf({4})}),
                ElementsAre("a-2", "=-1", "=0", "b1", "a3", "b4"));
    EXPECT_THAT(Paired({}, {}), ElementsAre());
    EXPECT_THAT(Paired({RowsOf({7})}, {}), ElementsAre("a7"));
}

TEST_F(Comparison, PairsSamplesByTheirPlace) {
    EXPECT_THAT(Paired({RowsOf({-2, -1})}, {RowsOf({10, 11, 12})}, -2, 10),
                ElementsAre("=-2", "=-1", "b12"));
}

TEST_F(Comparison, CountsAndDescribesWhatDiffers) {
    const auto one = CaptureBuilder().Write(0x1000, 0x12).Records();
    const auto other = CaptureBuilder().Write(0x1000, 0x11).Records();
    TraceComparison::Summary summary;
    comparison.Count({0, one.data(), other.data()}, summary);
    comparison.Count({1, &one[1], &other[1]}, summary);
    comparison.Count({2, nullptr, &other[1]}, summary);
    EXPECT_EQ(summary.samples, 3);
    EXPECT_EQ(summary.differing, 2);
    EXPECT_EQ(summary.first, 1);
    EXPECT_EQ(summary.onlyA, 0);
    EXPECT_EQ(summary.onlyB, 1);
    ASSERT_EQ(summary.signals.size(), 1U);
    EXPECT_EQ(comparison.Name(summary.signals.begin()->first), "AD[63:0]");
    const auto& differences = comparison.DifferencesOf({1, &one[1], &other[1]});
    ASSERT_EQ(differences.size(), 1U);
    EXPECT_EQ(differences[0].signal, "AD[63:0]");
    EXPECT_THAT(differences[0].a, testing::EndsWith("12"));
    EXPECT_THAT(differences[0].b, testing::EndsWith("11"));
    EXPECT_EQ(comparison.DifferencesOf({2, nullptr, &other[1]}).front().a, "missing");
}

TEST_F(Comparison, ASignalMayBeLeftOut) {
    const auto one = CaptureBuilder().Write(0x1000, 0x12).Records();
    const auto other = CaptureBuilder().Write(0x1000, 0x11).Records();
    EXPECT_EQ(comparison.Ignore("AD[7:0]"), "");
    EXPECT_TRUE(comparison.DifferencesOf({1, &one[1], &other[1]}).empty());
    EXPECT_THAT(comparison.Ignore("NOPE"), StartsWith("no signal \"NOPE\""));
}

} // namespace
} // namespace busquill::test
