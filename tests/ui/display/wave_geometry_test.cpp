#include "ui/display/wave_geometry.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

TEST(Zoom, InByFiveSkipsZero) {
    EXPECT_EQ(ZoomedIn(20), 25);
    EXPECT_EQ(ZoomedIn(-5), 1);
    EXPECT_EQ(ZoomedIn(-7), -2);
    EXPECT_EQ(ZoomedIn(-3), 2);
    EXPECT_EQ(ZoomedIn(398), 400);
    EXPECT_EQ(ZoomedIn(400), 400);
}

TEST(Zoom, OutByFiveSkipsZero) {
    EXPECT_EQ(ZoomedOut(20), 15);
    EXPECT_EQ(ZoomedOut(5), -1);
    EXPECT_EQ(ZoomedOut(3), -2);
    EXPECT_EQ(ZoomedOut(-1), -6);
    EXPECT_EQ(ZoomedOut(-6), -7);
    EXPECT_EQ(ZoomedOut(-7), -7);
}

TEST(Zoom, ByLinesOfItsBar) {
    EXPECT_EQ(ZoomAfterLine(20, true), 21);
    EXPECT_EQ(ZoomAfterLine(-2, true), -1);
    EXPECT_EQ(ZoomAfterLine(-1, true), 1);
    EXPECT_EQ(ZoomAfterLine(400, true), 400);
    EXPECT_EQ(ZoomAfterLine(20, false), 19);
    EXPECT_EQ(ZoomAfterLine(1, false), -2);
    EXPECT_EQ(ZoomAfterLine(-6, false), -7);
    EXPECT_EQ(ZoomAfterLine(-7, false), -7);
}

TEST(Zoom, ByPagesOfItsBar) {
    EXPECT_EQ(ZoomAfterPage(20, true), 25);
    EXPECT_EQ(ZoomAfterPage(-5, true), 1);
    EXPECT_EQ(ZoomAfterPage(397, true), 400);
    EXPECT_EQ(ZoomAfterPage(400, true), 400);
    EXPECT_EQ(ZoomAfterPage(20, false), 15);
    EXPECT_EQ(ZoomAfterPage(5, false), -2);
    EXPECT_EQ(ZoomAfterPage(-4, false), -7);
    EXPECT_EQ(ZoomAfterPage(-7, false), -7);
}

TEST(Zoom, ByTheThumbOfItsBar) {
    EXPECT_EQ(ZoomOfThumb(0), 1);
    EXPECT_EQ(ZoomOfThumb(-7), -7);
    EXPECT_EQ(ZoomOfThumb(-1), -1);
    EXPECT_EQ(ZoomOfThumb(400), 400);
}

TEST(VisibleSamples, GoByPixelsOrByTheirShare) {
    EXPECT_EQ(VisibleSamples(399, 20), 19);
    EXPECT_EQ(VisibleSamples(399, 400), 0);
    EXPECT_EQ(VisibleSamples(399, 1), 399);
    EXPECT_EQ(VisibleSamples(399, -1), 399);
    EXPECT_EQ(VisibleSamples(399, -7), 2793);
    EXPECT_EQ(VisibleSamples(-20, -7), 0);
}

using Place = WavePlace;

TEST(WaveStep, MovesByAPixelAndAfterAWholeSampleToTheNextRow) {
    EXPECT_EQ(StepForward({5, 0}, 20, 10, 1000), (Place{5, 1}));
    EXPECT_EQ(StepForward({5, 19}, 20, 10, 1000), (Place{6, 0}));
    EXPECT_EQ(StepForward({5, 0}, 1, 10, 1000), (Place{6, 0}));
    EXPECT_EQ(StepBackward({5, 1}, 20), (Place{5, 0}));
    EXPECT_EQ(StepBackward({5, 0}, 20), (Place{4, 19}));
    EXPECT_EQ(StepBackward({0, 0}, 20), (Place{0, 0}));
    EXPECT_EQ(StepForward({5, 18}, 10, 10, 1000), (Place{6, 0})) << "after a zoom out";
}

TEST(WaveStep, AtANegativeZoomMovesByTheSamplesOfAPixel) {
    EXPECT_EQ(StepForward({5, 3}, -4, 10, 1000), (Place{9, 0}));
    EXPECT_EQ(StepBackward({5, 3}, -4), (Place{1, 0}));
    EXPECT_EQ(StepBackward({1, 0}, -4), (Place{0, 0}));
}

TEST(WaveStep, ForwardStopsWhereLessThanAWindowWouldRemain) {
    EXPECT_EQ(StepForward({989, 0}, 20, 10, 1000), (Place{989, 1}));
    EXPECT_EQ(StepForward({989, 19}, 20, 10, 1000), (Place{989, 19}));
    EXPECT_EQ(StepForward({990, 0}, 20, 10, 1000), (Place{990, 0}));
    EXPECT_EQ(StepForward({986, 0}, -4, 10, 1000), (Place{986, 0}));
    EXPECT_EQ(StepForward({0, 0}, 20, 10, 5), (Place{0, 0})) << "all samples are visible";
}

TEST(WavePage, StopsAtBothEnds) {
    EXPECT_EQ(Page({5, 3}, true, 10, 1000), (Place{15, 0}));
    EXPECT_EQ(Page({985, 3}, true, 10, 1000), (Place{990, 0}));
    EXPECT_EQ(Page({990, 3}, true, 10, 1000), (Place{990, 3}));
    EXPECT_EQ(Page({15, 3}, false, 10, 1000), (Place{5, 0}));
    EXPECT_EQ(Page({5, 3}, false, 10, 1000), (Place{0, 0}));
    EXPECT_EQ(Page({0, 3}, false, 10, 1000), (Place{0, 3}));
    EXPECT_EQ(Page({0, 0}, true, 10, 5), (Place{0, 0}));
}

TEST(WaveBar, HasARangeOfTenThousandAndAPageOfAtLeastTwoHundredAndFifty) {
    EXPECT_EQ(WavePage(500, 1000), 5000);
    EXPECT_EQ(WavePage(10, 1000), 250);
    EXPECT_EQ(WavePage(500, 100), 10000);
    EXPECT_EQ(WavePage(500, 0), 10000);
    EXPECT_EQ(WavePosition(999, 1000), 9990);
    EXPECT_EQ(WavePosition(1, 3), 3333);
    EXPECT_EQ(WavePosition(0, 0), 0);
    EXPECT_EQ(WavePosition(5'000'000'000, 10'000'000'000), 5000);
}

TEST(WaveScale, PutsSamplesSideBySide) {
    const WaveScale scale{.zoom = 20, .subPixel = 5, .left = 100, .right = 200};
    EXPECT_EQ(scale.XOf(0), 100) << "the first is cut";
    EXPECT_EQ(scale.XOf(1), 115);
    EXPECT_EQ(scale.XOf(5), 195);
    EXPECT_EQ(scale.XOf(6), 200);
    EXPECT_EQ(scale.Count(), 6);
    EXPECT_EQ((WaveScale{20, 0, 100, 200}.Count()), 5);
    EXPECT_EQ((WaveScale{20, 0, 100, 201}.Count()), 6);
    EXPECT_EQ((WaveScale{20, 0, 100, 90}.Count()), 0);
}

TEST(WaveScale, AtANegativeZoomAPixelHasOneSampleMoreThanIsCounted) {
    const WaveScale scale{.zoom = -3, .subPixel = 9, .left = 100, .right = 200};
    EXPECT_EQ(scale.XOf(3), 100);
    EXPECT_EQ(scale.XOf(4), 101);
    EXPECT_EQ(scale.Count(), 400);
    EXPECT_EQ(scale.XOf(400), 200);
    EXPECT_EQ(VisibleSamples(100, -3), 300);
    EXPECT_EQ((WaveScale{-1, 0, 0, 10}.XOf(2)), 1);
}

TEST(WaveScale, PixelsAndSamplesAgree) {
    for (const int zoom : {-7, -2, -1, 1, 2, 19, 400}) {
        for (const int skipped : {0, 1, 18, 399}) {
            const WaveScale scale{zoom, skipped, 51, 1250};
            for (std::int64_t k = 1; k < scale.Count(); ++k) {
                const int x = scale.XOf(k);
                ASSERT_GE(x, scale.XOf(k - 1));
                ASSERT_EQ(scale.XOf(scale.FirstAfter(x)) > x, true) << zoom << " " << k;
                ASSERT_LE(scale.XOf(scale.FirstAfter(x) - 1), x) << zoom << " " << k;
            }
            EXPECT_LT(scale.XOf(scale.Count() - 1), scale.right);
            EXPECT_EQ(scale.XOf(scale.Count()), scale.right);
        }
    }
}

TEST(WaveScale, APixelShowsTheSamplesThatAreDrawnInIt) {
    const WaveScale wide{.zoom = 20, .subPixel = 5, .left = 100, .right = 400};
    EXPECT_EQ(wide.SpanAt(100), (DrawnSpan{0, 0}));
    EXPECT_EQ(wide.SpanAt(114), (DrawnSpan{0, 0}));
    EXPECT_EQ(wide.SpanAt(115), (DrawnSpan{1, 1}));
    const WaveScale narrow{.zoom = -2, .left = 100, .right = 400};
    EXPECT_EQ(narrow.SpanAt(100), (DrawnSpan{0, 2}));
    EXPECT_EQ(narrow.SpanAt(110), (DrawnSpan{30, 32}));
}

TEST(WaveScale, ZoomingKeepsTheSampleUnderThePointer) {
    constexpr std::int64_t row = 5'000'000'000; // more than 32 bits hold
    for (const int zoom : {-7, -2, -1, 1, 3, 20, 400}) {
        for (const int after : {-7, -6, -1, 1, 5, 25, 400}) {
            for (const int x : {100, 101, 250, 399}) {
                const WaveScale before{.zoom = zoom, .subPixel = 2, .left = 100, .right = 400};
                const std::int64_t sample = row + before.SpanAt(x).first;
                const WavePlace place = before.PlaceAfterZoom(row, x, after);
                const WaveScale now{
                    .zoom = after, .subPixel = place.subPixel, .left = 100, .right = 400};
                EXPECT_EQ(place.row + now.SpanAt(x).first, sample)
                    << zoom << " to " << after << " at " << x;
            }
        }
    }
}

TEST(WaveScale, ZoomingOutAtTheBeginningShowsTheFirstSampleAtTheEdge) {
    const WaveScale scale{.zoom = 20, .left = 100, .right = 400};
    EXPECT_EQ(scale.PlaceAfterZoom(3, 300, 15), (WavePlace{0, 0}));
    EXPECT_EQ(scale.PlaceAfterZoom(3, 300, -1), (WavePlace{0, 0}));
}

TEST(WaveScale, AClickSelectsTheSampleThatBeginsNearest) {
    const WaveScale scale{.zoom = 20, .subPixel = 5, .left = 100, .right = 200};
    EXPECT_EQ(scale.RowAt(0), 0);
    EXPECT_EQ(scale.RowAt(4), 0);
    EXPECT_EQ(scale.RowAt(5), 1);
    EXPECT_EQ(scale.RowAt(24), 1);
    EXPECT_EQ(scale.RowAt(25), 2);
    EXPECT_EQ((WaveScale{1, 0, 0, 9}.RowAt(7)), 7);
    EXPECT_EQ((WaveScale{-3, 5, 0, 9}.RowAt(7)), 21);
}

TEST(WaveScale, MarksAreAPixelInsideTheirSample) {
    EXPECT_EQ((WaveScale{20, 5, 100, 200}.MarkOf(3)), 100 - 5 + 60 + 1);
    EXPECT_EQ((WaveScale{-4, 5, 100, 200}.MarkOf(10)), 100 + 2 + 1);
}

TEST(WaveScale, RailsEndWithTheData) {
    const WaveScale scale{.zoom = 20, .subPixel = 0, .left = 100, .right = 200};
    EXPECT_EQ(scale.EndOf(5, 5), 199);
    EXPECT_EQ(scale.EndOf(4, 5), 180);
    EXPECT_EQ(scale.EndOf(0, 5), 100);
    EXPECT_EQ((WaveScale{-4, 0, 100, 200}.EndOf(100, 400)), 125);
}

TEST(WaveScale, TicksAreAtEverySampleOrPixel) {
    EXPECT_EQ((WaveScale{20, 0, 100, 200}.TickCount()), 5);
    EXPECT_EQ((WaveScale{20, 0, 100, 201}.TickCount()), 6);
    EXPECT_EQ((WaveScale{20, 0, 100, 200}.TickedRows()), 6);
    EXPECT_EQ((WaveScale{-4, 0, 100, 200}.TickCount()), 100);
    EXPECT_EQ((WaveScale{-4, 0, 100, 200}.TickedRows()), 404);
}

constexpr int heights[] = {20, 0, 30, 10};

TEST(WaveBands, FollowOneAnotherWithAGapOfOnePixel) {
    const auto all = VisibleBands(heights, {0, 0}, 1000);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0], (WaveBand{0, 18, 20}));
    EXPECT_EQ(all[1], (WaveBand{2, 39, 30})) << "a band without height takes no space";
    EXPECT_EQ(all[2], (WaveBand{3, 70, 10}));
    EXPECT_EQ(VisibleBands(heights, {0, 0}, 70).size(), 2U);
    EXPECT_EQ(VisibleBands(heights, {0, 0}, 71).size(), 3U);
    EXPECT_EQ(VisibleBands(heights, {2, 7}, 1000)[0], (WaveBand{2, 11, 30}));
    EXPECT_TRUE(VisibleBands(heights, {-1, 0}, 1000).empty());
}

TEST(WaveBands, ThePositionIgnoresTheGaps) {
    EXPECT_EQ(BandsHeight(heights), 63);
    EXPECT_EQ(PositionOf(heights, {0, 0}), 0);
    EXPECT_EQ(PositionOf(heights, {3, 4}), 54);
    EXPECT_EQ(PositionOf(heights, {-1, 0}), 0);
    EXPECT_EQ(PlaceOf(heights, 0, 20), (BandPlace{0, 0}));
    EXPECT_EQ(PlaceOf(heights, 20, 20), (BandPlace{0, 20})) << "the pixel below the first";
    EXPECT_EQ(PlaceOf(heights, 21, 20), (BandPlace{2, 0}));
    EXPECT_EQ(PlaceOf(heights, 99, 20), (BandPlace{2, 22})) << "only up to the last page";
    EXPECT_EQ(PlaceOf(heights, 99, 100), (BandPlace{0, 0}));
    EXPECT_EQ(PlaceOf({}, 99, 100), (BandPlace{0, 0}));
}

TEST(WaveBands, StepByAPixel) {
    EXPECT_EQ(StepBands(heights, {0, 0}, true, 20), (BandPlace{0, 1}));
    EXPECT_EQ(StepBands(heights, {0, 19}, true, 20), (BandPlace{2, 0}));
    EXPECT_EQ(StepBands(heights, {2, 22}, true, 20), (BandPlace{2, 22})) << "the last page";
    EXPECT_EQ(StepBands(heights, {2, 21}, true, 20), (BandPlace{2, 22}));
    EXPECT_EQ(StepBands(heights, {0, 0}, true, 63), (BandPlace{0, 0})) << "all bands are visible";
    EXPECT_EQ(StepBands(heights, {2, 5}, false, 20), (BandPlace{2, 4}));
    EXPECT_EQ(StepBands(heights, {2, 0}, false, 20), (BandPlace{0, 19}));
    EXPECT_EQ(StepBands(heights, {0, 0}, false, 20), (BandPlace{0, 0}));
}

TEST(WaveBands, PageByASignalAndUpToBeforeTheFirst) {
    EXPECT_EQ(PageBands(heights, {0, 7}, true, 20), (BandPlace{1, 0}));
    EXPECT_EQ(PageBands(heights, {0, 0}, true, 63), (BandPlace{0, 0})) << "all bands are visible";
    EXPECT_EQ(PageBands(heights, {3, 0}, true, 5), (BandPlace{3, 0}))
        << "there is none further down";
    EXPECT_EQ(PageBands(heights, {2, 7}, false, 20), (BandPlace{1, 0}));
    EXPECT_EQ(PageBands(heights, {0, 0}, false, 20), (BandPlace{0, 0}));
    const BandPlace before = PageBands(heights, {0, 7}, false, 20);
    EXPECT_EQ(before, (BandPlace{-1, 0}));
    EXPECT_EQ(PageBands(heights, before, false, 20), before);
    EXPECT_EQ(PageBands(heights, before, true, 20), (BandPlace{0, 0}));
    EXPECT_EQ(StepBands(heights, before, true, 20), (BandPlace{0, 0}));
    EXPECT_EQ(StepBands(heights, before, false, 20), (BandPlace{0, 0}));
}

} // namespace
} // namespace busquill::test
