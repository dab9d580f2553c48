#include "ui/performance/graph_geometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace busquill::test {
namespace {

constexpr PerformanceScale percent{0, 10, 11};
constexpr PerformanceScale thousand{0, 100, 11};

/// The plot is 444 pixels wide and 376 high.
constexpr GraphGeometry usual{{475, 420}, 27, percent};

TEST(GraphGeometry, ThePlotLeavesRoomForLabelsTitleAndLetters) {
    const PlotArea plot = usual.Plot();
    EXPECT_EQ(plot.left, 31);
    EXPECT_EQ(plot.top, 20);
    EXPECT_EQ(plot.right, 475);
    EXPECT_EQ(plot.bottom, 396);
    EXPECT_EQ(usual.TitleRect(), QRect(0, 0, 475, 20));
    EXPECT_FALSE(plot.IsEmpty());
    EXPECT_TRUE((GraphGeometry{{475, 44}, 27, percent}.Plot().IsEmpty()));
    EXPECT_FALSE((GraphGeometry{{475, 45}, 27, percent}.Plot().IsEmpty()));
    EXPECT_TRUE((GraphGeometry{{31, 420}, 27, percent}.Plot().IsEmpty()));
}

TEST(GraphGeometry, TicksDivideTheAxisFromTheBottomUp) {
    // 376 * k / 10, cut to whole pixels.
    constexpr int expected[] = {396, 359, 321, 284, 246, 208, 171, 133, 96, 58, 20};
    for (int k = 0; k < 11; ++k) {
        EXPECT_EQ(usual.TickY(k), expected[k]) << k;
        EXPECT_EQ(usual.TickValue(k), 10 * k);
    }
    EXPECT_EQ((GraphGeometry{{475, 420}, 27, {5, 3, 4}}.TickValue(3)), 14);
}

TEST(GraphGeometry, LabelsStandLeftOfTheirTicks) {
    EXPECT_EQ(usual.LabelRect(0), QRect(-1, 389, 27, 14));
    EXPECT_EQ(usual.LabelRect(10), QRect(-1, 13, 27, 14));
}

TEST(GraphGeometry, TheUnitStandsOverTheTopLabel) {
    EXPECT_EQ(usual.UnitRect(11), QRect(15, -1, 11, 14));
    EXPECT_EQ(usual.UnitRect(37), QRect(0, -1, 37, 14)) << "too wide for the column";
}

TEST(GraphGeometry, LabelsOfALowGraphDoNotTouch) {
    const auto step = [](int plotHeight) {
        return GraphGeometry{{475, plotHeight + 44}, 27, thousand}.LabelStep();
    };
    EXPECT_EQ(step(376), 1);
    EXPECT_EQ(step(110), 1);
    EXPECT_EQ(step(109), 2);
    EXPECT_EQ(step(54), 5);
    EXPECT_EQ(step(21), 10);
    EXPECT_EQ(step(1), 10);
    EXPECT_EQ((GraphGeometry{{475, 60}, 27, {0, 1, 2}}.LabelStep()), 1);
}

TEST(GraphGeometry, AValueStaysBetweenTitleAndBottomLine) {
    constexpr std::pair<std::int64_t, int> table[] = {
        {0, 395}, // not on the line
        {1, 393}, // 396 - 3.76
        {50, 208},
        {99, 24},
        {100, 20},
        {101, 20}, // clamped
        {-1, 395},
        {std::numeric_limits<std::int32_t>::max(), 20},
        {std::numeric_limits<std::int32_t>::min(), 395},
    };
    for (const auto& [value, y] : table) {
        EXPECT_EQ(usual.ValueY(value), y) << value;
    }
    EXPECT_EQ((GraphGeometry{{475, 420}, 27, {0, 0, 11}}.ValueY(5)), 395) << "no scale";
    EXPECT_EQ((GraphGeometry{{475, 420}, 27, thousand}.ValueY(50)), 378);
}

TEST(GraphGeometry, APageHasThirtyPlaces) {
    EXPECT_EQ(usual.TimeX(0), 31);
    EXPECT_EQ(usual.TimeX(1), 45);   // 14.8
    EXPECT_EQ(usual.TimeX(2), 60);   // 29.6
    EXPECT_EQ(usual.TimeX(29), 460); // 429.2
    EXPECT_EQ(usual.TimeX(30), 475);
    EXPECT_EQ(usual.ScrollBarRect(), QRect(31, 406, 444, 14));
}

TEST(GraphGeometry, LettersStandUnderTheirItems) {
    EXPECT_EQ(usual.ItemX(0), 80);  // 49.3
    EXPECT_EQ(usual.ItemX(1), 129); // 98.7
    EXPECT_EQ(usual.ItemX(7), 425); // 394.7
    EXPECT_EQ(usual.LetterRect(0), QRect(72, 397, 16, 15));
}

TEST(GraphGeometry, TheCircleIsTheLargestInThePlot) {
    EXPECT_EQ(usual.CircleRect(), QRect(65, 20, 376, 376));
    EXPECT_EQ((GraphGeometry{{131, 420}, 27, percent}.CircleRect()), QRect(31, 158, 100, 100));
}

} // namespace
} // namespace busquill::test
