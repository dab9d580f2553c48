#include "support/trace_fixture_qt.h"
#include "ui/controls/color_button.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_frame.h"
#include "ui/display/trace_view.h"
#include "ui/framework/painting.h"
#include "ui/signals/change_signal_dialog.h"

#include <QAction>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTimer>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <QtTest/qtestspontaneevent.h>

namespace busquill::test {
namespace {

class TraceView : public TraceFixture {
protected:
    static int Rows(CTraceView& view) {
        return static_cast<int>(view.findChild<TraceDisplay*>()->VisibleSampleCount());
    }
    /// As the system sends it: to the window under the pointer, which passes it on.
    static void Wheel(CTraceView& view, int delta) {
        const QPointF at(50, 100);
        QWheelEvent event(at, view.mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(view.findChild<TraceDisplay*>(), &event);
    }
    /// Where the thumb of a bar is.
    static QRect Thumb(QScrollBar& bar) {
        QStyleOptionSlider option;
        option.initFrom(&bar);
        option.orientation = bar.orientation();
        option.minimum = bar.minimum();
        option.maximum = bar.maximum();
        option.sliderPosition = bar.sliderPosition();
        option.sliderValue = bar.value();
        option.pageStep = bar.pageStep();
        option.upsideDown = false;
        return bar.style()->subControlRect(QStyle::CC_ScrollBar, &option,
                                           QStyle::SC_ScrollBarSlider, &bar);
    }
    /// Takes the thumb with the mouse and moves it by some pixels.
    static void Drag(QScrollBar& bar, QPoint way, bool release = true) {
        const QPoint from = Thumb(bar).center();
        QTest::mousePress(&bar, Qt::LeftButton, {}, from);
        for (const QPoint to : {from + way / 2, from + way}) {
            QMouseEvent move(QEvent::MouseMove, to, bar.mapToGlobal(to), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&bar, &move);
        }
        if (release) {
            QTest::mouseRelease(&bar, Qt::LeftButton, {}, from + way);
        }
    }
    /// Leaves the document with the rows of the samples that are to be kept, as a filter does,
    /// while the view looks away.
    void Filter(CTraceView& view, const std::function<bool(std::uint32_t)>& keep) {
        document->RemoveView(&view);
        const auto count = static_cast<std::uint32_t>(document->SampleCount(false));
        document->excludedBits.assign(WordsFor(count), 0);
        for (std::uint32_t sample = 0; sample < count; ++sample) {
            if (!keep(sample)) {
                document->excludedBits[sample / 32] |= 1U << (sample % 32);
            }
        }
        document->RebuildMapsFromFile();
        document->AddView(&view);
        document->UpdateAllViews(nullptr, HintFilterChanged);
    }
    /// Whether the listing looks different after something was done.
    static bool Repaints(CTraceView& view, const std::function<void()>& act) {
        auto& window = *view.findChild<TraceDisplay*>();
        const QImage before = window.grab().toImage();
        act();
        return window.grab().toImage() != before;
    }
    /// Whether a listing is drawn at the news of a block.
    bool DrawsBlock(CTraceView& view, CSignalList& list, std::uint32_t first, bool zoom) {
        list[0].selected = !list[0].selected; // would be seen
        const bool drawn = Repaints(view, [&] {
            CBlockUpdate block;
            block.first = first;
            block.count = 32;
            block.zoom = zoom;
            document->UpdateAllViews(nullptr, HintBlockArrived, &block);
        });
        list[0].selected = drawn == list[0].selected; // as the listing has it
        return drawn;
    }
};

TEST_F(TraceView, OpensWithTheTriggerInItsCentre) {
    Load(-500, 499);
    auto view = MakeView();
    EXPECT_EQ(view->CenterSample(), 500);
}

TEST_F(TraceView, ArrowKeysMoveARowAndPageKeysAWindow) {
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

TEST_F(TraceView, WheelMovesALineANotch) {
    Load(-500, 499);
    auto view = MakeView();
    view->ScrollToSample(100);
    Wheel(*view, -120);
    EXPECT_EQ(view->TopSample(), 101);
    Wheel(*view, 240);
    EXPECT_EQ(view->TopSample(), 99);
    Wheel(*view, -60); // half a notch of a fine wheel
    EXPECT_EQ(view->TopSample(), 99);
    Wheel(*view, -60);
    EXPECT_EQ(view->TopSample(), 100);
}

TEST_F(TraceView, BarsStepByRowAndWindowHoweverLongTheCapture) {
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

TEST_F(TraceView, ClickBesideTheThumbScrollsAWindow) {
    Load(0, 999);
    auto view = MakeView();
    view->ScrollToSample(0);
    QScrollBar& bar = Bar(*view, Qt::Vertical);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {bar.width() / 2, bar.height() - 40});
    EXPECT_EQ(view->TopSample(), Rows(*view));
}

TEST_F(TraceView, ThumbReachesTheEnd) {
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

TEST_F(TraceView, BarOnceEnabledStaysSo) {
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

TEST_F(TraceView, NewViewTakesThePlaceOfItsPartner) {
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

TEST_F(TraceView, MarkerOutsideTheWindowIsShown) {
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

TEST_F(TraceView, FilteredCaptureScrollsByRows) {
    Load(0, 9999, "", [](int number) { return number % 10 == 0; });
    auto view = MakeView();
    view->ScrollToSample(500);
    QTest::keyClick(view.get(), Qt::Key_Down);
    EXPECT_EQ(view->TopSample(), 510);
    view->GoTo(GoToTarget::End);
    EXPECT_EQ(view->TopSample(), 9990 - 10 * (Rows(*view) - 1));
}

TEST_F(TraceView, TellsItsFrameTheNames) {
    RecordingFrame frame;
    Load(0, 9, "\"Description\",\"What it shows\"\n");
    CTraceView view(nullptr, true, false, TraceViewParts{settings});
    view.SetFrame(&frame);
    view.AttachDocument(document.get());
    view.OnInitialUpdate();
    EXPECT_EQ(frame.name, "samples");
    EXPECT_EQ(frame.comment, "What it shows");
}

/// A view inside a frame, which hears what the view tells it.
class FramedView : public TraceView {
protected:
    void Open(bool isState = true, bool isZoom = false) {
        view = std::make_unique<CTraceView>(nullptr, isState, isZoom, TraceViewParts{settings});
        view->SetFrame(&frame);
        view->AttachDocument(document.get());
        view->resize(800, 600);
        view->show();
        view->OnInitialUpdate();
        QApplication::processEvents();
    }
    const GaugeState& Gauge() { return frame.gauge.State(); }

    RecordingFrame frame;
    std::unique_ptr<CTraceView> view;
};

TEST_F(FramedView, AFileShowsItsCountsItsGaugeAndThatItIsAFile) {
    Load(-300, 699);
    document->SetMarker(1, 250);
    Open();
    EXPECT_EQ(frame.counters, std::make_pair(std::int64_t{300}, std::int64_t{699}));
    EXPECT_EQ(frame.indicator, RunIndicator::File);
    EXPECT_GT(frame.setupNamesShown, 0);
    EXPECT_EQ(Gauge().total, 1000);
    EXPECT_EQ(Gauge().trigger, 300);
    EXPECT_EQ(Gauge().marker1, 250);
    EXPECT_EQ(Gauge().marker2, -1);
    EXPECT_EQ(Gauge().before, -1);
    EXPECT_EQ(Gauge().windowFirst, view->TopSample());
    EXPECT_EQ(Gauge().windowLast, view->TopSample() + Rows(*view) - 1);
}

TEST_F(FramedView, WithoutATriggerTheCountsAreZero) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    Open();
    EXPECT_EQ(frame.counters, std::make_pair(std::int64_t{0}, std::int64_t{0}));
    EXPECT_EQ(Gauge().windowFirst, -1);
}

TEST_F(FramedView, APowerZoomViewCounts255OnBothSides) {
    Load(-300, 699);
    Open(false, true);
    EXPECT_EQ(frame.counters, std::make_pair(std::int64_t{255}, std::int64_t{255}));
    EXPECT_EQ(Gauge().total, 511);
    EXPECT_EQ(Gauge().trigger, 255);
    frame.counters = {};
    document->RebuildMapsFromFile();
    EXPECT_EQ(frame.counters, std::make_pair(std::int64_t{255}, std::int64_t{255}));
}

TEST_F(FramedView, TheGaugeFollowsEveryMove) {
    Load(-500, 499);
    Open();
    const auto expectWindow = [&](const char* after) {
        EXPECT_EQ(Gauge().windowFirst, view->TopSample()) << after;
        EXPECT_EQ(Gauge().windowLast,
                  std::min<std::int64_t>(view->TopSample() + Rows(*view), 1000) - 1)
            << after;
    };
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    expectWindow("a key");
    view->GoTo(GoToTarget::End);
    expectWindow("going to the end");
    view->resize(800, 300);
    QApplication::processEvents();
    expectWindow("another size");
    auto partner = MakeView();
    view->GoTo(GoToTarget::Start);
    QTest::keyClick(partner.get(), Qt::Key_PageDown);
    EXPECT_GT(view->TopSample(), 0);
    expectWindow("a partner's key");
}

TEST_F(FramedView, MarkersGoToTheGaugeAndTheTimesToTheBar) {
    Load(-500, 499);
    Open();
    EXPECT_EQ(frame.times, (std::array<std::string, 3>{}));
    document->SetMarker(1, 400);
    EXPECT_EQ(Gauge().marker1, 400);
    EXPECT_EQ(frame.times[0], "");
    EXPECT_EQ(frame.times[1], "3.000us") << "100 samples of 30 ns to the trigger";
    document->SetMarker(2, 410);
    EXPECT_EQ(Gauge().marker2, 410);
    EXPECT_EQ(frame.times[0], "300ns");
    document->SetMarker(1, -1);
    EXPECT_EQ(Gauge().marker1, -1);
    EXPECT_EQ(frame.times[0], "");
    document->SetZoomMarker(1, 5);
    EXPECT_EQ(Gauge().marker1, -1) << "of the other samples";
}

TEST_F(FramedView, TwoMarkersOnOneSampleAreNoTimeApart) {
    Load(-500, 499);
    Open();
    document->SetMarker(1, 400);
    document->SetMarker(2, 400);
    EXPECT_EQ(frame.times[0], "0ns");
    EXPECT_EQ(frame.times[1], frame.times[2]);
}

TEST_F(FramedView, TheTimesFollowTheSamplesThatCome) {
    Load(-500, 499);
    Open();
    document->SetMarker(1, 400);
    document->SetMarker(2, 401);
    const std::string before = frame.times[0];
    for (const auto& signal : document->stateList.All()) {
        if (signal->IsGroupStart() && signal->permanent && signal->baseName == "TIME") {
            signal->groupData[401 * signal->RowBytes()] = 90;
        }
    }
    CBlockUpdate block;
    document->UpdateAllViews(nullptr, HintBlockArrived, &block);
    EXPECT_EQ(frame.times[0], before) << "when the last block of the moment is in";
    document->UpdateAllViews(nullptr, HintNameChanged);
    EXPECT_NE(frame.times[0], before);
}

TEST_F(FramedView, TheTimesGoWithTheirColumn) {
    Load(-500, 499);
    Open();
    document->SetMarker(1, 400);
    document->SetMarker(2, 410);
    EXPECT_NE(frame.times[0], "");
    for (const auto& signal : document->stateList.All()) {
        if (signal->baseName == "TIME" && signal->IsGroupStart()) {
            document->stateList.RemoveGroup(signal.get());
            break;
        }
    }
    document->UpdateAllViews(nullptr, HintRedraw);
    EXPECT_EQ(frame.times, (std::array<std::string, 3>{}));
}

TEST_F(FramedView, WithoutATimeOfItsOwnAListingHasNoTimes) {
    Load(-500, 499);
    for (const auto& signal : document->stateList.All()) {
        if (signal->baseName == "TIME") {
            signal->permanent = false;
        }
    }
    Open();
    document->SetMarker(1, 400);
    document->SetMarker(2, 410);
    EXPECT_EQ(frame.times, (std::array<std::string, 3>{}));
    auto waveform = MakeView(false);
    RecordingFrame other;
    waveform->SetFrame(&other);
    document->SetMarker(2, 411);
    EXPECT_NE(other.times[0], "") << "whose list has one";
}

TEST_F(FramedView, AFilterThatMatchesNothingListsNothing) {
    Load(-500, 499);
    Open();
    Filter(*view, [](std::uint32_t) { return false; });
    EXPECT_EQ(document->RowCount(false), 0);
    EXPECT_EQ(document->RowToSample(7, false), 0);
    EXPECT_EQ(view->TopSample(), 0);
    EXPECT_EQ(Gauge().windowFirst, -1);
    QTest::keyClick(view.get(), Qt::Key_Down);
    QTest::keyClick(view.get(), Qt::Key_PageUp);
    EXPECT_EQ(Bar(*view, Qt::Vertical).value(), 0);
}

/// A listing under the mouse.
class Mouse : public TraceView {
protected:
    void Open(int first = -500, int last = 499) {
        Load(first, last);
        view = MakeView();
        window = view->findChild<CStateWnd*>();
    }
    void Click(QPoint place, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers keys = Qt::NoModifier) {
        QTest::mouseClick(window, button, keys, place);
    }
    /// A place in the nth row that shows.
    static QPoint Row(int n) { return {100, 19 + 15 * n + 7}; }
    /// The middle of a column's header and its right edge.
    QPoint Column(int n) { return {Start(n) + Visible(n).width / 2, 9}; }
    QPoint Edge(int n) { return {Start(n) + Visible(n).width, 9}; }
    CSignal& Visible(int n) {
        for (const auto& signal : document->stateList.All()) {
            if (signal->VisibleWidth() > 0 && n-- == 0) {
                return *signal;
            }
        }
        throw std::runtime_error("no such column");
    }
    int Start(int n) {
        int x = window->SampleColumnWidth() + 1 - window->Offset();
        for (int i = 0; i < n; ++i) {
            x += Visible(i).width;
        }
        return x;
    }
    std::unique_ptr<CTraceView> view;
    CStateWnd* window = nullptr;
};

TEST_F(Mouse, SetsAndClearsMarkers) {
    Open();
    const std::int64_t top = view->TopSample();
    Click(Row(3));
    EXPECT_EQ(document->Marker(1, false), top + 3);
    Click(Row(5), Qt::RightButton);
    EXPECT_EQ(document->Marker(2, false), top + 5);
    Click(Row(3), Qt::RightButton);
    EXPECT_EQ(document->Marker(2, false), top + 3) << "both on one sample";
    Click(Row(3));
    EXPECT_EQ(document->Marker(1, false), -1);
    EXPECT_EQ(document->Marker(2, false), top + 3);
}

TEST_F(Mouse, BetweenHeaderAndRowsNothingHappens) {
    Open();
    Click({100, 18});
    EXPECT_EQ(document->Marker(1, false), -1);
    Click({100, 19});
    EXPECT_EQ(document->Marker(1, false), view->TopSample());
    EXPECT_FALSE(Visible(0).selected || Visible(1).selected);
}

TEST_F(Mouse, ADoubleClickSetsAMarkerAndLeavesIt) {
    Open();
    // As a screen brings it: the second press of a double click is no press of its own.
    Click(Row(4));
    QMouseEvent twice(QEvent::MouseButtonDblClick, Row(4), window->mapToGlobal(Row(4)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window, &twice);
    EXPECT_EQ(document->Marker(1, false), view->TopSample() + 4);
}

TEST_F(Mouse, BelowTheLastRowNothingHappens) {
    Open(0, 4);
    Click(Row(5));
    EXPECT_EQ(document->Marker(1, false), -1);
    Click(Row(4));
    EXPECT_EQ(document->Marker(1, false), 4);
}

TEST_F(Mouse, AnEmptyCaptureTakesNoMarker) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    view = MakeView();
    window = view->findChild<CStateWnd*>();
    Click(Row(0));
    EXPECT_EQ(document->Marker(1, false), -1);
}

TEST_F(Mouse, SelectsColumnsAndRedrawsTheirTitles) {
    Open();
    const QImage before = window->grab().toImage();
    Click(Column(1));
    EXPECT_TRUE(Visible(1).selected);
    Click(Column(3), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_TRUE(Visible(2).selected && Visible(3).selected);
    Click(Column(2), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_FALSE(Visible(2).selected);
    const QImage after = window->grab().toImage();
    EXPECT_NE(before.copy(0, 0, before.width(), 18), after.copy(0, 0, after.width(), 18));
    EXPECT_EQ(before.copy(0, 19, before.width(), before.height() - 19),
              after.copy(0, 19, after.width(), after.height() - 19));
}

TEST_F(Mouse, ASelectionPaintsTheHeaderAlone) {
    Open();
    QApplication::processEvents();
    struct Watch : QObject {
        QRect painted;
        bool eventFilter(QObject* /*watched*/, QEvent* event) override {
            if (event->type() == QEvent::Paint) {
                painted |= static_cast<QPaintEvent*>(event)->rect();
            }
            return false;
        }
    } watch;
    window->installEventFilter(&watch);
    Click(Column(1));
    QApplication::processEvents();
    EXPECT_EQ(watch.painted, QRect(0, 0, window->width(), 18));
}

TEST_F(Mouse, ResizesColumnsAndTheBarFollows) {
    Open();
    const int width = Visible(1).width;
    const int limit = Bar(*view, Qt::Horizontal).maximum();
    QTest::mousePress(window, Qt::LeftButton, {}, Edge(1));
    QTest::mouseMove(window, Edge(1) + QPoint(40, 60));
    EXPECT_EQ(window->cursor().shape(), Qt::SizeHorCursor) << "wherever the mouse goes";
    QTest::mouseRelease(window, Qt::LeftButton, {}, Edge(1));
    EXPECT_EQ(Visible(1).width, width + 40);
    EXPECT_EQ(Bar(*view, Qt::Horizontal).maximum(), limit + 40);
    const int sample = window->SampleColumnWidth();
    QTest::mousePress(window, Qt::LeftButton, {}, {sample, 9});
    QTest::mouseMove(window, {sample + 25, 9});
    QTest::mouseRelease(window, Qt::LeftButton, {}, {sample + 25, 9});
    EXPECT_EQ(window->SampleColumnWidth(), sample + 25);
}

TEST_F(Mouse, DragsAColumnToAnotherPlace) {
    Open();
    const std::string moved = Visible(3).RowName();
    QTest::mousePress(window, Qt::LeftButton, {}, Column(3));
    QTest::mouseMove(window, Column(1));
    EXPECT_EQ(window->cursor().shape(), Qt::ClosedHandCursor);
    QTest::mouseRelease(window, Qt::LeftButton, {}, Column(1));
    EXPECT_EQ(Visible(1).RowName(), moved);
    EXPECT_EQ(window->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(Mouse, ShowsWhereColumnsCanBeResized) {
    Open();
    QTest::mouseMove(window, Edge(1));
    EXPECT_EQ(window->cursor().shape(), Qt::SizeHorCursor);
    QTest::mouseMove(window, {Edge(1).x(), 200});
    EXPECT_EQ(window->cursor().shape(), Qt::ArrowCursor);
}

/// The menu on a column, driven by the mouse.
class Menu : public Mouse {
protected:
    void Open(int first = -500, int last = 499, bool withPrompts = true) {
        Load(first, last);
        view = std::make_unique<CTraceView>(
            nullptr, true, false,
            TraceViewParts{settings, nullptr, nullptr, withPrompts ? &prompts : nullptr});
        view->AttachDocument(document.get());
        view->resize(800, 600);
        view->show();
        view->OnInitialUpdate();
        QApplication::processEvents();
        window = view->findChild<CStateWnd*>();
    }
    static QAction* Find(const QMenu& menu, const QString& path) {
        const QList<QAction*> actions = menu.actions();
        for (QAction* action : actions) {
            if (action->menu() != nullptr && path.startsWith(action->text() + "/")) {
                return Find(*action->menu(), path.mid(action->text().size() + 1));
            }
            if (action->text() == path) {
                return action;
            }
        }
        return nullptr;
    }
    /// Opens the menu on the nth column and does something with it.
    void OnMenu(int column, const std::function<void(QMenu&)>& act) {
        bool met = false;
        QTimer::singleShot(0, [&] {
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                met = true;
                act(*menu);
                menu->close();
            }
        });
        Click(Column(column), Qt::RightButton);
        EXPECT_TRUE(met);
    }
    void Choose(int column, const QString& path) {
        OnMenu(column, [&](QMenu& menu) {
            QAction* action = Find(menu, path);
            ASSERT_NE(action, nullptr) << path.toStdString();
            ASSERT_TRUE(action->isEnabled()) << path.toStdString();
            action->trigger();
        });
    }
    /// Chooses an entry that opens the dialog and answers that.
    void ChooseSignal(int column, const QString& entry,
                      const std::function<void(CChangeSignalDialog&)>& answer) {
        QTimer::singleShot(50, [&] {
            auto* dialog = qobject_cast<CChangeSignalDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            answer(*dialog);
            dialog->accept();
        });
        Choose(column, entry);
    }
    int ColumnOf(const std::string& name) {
        for (int n = 0;; ++n) {
            if (Visible(n).RowName() == name) {
                return n;
            }
        }
    }
};

TEST_F(Menu, HasItsEntriesInOrder) {
    Open();
    OnMenu(0, [](QMenu& menu) {
        QStringList texts;
        for (const QAction* action : menu.actions()) {
            texts << (action->isSeparator() ? "-" : action->text());
        }
        EXPECT_EQ(texts.join("|").toStdString(),
                  "Change Signal...|Insert Signal...|Delete Signal|Insert Blank|-|Change Base|"
                  "Change Color...|-|Expand|Collapse");
        EXPECT_FALSE(Find(menu, "Expand")->isEnabled()) << "a decoded column";
        EXPECT_FALSE(Find(menu, "Collapse")->isEnabled()) << "one column alone";
    });
    EXPECT_TRUE(Visible(0).selected);
}

TEST_F(Menu, BelongsToTheHeaderAlone) {
    Open();
    bool opened = false;
    QTimer::singleShot(0, [&] {
        if (QWidget* menu = QApplication::activePopupWidget()) {
            opened = true;
            menu->close();
        }
    });
    Click(Row(3), Qt::RightButton);
    QApplication::processEvents();
    EXPECT_FALSE(opened);
    EXPECT_NE(document->Marker(2, false), -1);
}

TEST_F(Menu, DeletesWhatIsSelectedWhenTheUserSaysSo) {
    Open();
    const std::string second = Visible(1).RowName();
    prompts.AnswerNext(Answer::No);
    Choose(0, "Delete Signal");
    EXPECT_EQ(prompts.Texts().back(), "Delete selected signal(s)?");
    EXPECT_EQ(Visible(1).RowName(), second);
    prompts.AnswerNext(Answer::Yes);
    Choose(0, "Delete Signal");
    EXPECT_EQ(Visible(0).RowName(), second);
}

TEST_F(Menu, InsertsABlankBeforeTheColumn) {
    Open();
    const std::string old = Visible(1).RowName();
    Choose(1, "Insert Blank");
    EXPECT_EQ(Visible(1).dataIndex, -1);
    EXPECT_EQ(Visible(2).RowName(), old);
}

TEST_F(Menu, ChangesTheBaseOfOneSignal) {
    Open();
    const int bus = ColumnOf("AD[63:0]");
    OnMenu(bus, [](QMenu& menu) {
        EXPECT_TRUE(Find(menu, "Change Base/Hex")->isChecked());
        EXPECT_FALSE(Find(menu, "Change Base/Octal")->isChecked());
    });
    EXPECT_TRUE(Repaints(*view, [&] { Choose(bus, "Change Base/Octal"); }));
    EXPECT_EQ(Visible(bus).radix, Radix::Octal);
    EXPECT_EQ(Visible(bus).width, window->MeasureColumn(Visible(bus)));
    const int octal = Visible(bus).width;
    Choose(bus, "Change Base/Binary");
    EXPECT_GT(Visible(bus).width, 2 * octal) << "or its digits would be cut";
}

TEST_F(Menu, ExpandsABusAndCollapsesLines) {
    Open();
    const int bus = ColumnOf("C/BE[7:0]");
    Choose(bus, "Expand");
    EXPECT_EQ(Visible(bus).RowName(), "C/BE[0]");
    EXPECT_EQ(Visible(bus + 7).RowName(), "C/BE[7]");
    EXPECT_EQ(Visible(bus + 7).width, window->MeasureColumn(Visible(bus + 7)));
    Visible(bus + 5).width = 99;
    Click(Column(bus));
    Click(Column(bus + 1), Qt::LeftButton, Qt::ShiftModifier);
    Choose(bus, "Collapse");
    EXPECT_EQ(Visible(bus).groupWidth, 2U);
    EXPECT_EQ(Visible(bus).width, window->MeasureColumn(Visible(bus)));
    EXPECT_EQ(Visible(bus + 1).RowName(), "C/BE[2]");
    EXPECT_EQ(Visible(bus + 4).width, 99) << "the others keep theirs";
}

TEST_F(Menu, ChangesASignalInItsPlace) {
    Open();
    const int bus = ColumnOf("AD[63:0]");
    ChooseSignal(bus, "Change Signal...", [](CChangeSignalDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>("Name")->currentText(), "AD");
        dialog.findChild<QSpinBox*>("High")->setValue(7);
        dialog.findChild<ColorButton*>()->SetColor(0x010203);
        dialog.findChild<QCheckBox*>()->setChecked(false);
    });
    EXPECT_EQ(Visible(bus).color, 0x010203U);
    EXPECT_FALSE(Visible(bus).showValue);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_TRUE(document->stateList[document->stateList.IndexOf(&Visible(bus)) + i].selected);
    }
    EXPECT_EQ(Visible(bus).RowName(), "AD[7:0]");
    EXPECT_TRUE(Visible(bus).selected);
    const auto row = Visible(bus).GroupRow(300);
    ASSERT_EQ(row.size(), 1U);
    EXPECT_EQ(row[0], 300 & 255) << "with its samples";
    EXPECT_LT(Visible(bus).width, 120) << "and a width of its own";
}

TEST_F(Menu, InsertsASignalBeforeTheColumn) {
    Open();
    const std::string old = Visible(2).RowName();
    ChooseSignal(2, "Insert Signal...", [](CChangeSignalDialog& dialog) {
        auto* name = dialog.findChild<QComboBox*>("Name");
        name->setCurrentIndex(name->findText("TIME"));
    });
    EXPECT_EQ(Visible(2).RowName(), "TIME");
    EXPECT_EQ(Visible(3).RowName(), old);
    const QScrollBar& bar = Bar(*view, Qt::Horizontal);
    EXPECT_EQ(bar.maximum(),
              window->ColumnsWidth() - (window->width() - window->SampleColumnWidth() - 1));
}

TEST_F(Menu, AccumulatedTimesFollowTheSamplesWhereverTheyLie) {
    Open(-3000, 2999);
    ChooseSignal(0, "Insert Signal...", [](CChangeSignalDialog& dialog) {
        auto* name = dialog.findChild<QComboBox*>("Name");
        ASSERT_GE(name->findText("ACCUM"), 0);
        name->setCurrentIndex(name->findText("ACCUM"));
    });
    // Each sample comes 30 ns after the one before it; what a frame shows must not depend on the
    // frames before it.
    const auto picture = [&](std::int64_t sample) {
        view->ScrollToSample(sample);
        return window->grab().toImage();
    };
    const QImage early = picture(100);
    const QImage late = picture(5500);
    EXPECT_EQ(picture(100), early);
    window->SamplesChanged();
    EXPECT_EQ(picture(5500), late);
    EXPECT_NE(early, late);
    for (const auto& signal : document->stateList.All()) {
        if (signal->IsGroupStart() && signal->permanent && signal->baseName == "TIME") {
            signal->groupData[4000 * signal->RowBytes()] = 90;
        }
    }
    document->UpdateAllViews(nullptr, HintRedraw);
    EXPECT_NE(picture(5500), late) << "with other samples";
}

TEST_F(Menu, WhatChangesInOneListingChangesInTheOther) {
    Open();
    auto other = MakeView();
    const auto picture = [&] { return other->findChild<CStateWnd*>()->grab().toImage(); };
    const QImage before = picture();
    Choose(1, "Insert Blank");
    EXPECT_NE(picture(), before);
}

TEST_F(Menu, ColoursTheSelectedColumnsAndTheirDefinitions) {
    Open();
    const int bus = ColumnOf("C/BE[7:0]");
    Click(Column(bus));
    Click(Column(bus + 1), Qt::LeftButton, Qt::ControlModifier);
    const std::uint32_t before = Visible(bus).color = 0x445566;
    QTimer::singleShot(50, [before] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->currentColor(), ColorOf(before)) << "begins with its own";
        dialog->setCurrentColor(QColor(0x11, 0x22, 0x33));
        dialog->accept();
    });
    Choose(bus, "Change Color...");
    EXPECT_EQ(Visible(bus).color, 0x332211U);
    EXPECT_EQ(Visible(bus + 1).color, 0x332211U);
    EXPECT_EQ(board.tables.busSignals.FindByName("C/BE")->color, 0x332211U);
}

TEST_F(Menu, ACancelledDialogChangesNothing) {
    Open();
    const std::string old = Visible(2).RowName();
    const std::size_t count = document->stateList.Size();
    for (const char* entry : {"Change Signal...", "Insert Signal..."}) {
        QTimer::singleShot(50, [] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                dialog->reject();
            }
        });
        Choose(2, entry);
        EXPECT_EQ(Visible(2).RowName(), old);
        EXPECT_EQ(document->stateList.Size(), count);
    }
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

TEST_F(TraceView, TurningAFineWheelBackStartsANewNotch) {
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
    QScrollBar& bar = Bar(*view, Qt::Horizontal);
    const QPointF at(bar.rect().center());
    QWheelEvent event(at, bar.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&bar, &event);
    EXPECT_EQ(view->TopSample(), 101);
}

TEST_F(TraceView, MouseOnTheThumbScrollsAndLeavesTheThumbAtTheRow) {
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

TEST_F(TraceView, MouseOnTheHorizontalThumbMovesTheColumns) {
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

TEST_F(TraceView, GoesToEachPlaceThatThereIs) {
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

TEST_F(TraceView, NowhereToGoInADocumentWithoutSamples) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    auto view = MakeView();
    for (const auto target : {GoToTarget::Marker1, GoToTarget::Start, GoToTarget::End}) {
        EXPECT_FALSE(view->CanGoTo(target));
        view->GoTo(target);
        EXPECT_EQ(view->TopSample(), 0);
    }
}

TEST_F(TraceView, GoToInPowerZoomLeavesTheOthersAlone) {
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

TEST_F(TraceView, FilterKeepsThePlaceAndMovesTheBar) {
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

TEST_F(TraceView, FilterThatMatchesNothingListsNothing) {
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

TEST_F(TraceView, OnlyABlockThatShowsIsDrawn) {
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

TEST_F(TraceView, NewColoursAreTakenAtTheNextPaint) {
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
    EXPECT_EQ(view->TopSample(), top); // a new size leaves the top where it is
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

TEST_F(TraceView, ShowsItsGroundBesideTheHeader) {
    Load(0, 99);
    auto view = MakeView(true, false, {640, 480});
    EXPECT_EQ(view->grab().toImage().pixel(636, 5) & 0xFFFFFF, 0xA0A0A0U);
}

TEST_F(TraceView, TitlesFromAFileMakeNoColumnOfAnyWidth) {
    Load(0, 99);
    document->stateList[0].groupName.assign(1 << 20, 'W');
    document->stateList[0].name.assign(1 << 20, 'W');
    auto view = MakeView();
    EXPECT_LE(document->stateList[0].width, 1020);
    EXPECT_GE(document->stateList[0].width, 1000);
}

} // namespace
} // namespace busquill::test
