#include "support/recording_paint_device_qt.h"
#include "support/recording_printer_qt.h"
#include "support/trace_view_fixture_qt.h"
#include "ui/display/print_painter.h"
#include "ui/display/state_painter.h"
#include "ui/display/wave_painter.h"
#include "ui/display/wave_window.h"
#include "ui/framework/display_colors.h"
#include "ui/framework/painting.h"

#include <QPainter>
#include <gmock/gmock.h>

#include <algorithm>

namespace busquill::test {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr PageSize sheet{1800, 2400, false}; // the listing's scale is 2
const QColor black(Qt::black);

class PrintPainter : public TraceViewFixture {
protected:
    PrintPainter() { colors = {0xC0C0C0, 0xE0E0E0, 0x0000FF, 0x00FF00, 0xFF0000}; }

    StateFrame Listing() {
        return {*document, document->stateList,
                isZoom,    board.board,
                colors,    {400, 200},
                59,        topRow,
                offset,    ScreenState(ScreenFonts())};
    }
    WaveFrame Waves() {
        return {*document, document->waveformList,
                isZoom,    board.board,
                colors,    {400, 200},
                75,        50,
                zoom,      {7, 3},
                {1, 5},    PaperWaves(1)};
    }
    Recording StatePage(const PrintJob& job, int number) {
        RecordingPaintDevice device({sheet.width, sheet.height});
        QPainter painter(&device);
        const StateFrame frame = Listing();
        const StatePages pages = PagesOf(sheet, frame, job);
        EXPECT_LE(number, pages.count);
        DrawStatePage(painter, pages, frame, job, number);
        return device.Recorded();
    }
    Recording WavePageOf(const PrintJob& job, int number, int dotsPerInch = 300) {
        RecordingPaintDevice device({sheet.width, sheet.height});
        QPainter painter(&device);
        const WaveFrame frame = Waves();
        const WavePages pages = PagesOf(sheet, dotsPerInch, frame, job);
        EXPECT_LE(number, pages.count);
        DrawWavePage(painter, pages, frame, job, number);
        return device.Recorded();
    }
    static PrintJob Job(std::int64_t first, std::int64_t last) {
        return {first, last, false, {"PCI-1 - capture", "Mon Jan  1 00:00:00 2001"}};
    }
    /// Gives the first `count` columns a width, and hides all others.
    std::vector<std::string> Widen(std::size_t count, int width) {
        std::vector<std::string> names;
        for (const auto& signal : document->stateList.All()) {
            const bool isColumn = signal->VisibleWidth() > 0 && names.size() < count;
            signal->width = isColumn ? width : 0;
            if (isColumn) {
                names.push_back(signal->RowName());
            }
        }
        return names;
    }
    static const Recording::Text& TextOf(const Recording& page, const QString& text) {
        for (const Recording::Text& each : page.texts) {
            if (each.text == text) {
                return each;
            }
        }
        throw std::runtime_error("not drawn: " + text.toStdString());
    }
    /// The numbers in the SAMPLE column of a page of the listing.
    static std::vector<int> Samples(const Recording& page) {
        std::vector<int> numbers;
        for (const Recording::Text& text : page.texts) {
            bool isNumber = false;
            const int number = text.text.toInt(&isNumber);
            if (isNumber && text.rect.right() < 2 * 59 && text.rect.top() > 120 + 36) {
                numbers.push_back(number);
            }
        }
        return numbers;
    }
    static std::vector<std::string> Titles(const Recording& page) {
        std::vector<std::string> titles;
        for (const Recording::Text& text : page.TextsBetween(121, 120 + 35)) {
            titles.push_back(text.text.toStdString());
        }
        return titles;
    }
    static bool HasFill(const Recording& page, const QRect& rect) {
        return std::ranges::any_of(page.fills, [&](const Recording::Fill& fill) {
            return fill.rect == rect && fill.color == black;
        });
    }
    /// The vertical lines of the marks below the header: their x.
    static std::vector<int> MarkLines(const Recording& page, int height) {
        std::vector<int> found;
        for (const Recording::Fill& fill : page.fills) {
            if (fill.rect.width() == 1 && fill.rect.height() == height && fill.color == black) {
                found.push_back(fill.rect.left());
            }
        }
        return found;
    }

    DisplayColors colors;
    std::int64_t topRow = 5; // what the window shows does not matter
    int offset = 33;
    int zoom = 20;
    bool isZoom = false;
};

TEST_F(PrintPainter, TitleNumberAndTimeAreInTheMargins) {
    Load(0, 20);
    const Recording page = StatePage(Job(0, 20), 1);
    const auto& title = TextOf(page, "PCI-1 - capture");
    EXPECT_TRUE(title.bold);
    EXPECT_NEAR(title.rect.center().x(), 900, 2);
    EXPECT_NEAR(title.rect.center().y(), 60, 3);
    const auto& number = TextOf(page, "Page 1");
    EXPECT_FALSE(number.bold);
    EXPECT_NEAR(number.rect.center().x(), 900, 2);
    EXPECT_GE(number.rect.top(), 2370 - 1);
    EXPECT_NEAR(TextOf(page, "Mon Jan  1 00:00:00 2001").rect.right(), 1800, 3);
}

TEST_F(PrintPainter, AListingIsBlackWithoutFillsAndEdges) {
    Load(-4, 20);
    document->SetMarker(1, 5);
    document->SetMarker(2, 7);
    for (const auto& signal : document->stateList.All()) {
        signal->color = 0x0000FF;
    }
    document->stateList[0].selected = true;
    const Recording page = StatePage(Job(0, 20), 1);
    for (const Recording::Fill& fill : page.fills) {
        EXPECT_EQ(fill.color, black);
        EXPECT_TRUE(fill.rect.width() <= 12 || fill.rect.height() <= 12) << "only lines and marks";
    }
    ASSERT_FALSE(page.texts.empty());
    for (const Recording::Text& text : page.texts) {
        EXPECT_EQ(text.color, black) << text.text.toStdString();
    }
}

TEST_F(PrintPainter, AFrameSurroundsTheTableFromMarginToTheLastRowThatFits) {
    Load(0, 20);
    const Recording page = StatePage(Job(0, 20), 1);
    const int bottom = 120 + 36 + 75 * 28;
    EXPECT_TRUE(HasFill(page, {0, 120, 1800, 1}));
    EXPECT_TRUE(HasFill(page, {0, bottom - 1, 1800, 1}));
    EXPECT_TRUE(HasFill(page, {0, 120, 1, bottom - 120}));
    EXPECT_TRUE(HasFill(page, {1799, 120, 1, bottom - 120}));
}

TEST_F(PrintPainter, HeaderAndRowsHaveTheirScaledHeights) {
    Load(0, 20);
    const Recording page = StatePage(Job(0, 20), 1);
    EXPECT_TRUE(HasFill(page, {1, 120 + 36, 1798, 1})) << "the line below the header";
    std::vector<int> tops;
    for (int sample = 0; sample < 3; ++sample) {
        tops.push_back(TextOf(page, QString::number(sample)).rect.bottom());
    }
    EXPECT_EQ(tops[1] - tops[0], 28);
    EXPECT_EQ(tops[2] - tops[1], 28);
    EXPECT_LE(tops[0], 120 + 36 + 28 + 1);
    EXPECT_GT(tops[0], 120 + 36 + 14);
    EXPECT_TRUE(TextOf(page, "SAMPLE").bold);
    EXPECT_LE(TextOf(page, "SAMPLE").rect.bottom(), 120 + 36);
    EXPECT_TRUE(HasFill(page, {1 + 2 * 59, 121, 1, 36 + 75 * 28 - 2})) << "right of SAMPLE";
}

TEST_F(PrintPainter, StartEqualToEndPrintsOneRow) {
    Load(-4, 20);
    EXPECT_THAT(Samples(StatePage(Job(9, 9), 1)), ElementsAre(5));
    EXPECT_EQ(PagesOf(sheet, Listing(), Job(9, 9)).rows, 1);
}

TEST_F(PrintPainter, ThePagesOfAWideListingShowAllColumnsOfTheFirstRowsFirst) {
    Load(0, 99);
    const auto names = Widen(3, 500);
    ASSERT_EQ(PagesOf(sheet, Listing(), Job(10, 99)).count, 6);
    std::vector<std::string> second;
    for (int page = 1; page <= 6; ++page) {
        const Recording drawn = StatePage(Job(10, 99), page);
        const auto titles = Titles(drawn);
        ASSERT_EQ(titles.size(), 2U) << page;
        EXPECT_EQ(titles[0], "SAMPLE");
        second.push_back(titles[1]);
        const auto samples = Samples(drawn);
        ASSERT_EQ(samples.size(), page <= 3 ? 75U : 15U);
        EXPECT_EQ(samples.front(), page <= 3 ? 10 : 85);
    }
    EXPECT_THAT(second, ElementsAre(names[0], names[1], names[2], names[0], names[1], names[2]));
}

TEST_F(PrintPainter, ScaledToThePageTheLastColumnEndsAtItsEdge) {
    Load(0, 20);
    const auto names = Widen(8, 170);
    PrintJob job = Job(0, 20);
    job.scaleToPage = true;
    const StatePages pages = PagesOf(sheet, Listing(), job);
    EXPECT_LT(pages.scale, 2);
    const Recording page = StatePage(job, 1);
    const auto header = page.TextsBetween(121, 120 + pages.headerHeight - 1);
    ASSERT_EQ(header.size(), names.size() + 1);
    EXPECT_GT(header.back().rect.left(), 1800 - 170);
    EXPECT_LE(header.back().rect.right(), 1800);
}

TEST_F(PrintPainter, AFilteredListingCountsRows) {
    Load(0, 99, "", [](int number) { return number % 2 == 0; });
    EXPECT_EQ(PagesOf(sheet, Listing(), Job(20, 40)).rows, 11);
    const auto samples = Samples(StatePage(Job(20, 40), 1));
    EXPECT_EQ(samples.size(), 11U);
    EXPECT_EQ(samples.front(), 20);
    EXPECT_EQ(samples.back(), 40);
}

TEST_F(PrintPainter, WithoutRowsOnlyTheHeaderIsPrinted) {
    Load(0, 9, "", [](int) { return false; });
    EXPECT_EQ(PagesOf(sheet, Listing(), Job(0, 9)).rows, 0);
    EXPECT_TRUE(Samples(StatePage(Job(0, 9), 1)).empty());
}

// Waveforms at 300 dots per inch: the scale is 2.5, names and values take 187 and 125.

constexpr int waveLeft = 187 + 125 + 1;

TEST_F(PrintPainter, WaveformsAreFramedToTheLastWholeSample) {
    Load(0, 200);
    const Recording page = WavePageOf(Job(0, 200), 1);
    const int right = waveLeft + 74 * 20;
    EXPECT_TRUE(HasFill(page, {0, 120, right, 1}));
    EXPECT_TRUE(HasFill(page, {0, 2400 - 120 - 1, right, 1}));
    EXPECT_TRUE(HasFill(page, {right - 1, 120, 1, 2160}));
    EXPECT_TRUE(HasFill(page, {187, 120, 1, 2160}));
    EXPECT_TRUE(HasFill(page, {187 + 125, 120, 1, 2160}));
    EXPECT_TRUE(TextOf(page, "Signal").bold);
    EXPECT_EQ(TextOf(page, "Page 1").text, "Page 1");
}

TEST_F(PrintPainter, WaveformsHaveBlackTextsAndNoFills) {
    Load(0, 200);
    document->SetMarker(1, 3);
    for (const auto& signal : document->waveformList.All()) {
        signal->color = 0x0000FF;
    }
    document->waveformList[0].selected = true;
    const Recording page = WavePageOf(Job(0, 200), 1);
    for (const Recording::Text& text : page.texts) {
        EXPECT_EQ(text.color, black) << text.text.toStdString();
    }
    for (const Recording::Fill& fill : page.fills) {
        EXPECT_NE(fill.color, ColorOf(colors.background));
        EXPECT_NE(fill.color, ColorOf(colors.alternate));
        EXPECT_TRUE(fill.rect.width() == 1 || fill.rect.height() == 1 ||
                    (fill.rect.width() <= 16 && fill.rect.height() <= 16))
            << fill.rect.width() << " x " << fill.rect.height();
    }
}

TEST_F(PrintPainter, ATimeStripShowsItsSamplesUpToTheJobsLast) {
    Load(0, 200);
    document->SetMarker(1, 80); // the sixth sample of the second strip
    document->SetMarker(2, 91); // after the job's last
    const auto first = WavePageOf(Job(1, 90), 1);
    const int height = 2160 - 1 - 43;
    EXPECT_TRUE(MarkLines(first, height).empty());
    const auto pages = PagesOf(sheet, 300, Waves(), Job(1, 90));
    const auto strips = static_cast<int>(pages.strips.size());
    const auto second = WavePageOf(Job(1, 90), strips + 1);
    EXPECT_THAT(MarkLines(second, height), ElementsAre(waveLeft + (80 - 75) * 20 + 1));
    // Nothing is drawn in the colour of a signal right of the last sample.
    const int end = waveLeft + (90 - 75 + 1) * 20;
    for (const Recording::Fill& fill : second.fills) {
        if (fill.color != black && fill.color != QColor(Qt::white)) {
            EXPECT_LE(fill.rect.right(), end);
        }
    }
}

TEST_F(PrintPainter, EachStripOfAWaveformShowsItsLastSample) {
    Load(0, 200);
    const PrintJob job = Job(1, 160);
    const WavePages pages = PagesOf(sheet, 300, Waves(), job);
    const auto strips = static_cast<int>(pages.strips.size());
    ASSERT_EQ(pages.count, 3 * strips);
    const int height = 2160 - 1 - 43;
    for (const int first : {1, 75, 149}) {
        const int last = std::min(first + 73, 160);
        document->SetMarker(1, last);
        const auto page = WavePageOf(job, (first - 1) / 74 * strips + 1);
        EXPECT_THAT(MarkLines(page, height), ElementsAre(waveLeft + (last - first) * 20 + 1));
        int end = 0;
        for (const Recording::Fill& fill : page.fills) {
            if (fill.color != black && fill.color != QColor(Qt::white)) {
                end = std::max(end, fill.rect.right());
            }
        }
        // The frame may cover its last dot.
        EXPECT_NEAR(end, waveLeft + (last - first + 1) * 20 - 1, 1) << "sample " << last;
    }
}

TEST_F(PrintPainter, TheZoomFollowsTheResolution) {
    Load(0, 200);
    document->SetMarker(1, 3);
    // At 150 dots per inch: the scale is 1.25, a sample 10 dots wide.
    const int left = 93 + 62 + 1;
    EXPECT_THAT(MarkLines(WavePageOf(Job(0, 200), 1, 150), 2160 - 1 - 22),
                ElementsAre(left + 3 * 10 + 1));
}

TEST_F(PrintPainter, EachSignalIsOnOneStripOfAWaveform) {
    Load(0, 20);
    for (const auto& signal : document->waveformList.All()) {
        signal->height = 150;
    }
    const auto pages = PagesOf(sheet, 300, Waves(), Job(0, 20));
    ASSERT_GT(pages.count, 1);
    std::vector<std::string> names;
    for (int number = 1; number <= pages.count; ++number) {
        for (const Recording::Text& text : WavePageOf(Job(0, 20), number).texts) {
            if (text.bold && text.rect.right() < 187 && text.rect.top() > 120 + 42) {
                names.push_back(text.text.toStdString());
            }
        }
    }
    std::size_t bands = 0;
    for (const int height : BandHeights(document->waveformList)) {
        bands += height > 0 ? 1 : 0;
    }
    EXPECT_EQ(names.size(), bands);
}

TEST_F(PrintPainter, TheMarksOfAWaveformAreScaled) {
    Load(-2, 200);
    document->SetMarker(1, 10);
    document->SetMarker(2, 50);
    const Recording page = WavePageOf(Job(0, 200), 1);
    const int glyph = 15; // six pixels
    const int top = 120 + 42 / 2 - 15 / 2;
    const auto markAt = [](int sample) { return waveLeft + sample * 20 + 1; };
    EXPECT_TRUE(HasFill(page, {markAt(10) - 7, top, glyph, glyph}));
    EXPECT_TRUE(HasFill(page, {markAt(2) - 7, top - 1, glyph + 1, 2})) << "the trigger's bar";
    EXPECT_TRUE(HasFill(page, {markAt(2), top, 1, glyph})) << "and its stem";
    ASSERT_EQ(page.polygons.size(), 1U);
    EXPECT_EQ(page.polygons[0].color, black);
    EXPECT_EQ(page.polygons[0].points[0], QPoint(markAt(50), top));
    EXPECT_EQ(page.polygons[0].points[1], QPoint(markAt(50) - 7, top + glyph));
    EXPECT_EQ(page.polygons[0].points[2], QPoint(markAt(50) - 7 + glyph, top + glyph));
    EXPECT_TRUE(HasFill(page, {waveLeft + 20, 120 + 42 - 17, 1, 17})) << "a tick of seven pixels";
}

TEST_F(PrintPainter, TheLevelsOfABitKeepTheirScaledDistanceFromTheBand) {
    Load(0, 40);
    CSignalList& list = document->waveformList;
    std::size_t bit = list.Size();
    for (std::size_t i = 0; i < list.Size(); ++i) {
        list[i].height = 0;
        list[i].showValue = false;
        if (bit == list.Size() && !list[i].grouped && list[i].numSamples != 0) {
            bit = i;
        }
    }
    ASSERT_LT(bit, list.Size());
    list[bit].height = 20;
    list[bit].color = 0x0000FF;
    const Recording page = WavePageOf(Job(0, 40), 1);
    const int top = 120 + 42 + 1;
    int highest = 9999;
    int lowest = 0;
    for (const Recording::Fill& fill : page.fills) {
        if (fill.color == ColorOf(0x0000FF)) {
            highest = std::min(highest, fill.rect.top());
            lowest = std::max(lowest, fill.rect.bottom());
        }
    }
    EXPECT_TRUE(highest == top + 5 || lowest == top + 50 - 5)
        << highest - top << " to " << lowest - top;
    EXPECT_GE(highest, top + 5);
    EXPECT_LE(lowest, top + 50 - 5);
}

TEST_F(PrintPainter, TheFontsFollowTheScale) {
    // Cells of 30 and 28 dots in a listing at scale 2; 36, 34 and 30 in waveforms at scale 2.5.
    const auto cell = [](const QFont& font) {
        const QFontMetrics metrics(font);
        return metrics.ascent() + metrics.descent();
    };
    const auto same = [&](const QFont& font, int height, QFont::Weight weight, FontFace face) {
        EXPECT_EQ(font, FontOfCellHeight(height, weight, face));
        EXPECT_LE(cell(font), height);
        EXPECT_GT(cell(font), height - 3);
    };
    const StateStyle listing = PaperState(2);
    same(listing.fonts.header, 30, QFont::Bold, FontFace::Proportional);
    same(listing.fonts.body, 28, QFont::Normal, FontFace::Fixed);
    const WaveStyle waves = PaperWaves(2.5);
    same(waves.title, 36, QFont::Bold, FontFace::Proportional);
    same(waves.name, 34, QFont::Bold, FontFace::Proportional);
    same(waves.body, 30, QFont::Normal, FontFace::Fixed);
}

TEST_F(PrintPainter, PagesDoNotDependOnTheSetOfColors) {
    Load(-4, 200);
    document->SetMarker(1, 10);
    document->SetMarker(2, 20);
    document->waveformList[0].selected = true;
    document->stateList[0].selected = true;
    for (const auto& signal : document->waveformList.All()) {
        signal->color = 0; // black is legible on white
        signal->showValue = true;
    }
    for (const bool isState : {true, false}) {
        std::vector<Recording> pages;
        for (const ColorSet set : {ColorSet::Standard, ColorSet::Legible, ColorSet::Dark}) {
            for (std::size_t i = 0; i < colorSettings; ++i) {
                const auto which = static_cast<ColorSetting>(i);
                WriteColorSetting(settings, which, ValueIn(set, which));
            }
            colors = LoadDisplayColors(settings, isState ? stateDisplay : waveformDisplay);
            pages.push_back(isState ? StatePage(Job(0, 200), 1) : WavePageOf(Job(0, 200), 1));
        }
        for (const Recording& page : pages) {
            const Recording& standard = pages.front();
            const auto sameFill = [](const auto& a, const auto& b) {
                return a.rect == b.rect && a.color == b.color;
            };
            EXPECT_TRUE(std::ranges::equal(page.fills, standard.fills, sameFill));
            EXPECT_TRUE(
                std::ranges::equal(page.texts, standard.texts, [&](const auto& a, const auto& b) {
                    return a.text == b.text && sameFill(a, b);
                }));
            EXPECT_TRUE(std::ranges::equal(page.polygons, standard.polygons,
                                           [](const auto& a, const auto& b) {
                                               return a.points == b.points && a.color == b.color;
                                           }));
        }
    }
}

TEST_F(PrintPainter, WavesOnPaperAreLegibleOnWhiteIfTheUserWantsLegibleColors) {
    Load(0, 200);
    constexpr std::uint32_t yellow = 0x00FFFF;
    for (const auto& signal : document->waveformList.All()) {
        signal->color = yellow;
    }
    const auto wavesOf = [&](std::uint32_t color) {
        return WavePageOf(Job(0, 200), 1).FillsOf(ColorOf(color));
    };
    EXPECT_GT(wavesOf(yellow), 0) << "as it is";
    colors.background = 0; // the screen's ground does not count
    colors.alternate = 0;
    colors.adaptText = true;
    EXPECT_EQ(wavesOf(yellow), 0);
    EXPECT_GT(wavesOf(LegibleOn(0xFFFFFF, yellow)), 0);
}

TEST_F(PrintPainter, TheTimeBetweenMarkersStandsOnWhiteBelowItsLine) {
    Load(0, 200);
    document->SetMarker(1, 10);
    document->SetMarker(2, 50);
    const Recording page = WavePageOf(Job(0, 200), 1);
    const int glyph = 15 / 2;
    const int lineTop = 120 + 42 / 2 - glyph - 4;
    EXPECT_TRUE(HasFill(page, {waveLeft + 201, lineTop, 40 * 20, 1}));
    const auto white = std::ranges::count_if(
        page.fills, [](const Recording::Fill& fill) { return fill.color == QColor(Qt::white); });
    EXPECT_EQ(white, 1);
}

TEST_F(PrintPainter, FilteredSamplesAreNotPrintedTwice) {
    Load(0, 299, "", [](int number) { return number % 10 == 5; });
    // Strips of 74 samples: 0 to 73 has 5 to 65, 74 to 147 has 75 to 145.
    document->SetMarker(1, 85);
    const auto pages = PagesOf(sheet, 300, Waves(), Job(0, 299));
    const auto strips = static_cast<int>(pages.strips.size());
    const int height = 2160 - 1 - 43;
    EXPECT_TRUE(MarkLines(WavePageOf(Job(0, 299), 1), height).empty());
    EXPECT_THAT(MarkLines(WavePageOf(Job(0, 299), strips + 1), height),
                ElementsAre(waveLeft + 20 + 1));
}

TEST_F(PrintPainter, ThePrinterGetsThePagesThatWereAskedForAndTheWindowKeepsItsZoom) {
    Load(0, 500);
    for (const bool isState : {true, false}) {
        auto view = MakeView(isState);
        RecordingPrinter printer({1000, 1500}, QPageLayout::Portrait);
        EXPECT_EQ(view->PrintTo(printer, Job(0, 500)), std::nullopt);
        const auto all = printer.Pages().size();
        EXPECT_GT(all, 2U);
        EXPECT_TRUE(printer.Shows(0, "Page 1"));
        EXPECT_TRUE(printer.Shows(all - 1, QString("Page %1").arg(all)));
        RecordingPrinter part({1000, 1500}, QPageLayout::Portrait);
        part.setFromTo(2, 2);
        EXPECT_EQ(view->PrintTo(part, Job(0, 500)), std::nullopt);
        ASSERT_EQ(part.Pages().size(), 1U);
        EXPECT_TRUE(part.Shows(0, "Page 2"));
        if (!isState) {
            EXPECT_EQ(view->findChild<CWaveformWnd*>()->Zoom(), 20);
        }
    }
}

TEST_F(PrintPainter, ALandscapePageHasRoomForMoreColumns) {
    Load(0, 5);
    auto view = MakeView();
    Widen(3, 400); // the window has fitted them to their texts
    RecordingPrinter portrait({1000, 1500}, QPageLayout::Portrait);
    EXPECT_EQ(view->PrintTo(portrait, Job(0, 5)), std::nullopt);
    EXPECT_EQ(portrait.Pages().size(), 2U);
    RecordingPrinter landscape({1500, 1000}, QPageLayout::Landscape);
    EXPECT_EQ(view->PrintTo(landscape, Job(0, 5)), std::nullopt);
    EXPECT_EQ(landscape.Pages().size(), 1U);
}

} // namespace
} // namespace busquill::test
