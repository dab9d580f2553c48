#include "ui/display/print_pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace busquill::test {
namespace {

using testing::ElementsAre;

// A page of 1800 by 2400 dots: margins of 120, so that 2160 are left between them.
constexpr PageSize portrait{1800, 2400, false};

TEST(PrintMargins, AreATwentiethOfThePageWithFontsBelow) {
    const PageMargins margins(portrait);
    EXPECT_EQ(margins.margin, 120);
    EXPECT_EQ(margins.titleFont, 40);
    EXPECT_EQ(margins.footerFont, 30);
    EXPECT_EQ(margins.Title(), QRect(0, 0, 1800, 120));
    EXPECT_EQ(margins.Footer(), QRect(0, 2370, 1800, 30));
}

// Listing. At 1800 dots for 900 pixels the scale is 2: header 36, rows of 28.

StatePages Listing(std::vector<int> widths, std::int64_t rows, bool scaled = false,
                   PageSize page = portrait) {
    return {page, scaled, 59, widths, rows};
}

TEST(StatePages, AnUnscaledPageIs900PixelsWide) {
    const StatePages pages = Listing({100, 100}, 10);
    EXPECT_DOUBLE_EQ(pages.scale, 2);
    EXPECT_EQ(pages.headerHeight, 36);
    EXPECT_EQ(pages.rowPitch, 28);
    EXPECT_EQ(pages.rowsPerPage, (2160 - 36) / 28);
    EXPECT_EQ(pages.count, 1);
    EXPECT_EQ(pages.Frame(), QRect(0, 120, 1800, 36 + 75 * 28));
}

TEST(StatePages, ALandscapePageIs1350PixelsWide) {
    const StatePages pages = Listing({500, 500, 289}, 10, false, {2700, 1800, true});
    EXPECT_DOUBLE_EQ(pages.scale, 2);
    EXPECT_EQ(pages.strips.size(), 1U);
    EXPECT_EQ(Listing({500, 500, 291}, 10, false, {2700, 1800, true}).strips.size(), 2U);
}

TEST(StatePages, RowsBeginANewPageWhenOneIsFull) {
    EXPECT_EQ(Listing({100}, 75).count, 1);
    EXPECT_EQ(Listing({100}, 76).count, 2);
    EXPECT_EQ(Listing({100}, 150).count, 2);
    EXPECT_EQ(Listing({100}, 1).count, 1);
    EXPECT_EQ(Listing({100}, 1).Page(1).endRow, 1);
}

TEST(StatePages, WithoutRowsThereIsAPageForEachStrip) {
    const StatePages pages = Listing({400, 400, 400}, 0);
    EXPECT_EQ(pages.count, 2);
    EXPECT_EQ(pages.Page(2).endRow, 0);
    EXPECT_EQ(Listing({}, 0).count, 1);
}

TEST(StatePages, AColumnThatPassesThePageOpensTheNextStripAndCountsThere) {
    // 60 and 840 fill the page to its last pixel.
    EXPECT_THAT(Listing({420, 420, 10}, 1).strips,
                ElementsAre(SignalStrip{0, 2}, SignalStrip{2, 3}));
    EXPECT_THAT(Listing({420, 421, 419}, 1).strips,
                ElementsAre(SignalStrip{0, 1}, SignalStrip{1, 3}));
    EXPECT_THAT(Listing({420, 421, 420}, 1).strips,
                ElementsAre(SignalStrip{0, 1}, SignalStrip{1, 2}, SignalStrip{2, 3}));
}

TEST(StatePages, AColumnWiderThanAPageHasOneToItself) {
    EXPECT_THAT(Listing({2000}, 1).strips, ElementsAre(SignalStrip{0, 1}));
    EXPECT_THAT(Listing({100, 2000, 100}, 1).strips,
                ElementsAre(SignalStrip{0, 1}, SignalStrip{1, 2}, SignalStrip{2, 3}));
}

TEST(StatePages, SignalsWithoutAColumnOpenNoStrip) {
    EXPECT_THAT(Listing({420, 0, 420, 0, -5, 0}, 1).strips, ElementsAre(SignalStrip{0, 6}));
}

TEST(StatePages, AllColumnsOfTheFirstRowsComeBeforeTheNextRows) {
    const StatePages pages = Listing({500, 500, 500}, 100);
    ASSERT_EQ(pages.count, 6);
    const auto shown = [&](std::int64_t number) {
        const PrintedRows page = pages.Page(number);
        return std::array<std::int64_t, 3>{static_cast<std::int64_t>(page.columns.first),
                                           page.firstRow, page.endRow};
    };
    EXPECT_THAT(shown(1), ElementsAre(0, 0, 75));
    EXPECT_THAT(shown(2), ElementsAre(1, 0, 75));
    EXPECT_THAT(shown(3), ElementsAre(2, 0, 75));
    EXPECT_THAT(shown(4), ElementsAre(0, 75, 100));
    EXPECT_THAT(shown(6), ElementsAre(2, 75, 100));
}

TEST(StatePages, ScaledToThePageAllColumnsShareOneStrip) {
    const StatePages pages = Listing({1000, 1000, 940}, 10, true); // 3000 pixels with SAMPLE
    EXPECT_DOUBLE_EQ(pages.scale, 0.6);
    EXPECT_EQ(pages.strips.size(), 1U);
    EXPECT_EQ(pages.headerHeight, 10);
    EXPECT_EQ(pages.rowPitch, 8);
    EXPECT_EQ(pages.rowsPerPage, (2160 - 10) / 8);
}

TEST(StatePages, APageAlwaysHasARow) {
    const StatePages tiny = Listing({1000000}, 10, true); // the pitch would be 0
    EXPECT_EQ(tiny.rowPitch, 1);
    EXPECT_EQ(tiny.count, 1);
    const StatePages huge = Listing({}, 3, true, {60000, 2400, false}); // a row exceeds the page
    EXPECT_EQ(huge.rowsPerPage, 1);
    EXPECT_EQ(huge.count, 3);
}

TEST(StatePages, CountsThePagesOfTheLargestCapture) {
    const StatePages pages =
        Listing(std::vector<int>(200, 840), std::int64_t{1} << 25, false, {90, 3, false});
    EXPECT_EQ(pages.rowsPerPage, 2);
    EXPECT_EQ(pages.count, 200 * (std::int64_t{1} << 24));
    EXPECT_EQ(pages.Page(pages.count).endRow, std::int64_t{1} << 25);
}

// Waveforms. At 300 dots per inch the scale is 2.5.

WaveJob Job(std::span<const int> heights, int zoom, std::int64_t first, std::int64_t last,
            int dots = 300) {
    return {dots, zoom, 75, 50, heights, first, last};
}

TEST(WavePages, ScaleAndZoomFollowTheResolution) {
    const std::vector<int> heights = {20};
    EXPECT_DOUBLE_EQ(WavePages(portrait, Job(heights, 20, 0, 9)).scale, 2.5);
    EXPECT_EQ(WavePages(portrait, Job(heights, 20, 0, 9)).zoom, 20);
    EXPECT_DOUBLE_EQ(WavePages(portrait, Job(heights, 7, 0, 9, 1200)).scale, 10);
    EXPECT_EQ(WavePages(portrait, Job(heights, 7, 0, 9, 1200)).zoom, 28);
    EXPECT_EQ(WavePages(portrait, Job(heights, 7, 0, 9, 200)).zoom, 4);
    EXPECT_EQ(WavePages(portrait, Job(heights, -7, 0, 9, 200)).zoom, -4);
    EXPECT_EQ(WavePages(portrait, Job(heights, 20, 0, 9, 0)).zoom, 20) << "300 if not known";
}

TEST(WavePages, AZoomThatWouldBeNothingCountsAsOne) {
    const std::vector<int> heights = {20};
    for (const int zoom : {1, -1}) {
        const WavePages pages(portrait, Job(heights, zoom, 0, 9999, 96));
        EXPECT_EQ(pages.zoom, 1) << zoom;
        EXPECT_GT(pages.samplesPerPage, 0);
        EXPECT_GT(pages.count, 1);
    }
}

TEST(WavePages, SamplesFillTheWidthRightOfTheColumns) {
    // Names and values take 187 and 125; 1488 dots are left.
    const std::vector<int> heights = {20};
    const WavePages pages(portrait, Job(heights, 20, -3, 300));
    EXPECT_EQ(pages.samplesPerPage, 74);
    EXPECT_EQ(pages.right, 1 + 187 + 125 + 20 * 74);
    EXPECT_EQ(pages.count, 303 / 74 + 1);
    EXPECT_EQ(pages.Frame(), QRect(0, 120, 1793, 2160));
    const WavePages dense(portrait, Job(heights, -3, 0, 5000));
    EXPECT_EQ(dense.samplesPerPage, 1488 * 3);
    EXPECT_EQ(dense.right, 1800);
    EXPECT_EQ(dense.count, 2);
}

TEST(WavePages, TheLastSampleOfAStripIsOnIt) {
    const std::vector<int> heights = {20};
    EXPECT_EQ(WavePages(portrait, Job(heights, 20, 0, 73)).count, 1);
    EXPECT_EQ(WavePages(portrait, Job(heights, 20, 0, 74)).count, 2);
    const WavePages pages(portrait, Job(heights, 20, 10, 100));
    EXPECT_EQ(pages.Page(1).first, 10);
    EXPECT_EQ(pages.Page(1).last, 83);
    EXPECT_EQ(pages.Page(2).first, 84);
    EXPECT_EQ(pages.Page(2).last, 100);
}

TEST(WavePages, ABandThatReachesTheEndOpensTheNextStripWithItsOwnHeight) {
    // 2160 less 42 for the header and 1: 2117. Bands of 400 pixels take 1000 and 1.
    std::vector<int> heights = {400, 400, 45}; // 1001 + 1001 + 113 = 2115
    EXPECT_THAT(WavePages(portrait, Job(heights, 20, 0, 9)).strips, ElementsAre(SignalStrip{0, 3}));
    heights[2] = 46; // 2118, and its own height on the next strip
    EXPECT_THAT(WavePages(portrait, Job(heights, 20, 0, 9)).strips,
                ElementsAre(SignalStrip{0, 2}, SignalStrip{2, 3}));
    heights = {400, 400, 400, 400, 400};
    EXPECT_THAT(WavePages(portrait, Job(heights, 20, 0, 9)).strips,
                ElementsAre(SignalStrip{0, 2}, SignalStrip{2, 4}, SignalStrip{4, 5}));
}

TEST(WavePages, TheHeightItselfIsAlreadyReached) {
    // At scale 1: 120 dots per inch. 2160 less 17 and 1: 2142.
    const std::vector<int> fits = {2120, 19};    // 2121 + 20 = 2141
    const std::vector<int> reaches = {2120, 20}; // 2142
    EXPECT_EQ(WavePages(portrait, Job(fits, 20, 0, 9, 120)).strips.size(), 1U);
    EXPECT_EQ(WavePages(portrait, Job(reaches, 20, 0, 9, 120)).strips.size(), 2U);
}

TEST(WavePages, ABandHigherThanAPageHasOneToItself) {
    const std::vector<int> heights = {0, 5000, 20};
    EXPECT_THAT(WavePages(portrait, Job(heights, 20, 0, 9)).strips,
                ElementsAre(SignalStrip{0, 2}, SignalStrip{2, 3}));
}

TEST(WavePages, AllSignalsOfTheFirstSamplesComeBeforeTheNextSamples) {
    const std::vector<int> heights = {400, 400, 400};
    const WavePages pages(portrait, Job(heights, 20, 0, 100));
    ASSERT_EQ(pages.count, 4);
    EXPECT_EQ(pages.Page(1).bands, (SignalStrip{0, 2}));
    EXPECT_EQ(pages.Page(2).bands, (SignalStrip{2, 3}));
    EXPECT_EQ(pages.Page(2).first, 0);
    EXPECT_EQ(pages.Page(3).bands, (SignalStrip{0, 2}));
    EXPECT_EQ(pages.Page(3).first, 74);
}

TEST(WavePages, WithoutSamplesOrRoomThereIsAPageForEachStrip) {
    const std::vector<int> heights = {400, 400, 400};
    EXPECT_EQ(WavePages(portrait, Job(heights, 20, 5, 4)).count, 2);
    const WavePages narrow({300, 2400, false}, Job(heights, 20, 0, 100));
    EXPECT_EQ(narrow.samplesPerPage, 0);
    EXPECT_EQ(narrow.count, 2);
    EXPECT_LT(narrow.Page(1).last, narrow.Page(1).first);
    EXPECT_EQ(WavePages(portrait, Job({}, 20, 0, 9)).count, 1);
}

} // namespace
} // namespace busquill::test
