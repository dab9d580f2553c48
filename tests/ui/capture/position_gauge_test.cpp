#include "ui/capture/position_gauge.h"

#include <QApplication>
#include <QImage>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill {

void PrintTo(const GaugeBar& bar, std::ostream* out) {
    *out << bar.left << ".." << bar.right << " " << std::hex << bar.color << std::dec;
}

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t yellow = 0x3FFFFF;
constexpr std::uint32_t blue = 0xFF0000;
constexpr std::uint32_t green = 0x00FF00;
constexpr std::uint32_t red = 0x0000FF;
constexpr std::uint32_t black = 0;

/// A gauge that is 100 pixels wide and begins at 1.
std::vector<GaugeBar> Bars(const GaugeState& state) {
    return GaugeBars(state, 1, 101);
}

TEST(Gauge, WithoutSamplesOnlyTheBackgroundShows) {
    EXPECT_THAT(Bars({.total = 0, .trigger = 3}), IsEmpty());
    EXPECT_THAT(Bars({}), IsEmpty());
}

TEST(Gauge, ACompleteBufferIsYellow) {
    EXPECT_THAT(Bars({.total = 1000}), ElementsAre(GaugeBar{1, 101, yellow}));
}

TEST(Gauge, LinesAreDrawnInTheirOrder) {
    EXPECT_THAT(Bars({.total = 1000, .trigger = 500, .marker1 = 250, .marker2 = 750}),
                ElementsAre(GaugeBar{1, 101, yellow}, GaugeBar{50, 51, red}, GaugeBar{75, 76, blue},
                            GaugeBar{25, 26, green}));
}

TEST(Gauge, PositionsAreRoundedDown) {
    EXPECT_EQ(Bars({.total = 1000, .trigger = 519})[1], (GaugeBar{51, 52, red}));
    EXPECT_EQ(Bars({.total = 1000, .trigger = 0})[1], (GaugeBar{1, 2, red}));
    EXPECT_EQ(Bars({.total = 1000, .trigger = 999})[1], (GaugeBar{99, 100, red}));
}

TEST(Gauge, FillsOnBothSidesOfTheTrigger) {
    const GaugeState half{.total = 1000, .trigger = 500, .before = 250, .after = 100};
    EXPECT_THAT(Bars(half),
                ElementsAre(GaugeBar{1, 25, blue}, GaugeBar{50, 60, blue}, GaugeBar{50, 51, red}));
    const GaugeState full{.total = 1000, .trigger = 500, .before = 700, .after = 700};
    EXPECT_THAT(Bars(full),
                ElementsAre(GaugeBar{1, 50, blue}, GaugeBar{50, 101, blue}, GaugeBar{50, 51, red}))
        << "only up to the trigger and the right edge";
}

TEST(Gauge, ATriggerAtAnEndHasOneSideOnly) {
    const GaugeState first{.total = 1000, .trigger = 0, .before = 10, .after = 500};
    EXPECT_THAT(Bars(first), ElementsAre(GaugeBar{1, 50, blue}, GaugeBar{1, 2, red}));
    const GaugeState last{.total = 1000, .trigger = 1000, .before = 500, .after = 10};
    EXPECT_EQ(Bars(last)[0], (GaugeBar{1, 50, blue}));
    EXPECT_EQ(Bars(last).size(), 2U) << "nothing after it";
}

TEST(Gauge, WithoutATriggerNothingFills) {
    EXPECT_THAT(Bars({.total = 1000, .before = 10, .after = 10}), IsEmpty());
}

TEST(Gauge, AWindowIsBlackAndAtLeastThreePixels) {
    GaugeState state{.total = 1000, .windowFirst = 200, .windowLast = 400};
    EXPECT_EQ(Bars(state)[1], (GaugeBar{20, 40, black}));
    state.windowLast = 200;
    EXPECT_EQ(Bars(state)[1], (GaugeBar{19, 22, black}));
    state.windowFirst = state.windowLast = 0;
    EXPECT_EQ(Bars(state)[1], (GaugeBar{1, 3, black})) << "from the left edge of the window";
    state.windowFirst = state.windowLast = 999;
    EXPECT_EQ(Bars(state)[1], (GaugeBar{98, 101, black}));
    state.windowFirst = state.windowLast = 1020;
    EXPECT_EQ(Bars(state)[1], (GaugeBar{98, 101, black})) << "only up to the right edge";
}

TEST(Gauge, BookmarksAreTicksBelowTriggerAndMarkers) {
    GaugeState state;
    state.total = 100;
    state.trigger = 50;
    state.marker1 = 20;
    state.bookmarks = {20, 20, 50, 99};
    constexpr std::uint32_t magenta = 0xE000E0;
    const std::vector<GaugeBar> bars = GaugeBars(state, 0, 100);
    const std::vector<GaugeBar> wanted{{0, 100, 0x3FFFFF},      {20, 22, magenta, true},  // once
                                       {50, 52, magenta, true}, {98, 100, magenta, true}, // inside
                                       {50, 51, 0x0000FF},      {20, 21, 0x00FF00}};
    EXPECT_EQ(bars, wanted);
}

TEST(Gauge, MillionsOfSamplesDoNotOverflow) {
    const GaugeState state{.total = 33554433, .trigger = 16777216, .before = 16777216, .after = 0};
    EXPECT_EQ(Bars(state)[0], (GaugeBar{1, 49, blue}));
}

TEST(Gauge, DrawsItsBarsOnGreyInASunkenEdge) {
    CPositionGauge gauge;
    gauge.resize(102, 20);
    gauge.SetTotal(1000);
    gauge.SetTrigger(500);
    gauge.SetCounts(250, 0);
    const QImage image = gauge.grab().toImage();
    EXPECT_EQ(image.pixelColor(50, 10), QColor(0xFF, 0, 0));
    EXPECT_EQ(image.pixelColor(10, 10), QColor(0, 0, 0xFF));
    EXPECT_EQ(image.pixelColor(40, 10), QColor(0xC0, 0xC0, 0xC0));
    EXPECT_EQ(image.pixelColor(0, 10), QColor(0x80, 0x80, 0x80));
}

} // namespace
} // namespace test
} // namespace busquill
