#include "support/trace_view_fixture_qt.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_view.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QtTest/QTest>

namespace busquill::test {
namespace {

class TraceView : public TraceViewFixture {};

TEST_F(TraceView, OpensWithTheTriggerInItsCentre) {
    Load(-500, 499);
    auto view = MakeView();
    EXPECT_EQ(view->CenterSample(), 500);
}

TEST_F(TraceView, ArrowKeysMoveByARowAndPageKeysByAWindow) {
    Load(-500, 499);
    auto view = MakeView();
    view->ScrollToSample(100);
    QTest::keyClick(view.get(), Qt::Key_Down);
    EXPECT_EQ(view->TopSample(), 101);
    QTest::keyClick(view.get(), Qt::Key_Up);
    QTest::keyClick(view.get(), Qt::Key_Up);
    EXPECT_EQ(view->TopSample(), 99);
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    EXPECT_EQ(view->TopSample(), 99 + Rows(*view));
    QTest::keyClick(view.get(), Qt::Key_PageUp);
    EXPECT_EQ(view->TopSample(), 99);
    QTest::keyClick(view.get(), Qt::Key_Left);
    QTest::keyClick(view.get(), Qt::Key_Right);
    EXPECT_EQ(view->TopSample(), 99);
}

TEST_F(TraceView, KeysStopAtBothEnds) {
    Load(0, 99);
    auto view = MakeView();
    for (int i = 0; i < 10; ++i) {
        QTest::keyClick(view.get(), Qt::Key_PageDown);
    }
    EXPECT_EQ(view->TopSample(), 100 - Rows(*view));
    for (int i = 0; i < 10; ++i) {
        QTest::keyClick(view.get(), Qt::Key_PageUp);
    }
    EXPECT_EQ(view->TopSample(), 0);
}

TEST_F(TraceView, TheWheelMovesARowPerNotch) {
    Load(-500, 499);
    auto view = MakeView();
    view->ScrollToSample(100);
    Wheel(*view, -120);
    EXPECT_EQ(view->TopSample(), 101);
    Wheel(*view, 240);
    EXPECT_EQ(view->TopSample(), 99);
    Wheel(*view, -60); // half a notch of a high-resolution wheel
    EXPECT_EQ(view->TopSample(), 99);
    Wheel(*view, -60);
    EXPECT_EQ(view->TopSample(), 100);
}

TEST_F(TraceView, BarsStepByRowAndWindowInAnyCapture) {
    Load(0, 49'999);
    auto view = MakeView();
    view->ScrollToSample(20'000);
    QScrollBar& bar = Bar(*view, Qt::Vertical);
    bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(view->TopSample(), 20'001);
    bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(view->TopSample(), 20'001 + Rows(*view));
    bar.triggerAction(QAbstractSlider::SliderSingleStepSub);
    bar.triggerAction(QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(view->TopSample(), 20'000);
    EXPECT_EQ(bar.value(), 4000);
}

TEST_F(TraceView, AClickBesideTheThumbScrollsAWindow) {
    Load(0, 999);
    auto view = MakeView();
    view->ScrollToSample(0);
    QScrollBar& bar = Bar(*view, Qt::Vertical);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {bar.width() / 2, bar.height() - 40});
    EXPECT_EQ(view->TopSample(), Rows(*view));
}

TEST_F(TraceView, TheThumbReachesTheEnd) {
    Load(0, 49'999);
    auto view = MakeView();
    QScrollBar& bar = Bar(*view, Qt::Vertical);
    bar.setSliderPosition(bar.maximum());
    EXPECT_EQ(view->TopSample(), 50'000 - Rows(*view));
    bar.setSliderPosition(0);
    EXPECT_EQ(view->TopSample(), 0);
}

TEST_F(TraceView, FewRowsLeaveTheBarDisabledAndTheTopAtZero) {
    Load(0, 4);
    auto view = MakeView();
    EXPECT_FALSE(Bar(*view, Qt::Vertical).isEnabled());
    QTest::keyClick(view.get(), Qt::Key_Down);
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    EXPECT_EQ(view->TopSample(), 0);
}

TEST_F(TraceView, ABarOnceEnabledStaysSo) {
    Load(0, 49);
    auto view = MakeView(true, false, {800, 300});
    EXPECT_TRUE(Bar(*view, Qt::Vertical).isEnabled());
    view->resize(800, 1200);
    QApplication::processEvents();
    EXPECT_TRUE(Bar(*view, Qt::Vertical).isEnabled());
}

TEST_F(TraceView, EmptyCaptureHasNoRows) {
    Load(-5, 5, "", [](int) { return false; });
    auto view = MakeView();
    EXPECT_EQ(Bar(*view, Qt::Vertical).value(), 0);
    QTest::keyClick(view.get(), Qt::Key_Down);
    EXPECT_EQ(view->TopSample(), 0);
}

TEST_F(TraceView, HorizontalBarMovesTheColumns) {
    Load(0, 99);
    auto view = MakeView(true, false, {500, 400});
    auto& window = *view->findChild<CStateWnd*>();
    QScrollBar& bar = Bar(*view, Qt::Horizontal);
    ASSERT_TRUE(bar.isEnabled());
    bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(window.Offset(), 1);
    bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(window.Offset(), window.width() - window.SampleColumnWidth());
    bar.setSliderPosition(bar.maximum());
    EXPECT_EQ(window.Offset(),
              window.ColumnsWidth() - (window.width() - window.SampleColumnWidth() - 1));
    bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(window.Offset(), bar.maximum());
}

TEST_F(TraceView, TheArrowsOfTheHorizontalBarMoveByAPixel) {
    Load(0, 99);
    auto view = MakeView(true, false, {500, 400});
    auto& window = *view->findChild<CStateWnd*>();
    QScrollBar& bar = Bar(*view, Qt::Horizontal);
    for (int i = 1; i <= 5; ++i) {
        ClickArrow(bar, true);
        EXPECT_EQ(window.Offset(), i);
        EXPECT_EQ(bar.value(), i);
    }
    ClickArrow(bar, false);
    EXPECT_EQ(window.Offset(), 4);
    EXPECT_EQ(bar.value(), 4);
}

TEST_F(TraceView, ViewsOfTheSameSamplesMoveTogether) {
    Load(-500, 499);
    auto first = MakeView();
    auto second = MakeView(false);
    auto zoom = MakeView(false, true);
    first->ScrollToSample(100);
    const auto zoomTop = zoom->TopSample();
    QTest::keyClick(first.get(), Qt::Key_Down);
    EXPECT_EQ(second->TopSample(), 101);
    EXPECT_EQ(zoom->TopSample(), zoomTop);
}

TEST_F(TraceView, ANewViewStartsAtThePositionOfItsPartner) {
    Load(-500, 499);
    auto first = MakeView();
    first->ScrollToSample(321);
    EXPECT_EQ(MakeView(false)->TopSample(), 321);
}

TEST_F(TraceView, PowerZoomViewBeginsAtItsTrigger) {
    Load(-500, 499);
    auto zoom = MakeView(false, true);
    EXPECT_EQ(zoom->CenterSample(), 255);
    EXPECT_TRUE(zoom->CanGoTo(GoToTarget::End));
    zoom->GoTo(GoToTarget::End);
    EXPECT_EQ(zoom->TopSample(), 511 - Rows(*zoom));
}

TEST_F(TraceView, AMarkerOutsideTheWindowIsScrolledIntoView) {
    Load(-500, 499);
    auto view = MakeView();
    document->SetMarker(1, 900);
    EXPECT_EQ(view->CenterSample(), 900);
    const auto top = view->TopSample();
    document->SetMarker(2, top + 1);
    EXPECT_EQ(view->TopSample(), top);
    document->SetMarker(1, -1);
    EXPECT_EQ(view->TopSample(), top);
    document->SetMarker(2, 100);
    EXPECT_EQ(view->CenterSample(), 100) << "above it too";
}

TEST_F(TraceView, AClickOnAPartlyVisibleRowDoesNotScroll) {
    Load(-500, 499);
    auto view = MakeView();
    auto& window = *view->findChild<CStateWnd*>();
    while ((window.height() - 19) % 15 != 2) {
        view->resize(view->width(), view->height() + 1);
        QApplication::processEvents();
    }
    view->ScrollToSample(100);
    QTest::mouseClick(&window, Qt::LeftButton, {}, {200, window.height() - 1});
    EXPECT_EQ(document->Marker(1, false), 100 + Rows(*view));
    EXPECT_EQ(view->TopSample(), 100);
    document->SetMarker(1, 101 + Rows(*view));
    EXPECT_EQ(view->CenterSample(), 101 + Rows(*view)) << "no part of that row is visible";
}

TEST_F(TraceView, ARowBelowAFullWindowCannotBeClicked) {
    Load(-500, 499);
    auto view = MakeView();
    auto& window = *view->findChild<CStateWnd*>();
    while ((window.height() - 19) % 15 != 0) {
        view->resize(view->width(), view->height() + 1);
        QApplication::processEvents();
    }
    view->ScrollToSample(100);
    document->SetMarker(1, 99 + Rows(*view));
    EXPECT_EQ(view->TopSample(), 100);
    document->SetMarker(1, 100 + Rows(*view));
    EXPECT_EQ(view->CenterSample(), 100 + Rows(*view));
}

TEST_F(TraceView, FilteredCaptureScrollsByRows) {
    Load(0, 9999, "", [](int number) { return number % 10 == 0; });
    auto view = MakeView();
    view->ScrollToSample(500);
    QTest::keyClick(view.get(), Qt::Key_Down);
    EXPECT_EQ(view->TopSample(), 510);
    view->GoTo(GoToTarget::End);
    EXPECT_EQ(view->TopSample(), 9990 - 10 * (Rows(*view) - 1));
}

TEST_F(TraceView, ShowsTheNamesInItsFrame) {
    RecordingFrame frame;
    Load(0, 9, "\"Description\",\"What it shows\"\n");
    CTraceView view(nullptr, true, false, TraceViewParts{settings});
    view.SetFrame(&frame);
    view.AttachDocument(document.get());
    view.OnInitialUpdate();
    EXPECT_EQ(frame.name, "samples");
    EXPECT_EQ(frame.comment, "What it shows");
}

TEST_F(TraceView, LayoutPutsTheBarsAtTheEdges) {
    Load(0, 99);
    auto view = MakeView(true, false, {640, 480});
    const QScrollBar& vertical = Bar(*view, Qt::Vertical);
    const QScrollBar& horizontal = Bar(*view, Qt::Horizontal);
    EXPECT_EQ(vertical.geometry().top(), 17);
    EXPECT_EQ(vertical.geometry().right(), 639);
    EXPECT_EQ(horizontal.geometry().left(), 0);
    EXPECT_EQ(horizontal.width(), 640);
    EXPECT_EQ(horizontal.geometry().bottom(), 479);
}

TEST_F(TraceView, AHighResolutionWheelStartsANewNotchWhenItTurnsBack) {
    Load(-500, 499);
    auto view = MakeView();
    view->ScrollToSample(100);
    Wheel(*view, -100);
    Wheel(*view, 60);
    EXPECT_EQ(view->TopSample(), 100);
    Wheel(*view, 60);
    EXPECT_EQ(view->TopSample(), 99);
}

TEST_F(TraceView, WheelOverABarScrollsTheListing) {
    Load(-500, 499);
    auto view = MakeView();
    view->ScrollToSample(100);
    TurnWheel(Bar(*view, Qt::Horizontal), {0, -120});
    EXPECT_EQ(view->TopSample(), 101);
}

TEST_F(TraceView, WheelWithShiftMovesTheColumns) {
    Load(-500, 499);
    auto view = MakeView(true, false, {500, 400});
    view->ScrollToSample(100);
    const auto& window = *view->findChild<CStateWnd*>();
    const QScrollBar& bar = Bar(*view, Qt::Horizontal);
    Wheel(*view, {0, -120}, Qt::ShiftModifier);
    const int notch = window.Offset();
    EXPECT_GE(notch, 3 * QFontMetrics(window.font()).horizontalAdvance('0'));
    EXPECT_EQ(bar.value(), notch);
    Wheel(*view, {-240, 0}); // a wheel that is tilted
    EXPECT_EQ(window.Offset(), 3 * notch);
    Wheel(*view, {0, 120}, Qt::ShiftModifier);
    EXPECT_EQ(window.Offset(), 2 * notch);
    EXPECT_EQ(bar.value(), 2 * notch);
    EXPECT_EQ(view->TopSample(), 100);
    Wheel(*view, {0, -120'000}, Qt::ShiftModifier);
    EXPECT_EQ(window.Offset(), bar.maximum());
    Wheel(*view, {0, 120'000}, Qt::ShiftModifier);
    EXPECT_EQ(window.Offset(), 0);
    EXPECT_EQ(view->TopSample(), 100);
}

TEST_F(TraceView, HalfANotchInOneDirectionDoesNotCountInTheOther) {
    Load(-500, 499);
    auto view = MakeView(true, false, {500, 400});
    view->ScrollToSample(100);
    Wheel(*view, {0, -60}, Qt::ShiftModifier);
    Wheel(*view, {0, -60});
    EXPECT_EQ(view->findChild<CStateWnd*>()->Offset(), 0);
    EXPECT_EQ(view->TopSample(), 100);
}

TEST_F(TraceView, TheMouseOnTheThumbScrollsAndLeavesTheThumbAtTheRow) {
    Load(0, 99);
    auto view = MakeView();
    view->ScrollToSample(0);
    QScrollBar& bar = Bar(*view, Qt::Vertical);
    Drag(bar, {0, 46}, false);
    const std::int64_t top = view->TopSample();
    EXPECT_GT(top, 0);
    EXPECT_LT(top, 100 - Rows(*view));
    EXPECT_EQ(top, bar.sliderPosition() * 100 / 10000);
    EXPECT_NE(bar.sliderPosition(), top * 100); // between two rows, while it is held
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, bar.rect().center());
    EXPECT_EQ(bar.sliderPosition(), top * 100);
    Drag(bar, {0, 2000});
    EXPECT_EQ(view->TopSample(), 100 - Rows(*view));
    Drag(bar, {0, -2000});
    EXPECT_EQ(view->TopSample(), 0);
}

TEST_F(TraceView, TheMouseOnTheHorizontalThumbMovesTheColumns) {
    Load(0, 99);
    auto view = MakeView(true, false, {500, 400});
    auto& window = *view->findChild<CStateWnd*>();
    Drag(Bar(*view, Qt::Horizontal), {40, 0});
    EXPECT_GT(window.Offset(), 0);
    Drag(Bar(*view, Qt::Horizontal), {2000, 0});
    EXPECT_EQ(window.Offset(),
              window.ColumnsWidth() - (window.width() - window.SampleColumnWidth() - 1));
    view->resize(4000, 400); // all columns fit
    QApplication::processEvents();
    EXPECT_EQ(window.Offset(), 0);
}

TEST_F(TraceView, GoesToEachExistingTarget) {
    Load(-500, 499);
    auto view = MakeView();
    auto other = MakeView(false);
    EXPECT_TRUE(view->CanGoTo(GoToTarget::Trigger));
    EXPECT_FALSE(view->CanGoTo(GoToTarget::Marker1));
    EXPECT_FALSE(view->CanGoTo(GoToTarget::Marker2));
    document->SetMarker(1, 300);
    document->SetMarker(2, 700);
    const std::pair<GoToTarget, std::int64_t> centres[] = {
        {GoToTarget::Trigger, 500}, {GoToTarget::Marker1, 300}, {GoToTarget::Marker2, 700}};
    for (const auto& [target, sample] : centres) {
        EXPECT_TRUE(view->CanGoTo(target));
        view->GoTo(target);
        EXPECT_EQ(view->CenterSample(), sample);
        EXPECT_EQ(other->CenterSample(), sample);
    }
    view->GoTo(GoToTarget::Start);
    EXPECT_EQ(view->TopSample(), 0);
    view->GoTo(GoToTarget::End);
    EXPECT_EQ(other->TopSample(), 1000 - Rows(*other));
    document->SetMarker(1, -1);
    view->GoTo(GoToTarget::Marker1);
    EXPECT_EQ(view->TopSample(), 1000 - Rows(*view));
}

TEST_F(TraceView, WithoutSamplesThereIsNowhereToGo) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    auto view = MakeView();
    for (const auto target : {GoToTarget::Marker1, GoToTarget::Start, GoToTarget::End}) {
        EXPECT_FALSE(view->CanGoTo(target));
        view->GoTo(target);
        EXPECT_EQ(view->TopSample(), 0);
    }
}

TEST_F(TraceView, GoToInPowerZoomDoesNotMoveTheOthers) {
    Load(-500, 499);
    auto main = MakeView();
    auto zoom = MakeView(false, true);
    const auto before = main->TopSample();
    zoom->GoTo(GoToTarget::Start);
    EXPECT_EQ(zoom->TopSample(), 0);
    EXPECT_EQ(main->TopSample(), before);
    document->SetZoomMarker(1, 400);
    EXPECT_EQ(zoom->CenterSample(), 400);
    EXPECT_EQ(main->TopSample(), before);
}

TEST_F(TraceView, ViewsOfDifferentSizesScrollToTheSameTop) {
    Load(-500, 499);
    auto low = MakeView(true, false, {600, 200});
    auto high = MakeView(true, false, {600, 900});
    low->ScrollToSample(600);
    QTest::keyClick(low.get(), Qt::Key_PageDown);
    EXPECT_EQ(high->TopSample(), low->TopSample());
    for (int i = 0; i < 50; ++i) {
        QTest::keyClick(low.get(), Qt::Key_PageDown);
    }
    EXPECT_EQ(low->TopSample(), 1000 - Rows(*low));
    EXPECT_EQ(high->TopSample(), 1000 - Rows(*high)); // as far as its end allows
}

TEST_F(TraceView, EachKindListsItsOwnSignals) {
    Load(-500, 499);
    document->zoomList.CopyFrom(document->stateList);
    auto state = MakeView();
    auto wave = MakeView(false);
    auto zoom = MakeView(false, true);
    const auto pictures = [&] {
        return std::array{state->grab().toImage(), wave->grab().toImage(), zoom->grab().toImage()};
    };
    CSignalList* const lists[] = {&document->stateList, &document->waveformList,
                                  &document->zoomList};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto before = pictures();
        lists[i]->InsertBlank(&(*lists[i])[0]);
        document->UpdateAllViews(nullptr, HintRedraw);
        const auto after = pictures();
        for (std::size_t view = 0; view < 3; ++view) {
            EXPECT_EQ(before[view] != after[view], view == i) << i << " " << view;
        }
    }
}

TEST_F(TraceView, AFilterKeepsThePositionAndMovesTheBar) {
    Load(0, 9999);
    auto view = MakeView();
    view->ScrollToSample(5000);
    Filter(*view, [](std::uint32_t sample) { return sample % 10 == 0; });
    EXPECT_EQ(view->TopSample(), 5000);
    EXPECT_EQ(Bar(*view, Qt::Vertical).value(), 5000);
    QTest::keyClick(view.get(), Qt::Key_Down);
    EXPECT_EQ(view->TopSample(), 5010);
    Filter(*view, [](std::uint32_t sample) { return sample < 5; });
    EXPECT_EQ(view->TopSample(), 0);
    EXPECT_EQ(Bar(*view, Qt::Vertical).value(), 0);
    EXPECT_TRUE(Bar(*view, Qt::Vertical).isEnabled());
}

TEST_F(TraceView, AFilterWithoutAMatchShowsNoRows) {
    Load(0, 999);
    auto view = MakeView();
    view->ScrollToSample(500);
    Filter(*view, [](std::uint32_t) { return false; });
    EXPECT_EQ(view->TopSample(), 0);
    EXPECT_EQ(view->CenterSample(), 0);
    for (const auto key : {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_Up, Qt::Key_PageUp}) {
        QTest::keyClick(view.get(), key);
        EXPECT_EQ(view->TopSample(), 0);
    }
    EXPECT_EQ(Bar(*view, Qt::Vertical).value(), 0);
}

TEST_F(TraceView, OnlyAVisibleBlockIsDrawn) {
    Load(0, 999);
    auto view = MakeView();
    CSignalList& list = document->stateList;
    view->ScrollToSample(320);
    EXPECT_FALSE(DrawsBlock(*view, list, 288, false));
    EXPECT_TRUE(DrawsBlock(*view, list, 320, false));
    EXPECT_FALSE(DrawsBlock(*view, list, 320, true));
    const std::uint32_t below = 320 + static_cast<std::uint32_t>(Rows(*view)) + 2;
    EXPECT_FALSE(DrawsBlock(*view, list, below, false));
    view->ScrollToSample(319);
    EXPECT_TRUE(DrawsBlock(*view, list, 288, false));
}

TEST_F(TraceView, APowerZoomBlockIsDrawnInItsOwnView) {
    Load(0, 999);
    document->zoomList.CopyFrom(document->stateList);
    auto view = MakeView(false, true);
    view->ScrollToSample(100);
    EXPECT_FALSE(DrawsBlock(*view, document->zoomList, 96, false));
    EXPECT_TRUE(DrawsBlock(*view, document->zoomList, 96, true));
}

TEST_F(TraceView, NewColoursAreUsedAtTheNextPaint) {
    Load(0, 999);
    auto view = MakeView();
    EXPECT_TRUE(Repaints(
        *view, [&] { settings.WriteProfileInt("Display", "StateBackgroundColor", 0xFFFFFF); }));
    EXPECT_FALSE(Repaints(*view, [] {}));
}

TEST_F(TraceView, IsBlankBeforeItsDocumentIsShown) {
    Load(0, 99);
    CTraceView view(nullptr, true, false, TraceViewParts{settings});
    view.AttachDocument(document.get());
    view.resize(600, 400);
    const QImage image = view.findChild<CStateWnd*>()->grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ASSERT_EQ(image.pixel(x, y) & 0xFFFFFF, 0xC0C0C0U) << x << "," << y;
        }
    }
}

TEST_F(TraceView, CentresTheTriggerInAChildFrame) {
    Load(-500, 499);
    QMdiArea area;
    area.resize(1000, 800);
    area.show();
    auto* frame = new QMdiSubWindow;
    auto* view = new CTraceView(frame, true, false, TraceViewParts{settings});
    view->AttachDocument(document.get());
    frame->setWidget(view);
    area.addSubWindow(frame);
    frame->resize(850, 420);
    frame->show();
    view->OnInitialUpdate();
    QApplication::processEvents();
    EXPECT_EQ(view->CenterSample(), 500);
    const std::int64_t top = view->TopSample();
    frame->resize(850, 700);
    QApplication::processEvents();
    EXPECT_EQ(view->TopSample(), top); // resizing does not scroll
}

TEST_F(TraceView, CentresTheTriggerBeforeItIsShown) {
    Load(-500, 499);
    CTraceView view(nullptr, true, false, TraceViewParts{settings});
    view.AttachDocument(document.get());
    view.resize(800, 600);
    view.OnInitialUpdate();
    view.show();
    QApplication::processEvents();
    EXPECT_EQ(view.CenterSample(), 500);
}

TEST_F(TraceView, ShowsItsBackgroundBesideTheHeader) {
    Load(0, 99);
    auto view = MakeView(true, false, {640, 480});
    EXPECT_EQ(view->grab().toImage().pixel(636, 5) & 0xFFFFFF, 0xA0A0A0U);
}

TEST_F(TraceView, TitlesFromAFileDoNotMakeColumnsArbitrarilyWide) {
    Load(0, 99);
    document->stateList[0].groupName.assign(1 << 20, 'W');
    document->stateList[0].name.assign(1 << 20, 'W');
    auto view = MakeView();
    EXPECT_LE(document->stateList[0].width, 1020);
    EXPECT_GE(document->stateList[0].width, 1000);
}

} // namespace
} // namespace busquill::test
