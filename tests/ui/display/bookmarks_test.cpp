// Bookmarks and marked samples in the listing and the waveforms.

#include "support/contrast_qt.h"
#include "support/trace_view_fixture_qt.h"
#include "ui/display/print_painter.h"
#include "ui/display/state_painter.h"
#include "ui/display/state_window.h"
#include "ui/display/wave_window.h"
#include "ui/framework/display_colors.h"
#include "ui/framework/painting.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace busquill::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr std::uint32_t standardBackground = 0xC0C0C0;
const QColor signColor = ColorOf(BookmarkOn(standardBackground));
const QColor markedColor = ColorOf(MarkedGround(standardBackground));

class NotedSamples : public TraceViewFixture {
protected:
    ~NotedSamples() override { QToolTip::hideText(); }

    void Open(bool isState, bool isZoom = false) {
        view = MakeView(isState, isZoom);
        window = view->findChild<TraceDisplay*>();
    }
    [[nodiscard]] QImage Grab() const { return window->grab().toImage(); }
    [[nodiscard]] CWaveformWnd& Waves() const { return dynamic_cast<CWaveformWnd&>(*window); }
    [[nodiscard]] int WaveLeft() const { return Waves().NameWidth() + Waves().ValueWidth() + 1; }
    static int Count(const QImage& image, const QRect& area, const QColor& color) {
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                count += image.pixelColor(x, y) == color ? 1 : 0;
            }
        }
        return count;
    }
    /// Of a row of the listing.
    [[nodiscard]] int SignsInRow(int n) const {
        return Count(Grab(), {0, 19 + 15 * n, window->width(), 15}, signColor);
    }
    [[nodiscard]] QColor GroundOfRow(int n) const { return Grab().pixelColor(2, 19 + 15 * n + 13); }
    /// The pixel of the mark of the sample that many after the first one.
    [[nodiscard]] int MarkX(int n) const { return WaveLeft() + 1 + n * Waves().Zoom(); }
    /// Of the wave area, between the bands and below them.
    [[nodiscard]] QColor GroundAt(int d) const {
        return Grab().pixelColor(WaveLeft() + d, window->height() - 5);
    }
    std::string TipAt(QPoint place) {
        QToolTip::hideText();
        for (QWidget* shown : QApplication::topLevelWidgets()) {
            if (shown->inherits("QTipLabel")) {
                shown->hide();
            }
        }
        QHelpEvent rest(QEvent::ToolTip, place, window->mapToGlobal(place));
        QApplication::sendEvent(window, &rest);
        return QToolTip::isVisible() ? QToolTip::text().toStdString() : "";
    }
    void Mark(std::int64_t first, std::int64_t last) {
        document->MarkSamples(SampleSpan{first, last});
    }

    std::unique_ptr<CTraceView> view;
    TraceDisplay* window = nullptr;
};

TEST_F(NotedSamples, HaveACornerInTheListing) {
    Load(-500, 499);
    Open(true);
    view->ScrollToSample(490);
    EXPECT_EQ(SignsInRow(3), 0);
    document->SetBookmark(-7, "note");
    EXPECT_EQ(SignsInRow(3), 28) << "7 + 6 + 5 + 4 + 3 + 2 + 1";
    EXPECT_EQ(SignsInRow(2) + SignsInRow(4), 0);
    view->ScrollToSample(493);
    EXPECT_EQ(SignsInRow(0), 28) << "it moves with its row";
    document->SetBookmark(-7, std::nullopt);
    EXPECT_EQ(SignsInRow(0), 0);
}

TEST_F(NotedSamples, LeaveTheTextsOfTheListingWhereTheyAre) {
    Load(-500, 499);
    Open(true);
    view->ScrollToSample(490);
    const QImage before = Grab();
    document->SetBookmark(-7, "note");
    const QRect corner(1, 19 + 15 * 3, 7, 7);
    QImage after = Grab();
    for (int y = corner.top(); y <= corner.bottom(); ++y) {
        for (int x = corner.left(); x <= corner.right(); ++x) {
            after.setPixelColor(x, y, before.pixelColor(x, y));
        }
    }
    EXPECT_EQ(after, before);
}

TEST_F(NotedSamples, HaveAFlagAndALineInTheWaveforms) {
    Load(-500, 499);
    Open(false);
    view->ScrollToSample(490);
    const QImage before = Grab();
    const QRect all(0, 0, window->width(), window->height());
    EXPECT_EQ(Count(before, all, signColor), 0);
    document->SetBookmark(-7, "note");
    const int x = MarkX(3);
    const QImage after = Grab();
    EXPECT_GT(Count(after, {x, 0, 9, 17}, signColor), 20) << "the flag";
    EXPECT_GT(Count(after, {x, 18, 1, window->height() - 20}, signColor), 100) << "the line";
    EXPECT_EQ(Count(after, all, signColor), Count(after, {x, 0, 9, window->height()}, signColor));
    document->SetBookmark(-7, std::nullopt);
    EXPECT_EQ(Grab(), before);
}

TEST_F(NotedSamples, LeaveTheFrameAroundTheWaveformsAlone) {
    Load(-500, 499);
    Open(false);
    Waves().SetZoom(1); // a sample a pixel
    view->ScrollToSample(300);
    const int right = window->width() - 1;
    const QImage before = Grab();
    BookmarkChanges changes;
    for (int number = -200; number < 499; ++number) {
        changes.emplace(number, "");
    }
    document->ChangeBookmarks(changes);
    const QImage after = Grab();
    ASSERT_GT(Count(after, {right - 9, 0, 8, 17}, signColor), 20) << "flags reach the end";
    for (int y = 0; y < window->height(); ++y) {
        EXPECT_EQ(after.pixelColor(right, y), before.pixelColor(right, y)) << y;
    }
}

TEST_F(NotedSamples, LieBelowTriggerAndMarkers) {
    Load(-500, 499);
    Open(false);
    view->ScrollToSample(490);
    document->SetMarker(1, 495);
    document->SetMarker(2, 496);
    const QImage before = Grab();
    for (const int number : {0, -5, -4}) {
        document->SetBookmark(number, "note");
    }
    const QImage after = Grab();
    const auto isLine = [&](const QImage& image, int d, const QColor& color) {
        const int x = MarkX(d);
        return Count(image, {x, 18, 1, window->height() - 20}, color);
    };
    for (const auto& [d, color] :
         {std::pair(10, QColor(Qt::red)), {5, QColor(Qt::green)}, {6, QColor(Qt::blue)}}) {
        EXPECT_GT(isLine(before, d, color), 100) << d;
        EXPECT_EQ(isLine(after, d, color), isLine(before, d, color)) << d;
    }
}

TEST_F(NotedSamples, OfThePowerZoomThereAreNone) {
    Load(-500, 499);
    for (const bool isState : {true, false}) {
        Open(isState, true);
        const QImage before = Grab();
        document->SetBookmark(-255, "note");
        document->SetBookmark(0, "note");
        Mark(0, 999);
        EXPECT_EQ(Grab(), before);
        document->MarkSamples(std::nullopt);
    }
}

TEST_F(NotedSamples, TellTheirNoteInTheTip) {
    Load(-500, 499);
    Open(true);
    view->ScrollToSample(490);
    document->SetBookmark(-7, "<b>two</b>\nlines");
    document->SetBookmark(-6, "");
    EXPECT_THAT(TipAt({5, 19 + 15 * 3 + 7}), EndsWith("\nBookmark: <b>two</b>\nlines"));
    EXPECT_THAT(TipAt({5, 19 + 15 * 4 + 7}), EndsWith("\nBookmark"));
    EXPECT_THAT(TipAt({5, 19 + 15 * 5 + 7}), Not(HasSubstr("Bookmark")));
    EXPECT_FALSE(Qt::mightBeRichText(QString::fromStdString(TipAt({5, 19 + 15 * 3 + 7}))));
}

TEST_F(NotedSamples, TellTheirNoteOverTheirFlag) {
    Load(-500, 499);
    Open(false);
    view->ScrollToSample(490);
    document->SetBookmark(-7, "note");
    const int x = WaveLeft() + 3 * Waves().Zoom();
    EXPECT_THAT(TipAt({x + 2, 30}), EndsWith("\nBookmark: note"));
    EXPECT_THAT(TipAt({x + 5, 5}), HasSubstr("Bookmark at -7: note"));
    EXPECT_THAT(TipAt({x - 3, 5}), Not(HasSubstr("note")));
    Waves().SetZoom(-7); // eight samples a pixel
    view->ScrollToSample(0);
    const int line = WaveLeft() + 1 + 493 / 7; // marks stand where seven samples take a pixel
    EXPECT_THAT(TipAt({line + 6, 5}), EndsWith("\nBookmark at -7: note"));
    EXPECT_THAT(TipAt({line, 30}), EndsWith("\nBookmark at -7: note"));
    for (const QPoint place : {QPoint(line - 1, 5), {line + 20, 5}, {line + 6, 30}}) {
        EXPECT_THAT(TipAt(place), Not(HasSubstr("note")));
    }
}

TEST_F(NotedSamples, ThatAFilterHidesAreNotShown) {
    Load(-500, 499);
    Open(false);
    document->SetBookmark(-7, "note");
    Mark(490, 493);
    Filter(*view, [](std::uint32_t sample) { return sample < 490 || sample > 493; });
    view->ScrollToSample(485);
    EXPECT_EQ(Count(Grab(), Grab().rect(), signColor), 0);
    EXPECT_EQ(Count(Grab(), Grab().rect(), markedColor), 0);
}

TEST_F(NotedSamples, MarkedOnesHaveAnotherGroundInTheListing) {
    Load(-500, 499);
    Open(true);
    view->ScrollToSample(490);
    const QColor usual = GroundOfRow(2);
    Mark(492, 494);
    EXPECT_EQ(GroundOfRow(1), usual);
    EXPECT_EQ(GroundOfRow(2), markedColor);
    EXPECT_EQ(GroundOfRow(4), markedColor);
    EXPECT_EQ(GroundOfRow(5), usual);
    document->SetMarker(1, 493);
    EXPECT_EQ(GroundOfRow(3), QColor(Qt::green)) << "a marker is still seen";
    document->MarkSamples(std::nullopt);
    EXPECT_EQ(GroundOfRow(2), usual);
}

TEST_F(NotedSamples, MarkedOnesHaveAnotherGroundInTheWaveforms) {
    Load(-500, 499);
    document->waveformList.RemoveAllSignals();
    Open(false);
    view->ScrollToSample(490);
    const int zoom = Waves().Zoom();
    const QColor usual = GroundAt(zoom);
    Mark(492, 494);
    EXPECT_EQ(GroundAt(2 * zoom - 1), usual);
    EXPECT_EQ(GroundAt(2 * zoom), markedColor);
    EXPECT_EQ(GroundAt(5 * zoom - 1), markedColor);
    EXPECT_EQ(GroundAt(5 * zoom), usual);
    Mark(0, 499); // begins and ends outside
    view->ScrollToSample(400);
    EXPECT_EQ(GroundAt(0), markedColor);
    EXPECT_EQ(GroundAt(window->width() - WaveLeft() - 3), markedColor);
    Mark(0, 100);
    EXPECT_EQ(Count(Grab(), Grab().rect(), markedColor), 0);
    Waves().SetZoom(-7);
    Mark(402, 402); // less than a pixel
    EXPECT_EQ(GroundAt(0), markedColor);
    EXPECT_EQ(GroundAt(1), usual);
}

TEST_F(NotedSamples, CanBeReadInAllSetsOfColours) {
    for (const ColorSet set : {ColorSet::Standard, ColorSet::Legible, ColorSet::Dark}) {
        for (const ColorSetting ground :
             {ColorSetting::StateBackground, ColorSetting::StateAlternateBackground,
              ColorSetting::WaveformBackground, ColorSetting::WaveformAlternateBackground}) {
            const auto usual = static_cast<std::uint32_t>(ValueIn(set, ground));
            const std::uint32_t marked = MarkedGround(usual);
            const QColor text = ColorOf(LegibleOn(usual, 0));
            EXPECT_GE(Contrast(ColorOf(marked), text), readable);
            EXPECT_GE(Contrast(ColorOf(BookmarkOn(marked)), ColorOf(marked)), 3);
            EXPECT_GE(Contrast(ColorOf(BookmarkOn(usual)), ColorOf(usual)), 3);
            EXPECT_NE(marked, usual);
        }
    }
}

TEST_F(NotedSamples, AreNotOnPaper) {
    Load(-500, 499);
    const auto draw = [&] {
        QImage page(600, 400, QImage::Format_RGB32);
        page.fill(Qt::white);
        QPainter painter(&page);
        const DisplayColors colors{standardBackground, standardBackground, 0x0000FF, 0x00FF00,
                                   0xFF0000};
        const StateFrame frame{*document, document->stateList, false, board.board,
                               colors,    page.size(),         60,    490,
                               0,         PaperState(1)};
        static_cast<void>(DrawState(painter, frame));
        const WaveFrame waves{*document, document->waveformList,
                              false,     board.board,
                              colors,    page.size(),
                              75,        50,
                              20,        {490, 0},
                              {},        PaperWaves(1)};
        painter.translate(0, 200);
        static_cast<void>(DrawWaveFrame(painter, waves));
        return page;
    };
    const QImage before = draw();
    document->SetBookmark(-7, "note");
    Mark(492, 499);
    EXPECT_EQ(draw(), before);
}

} // namespace
} // namespace busquill::test
