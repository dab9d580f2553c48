#include "capture/trace_search.h"
#include "platform/text_file.h"
#include "support/modal_qt.h"
#include "support/trace_view_fixture_qt.h"
#include "ui/display/wave_window.h"
#include "ui/framework/painting.h"
#include "ui/signals/change_signal_dialog.h"

#include <QAction>
#include <QMenu>
#include <QPaintEvent>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTimer>
#include <QtTest/QTest>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

/// A view of waveforms over samples with counting data lines.
class Waveforms : public TraceViewFixture {
protected:
    explicit Waveforms(const std::string& model = "PCIKite-1") : TraceViewFixture(model) {}

    void Open(int first = -500, int last = 499, bool isZoom = false, QSize size = {800, 400},
              const std::string& extra = "") {
        Load(first, last, extra);
        for (const CSignalList* list : {&document->waveformList, &document->zoomList}) {
            for (const auto& signal : list->All()) {
                signal->height = 20;
            }
        }
        view = std::make_unique<CTraceView>(nullptr, false, isZoom,
                                            TraceViewParts{settings, nullptr, &prompts});
        view->SetFrame(&frame);
        view->AttachDocument(document.get());
        view->resize(size);
        view->show();
        view->OnInitialUpdate();
        QApplication::processEvents();
        window = view->findChild<CWaveformWnd*>();
    }
    QScrollBar& SampleBar() { return *view->findChildren<QScrollBar*>()[1]; }
    QScrollBar& SignalBar() { return *view->findChildren<QScrollBar*>()[0]; }
    QScrollBar& ZoomBar() { return *view->findChildren<QScrollBar*>()[2]; }
    [[nodiscard]] int WaveLeft() const { return window->NameWidth() + window->ValueWidth() + 1; }
    void Key(Qt::Key key) { QTest::keyClick(view.get(), key); }
    void Wheel(int delta) { TurnWheel(*window, {0, delta}); }
    void Click(QPoint place, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers keys = Qt::NoModifier) {
        QTest::mouseClick(window, button, keys, place);
    }
    /// Chooses an entry of the menu of the nth band's name; `choose` does what may open a dialog.
    void ChooseOfMenu(
        int n, const QString& entry,
        const std::function<void(QAction&)>& choose = [](QAction& action) { action.trigger(); }) {
        QTimer::singleShot(0, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            for (QAction* action : menu->actions()) {
                if (action->text() == entry) {
                    choose(*action);
                }
            }
            menu->close();
        });
        Click(Name(n), Qt::RightButton);
    }
    void Drag(QPoint from, QPoint to) {
        QTest::mousePress(window, Qt::LeftButton, {}, from);
        QTest::mouseMove(window, to);
        QTest::mouseRelease(window, Qt::LeftButton, {}, to);
    }
    /// A point in the waves, a number of pixels right of their left edge.
    [[nodiscard]] QPoint Wave(int d) const {
        return {window->NameWidth() + window->ValueWidth() + d, 100};
    }
    /// The middle of the nth band's name, and the end of the band.
    QPoint Name(int n) { return {30, BandTop(n) + Band(n).height / 2}; }
    QPoint BandEnd(int n) { return {30, BandTop(n) + Band(n).height}; }
    CSignal& Band(int n) {
        for (const auto& signal : document->waveformList.All()) {
            if (signal->VisibleHeight() > 0 && n-- == 0) {
                return *signal;
            }
        }
        throw std::runtime_error("no such band");
    }
    int BandTop(int n) {
        int y = 18;
        for (int i = 0; i < n; ++i) {
            y += Band(i).height + 1;
        }
        return y;
    }
    [[nodiscard]] QImage Picture() { return window->grab().toImage(); }
    /// The part of the window that is repainted by an action.
    QRect Painted(const std::function<void()>& act) {
        struct Watch : QObject {
            QRegion painted;
            bool eventFilter(QObject* /*watched*/, QEvent* event) override {
                if (event->type() == QEvent::Paint) {
                    painted |= static_cast<QPaintEvent*>(event)->region();
                }
                return false;
            }
        } watch;
        QApplication::processEvents();
        window->installEventFilter(&watch);
        act();
        QApplication::processEvents();
        return watch.painted.boundingRect();
    }

    RecordingFrame frame;
    std::unique_ptr<CTraceView> view;
    CWaveformWnd* window = nullptr;
};

// Along the samples.

TEST_F(Waveforms, TheArrowsOfTheHorizontalBarMoveByFourPixels) {
    Open();
    const std::int64_t row = window->Place().row;
    for (int i = 1; i <= 4; ++i) {
        ClickArrow(SampleBar(), true);
        EXPECT_EQ(window->Place(), (WavePlace{row, 4 * i}));
    }
    ClickArrow(SampleBar(), false);
    EXPECT_EQ(window->Place(), (WavePlace{row, 12}));
    const int value = SampleBar().value();
    EXPECT_EQ(value, static_cast<int>(row * 10));
}

TEST_F(Waveforms, BeginWithTheTriggerInTheMiddleAtTwentyPixelsPerSample) {
    Open();
    EXPECT_EQ(window->Zoom(), 20);
    EXPECT_EQ(ZoomBar().value(), 20);
    EXPECT_EQ(view->CenterSample(), 500);
    EXPECT_EQ(window->NameWidth(), 75);
    EXPECT_EQ(window->ValueWidth(), 50);
    EXPECT_EQ(window->VisibleSampleCount(), (window->width() - 125) / 20);
}

TEST_F(Waveforms, ArrowKeysAndTheWheelMoveByFourPixels) {
    Open();
    const std::int64_t row = window->Place().row;
    Key(Qt::Key_Right);
    EXPECT_EQ(window->Place(), (WavePlace{row, 4}));
    Key(Qt::Key_Left);
    Key(Qt::Key_Left);
    EXPECT_EQ(window->Place(), (WavePlace{row - 1, 16}));
    Wheel(-120);
    EXPECT_EQ(window->Place(), (WavePlace{row, 0}));
    Wheel(120);
    EXPECT_EQ(window->Place(), (WavePlace{row - 1, 16}));
    EXPECT_EQ(view->TopSample(), row - 1);
    const auto place = window->Place();
    Key(Qt::Key_Up);
    Key(Qt::Key_Down);
    EXPECT_EQ(window->Place(), place) << "those keys are for listings";
}

TEST_F(Waveforms, TheWheelWithCtrlZoomsAtThePointer) {
    Open(-5000, 4999);
    const auto sampleAt = [&](int d) {
        const WaveScale scale{window->Zoom(), window->Place().subPixel, WaveLeft(),
                              window->width()};
        return window->Place().row + scale.SpanAt(Wave(d).x()).first;
    };
    const std::int64_t sample = sampleAt(333);
    const auto turn = [&](int delta) {
        TurnWheelAt(*window, Wave(333), {0, delta}, Qt::ControlModifier);
    };
    turn(120);
    EXPECT_EQ(window->Zoom(), 25);
    EXPECT_EQ(sampleAt(333), sample);
    turn(240);
    EXPECT_EQ(window->Zoom(), 35);
    EXPECT_EQ(ZoomBar().value(), 35);
    EXPECT_EQ(sampleAt(333), sample);
    turn(-7 * 120);
    EXPECT_EQ(window->Zoom(), -1) << "the same steps as Zoom Out";
    EXPECT_EQ(sampleAt(333), sample);
    turn(-1200);
    EXPECT_EQ(window->Zoom(), smallestZoom);
    turn(100 * 120);
    EXPECT_EQ(window->Zoom(), largestZoom);
}

TEST_F(Waveforms, AHighResolutionWheelZoomsByWholeNotches) {
    Open();
    const auto turn = [&](int delta, Qt::KeyboardModifiers keys) {
        TurnWheelAt(*window, Wave(333), {0, delta}, keys);
    };
    for (int i = 0; i < 3; ++i) {
        turn(30, Qt::ControlModifier);
    }
    EXPECT_EQ(window->Zoom(), startZoom);
    turn(30, Qt::ControlModifier);
    EXPECT_EQ(window->Zoom(), startZoom + zoomStep);
    const WavePlace place = window->Place();
    turn(90, Qt::ControlModifier);
    turn(90, {});
    EXPECT_EQ(window->Place(), place) << "parts of a notch of zooming are none of scrolling";
    EXPECT_EQ(window->Zoom(), startZoom + zoomStep);
}

TEST_F(Waveforms, ZoomingBesideTheWavesKeepsTheFirstSample) {
    Open(0, 9);
    const WavePlace first = window->Place();
    TurnWheelAt(*window, {10, 100}, {0, 120}, Qt::ControlModifier);
    EXPECT_EQ(window->Zoom(), 25);
    EXPECT_EQ(window->Place(), first);
    TurnWheelAt(*window, Wave(600), {0, 120}, Qt::ControlModifier); // the capture has ended there
    EXPECT_EQ(window->Zoom(), 30);
    EXPECT_EQ(window->Place(), first);
}

TEST_F(Waveforms, TheWheelWithShiftScrollsSideways) {
    Open();
    const std::int64_t row = window->Place().row;
    TurnWheel(*window, {0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(window->Place(), (WavePlace{row, 4}));
    TurnWheel(*window, {120, 0}); // tilted
    EXPECT_EQ(window->Place(), (WavePlace{row, 0}));
    EXPECT_EQ(window->Zoom(), startZoom);
}

TEST_F(Waveforms, AnotherWindowFollowsTheZoomAtThePointer) {
    Open();
    const auto listing = MakeView();
    TurnWheelAt(*window, Wave(600), {0, 1200}, Qt::ControlModifier);
    EXPECT_EQ(listing->TopSample(), view->TopSample());
}

TEST_F(Waveforms, PageKeysMoveByAWindow) {
    Open();
    const std::int64_t row = window->Place().row;
    const std::int64_t visible = window->VisibleSampleCount();
    Key(Qt::Key_Right);
    Key(Qt::Key_PageDown);
    EXPECT_EQ(window->Place(), (WavePlace{row + visible, 0}));
    Key(Qt::Key_PageUp);
    EXPECT_EQ(window->Place(), (WavePlace{row, 0}));
    Key(Qt::Key_Right);
    view->ScrollToSample(row);
    EXPECT_EQ(window->Place(), (WavePlace{row, 4})) << "it is the first one already";
    view->ScrollToSample(row + 1);
    EXPECT_EQ(window->Place(), (WavePlace{row + 1, 0}));
    for (int i = 0; i < 40; ++i) {
        Key(Qt::Key_PageDown);
    }
    EXPECT_EQ(window->Place().row, 1000 - visible);
    Key(Qt::Key_Right);
    EXPECT_EQ(window->Place().row, 1000 - visible) << "a step that would show less is not taken";
    for (int i = 0; i < 40; ++i) {
        Key(Qt::Key_PageUp);
    }
    EXPECT_EQ(window->Place().row, 0);
}

TEST_F(Waveforms, ABackwardStepAtANegativeZoomAppearsAtTheNextRedraw) {
    Open(-5000, 4999);
    window->SetZoom(-3);
    document->SetMarker(1, 400);
    view->ScrollToSample(300);
    const QImage before = Picture();
    Key(Qt::Key_Left);
    EXPECT_EQ(window->Place().row, 300 - 4 * 3);
    EXPECT_EQ(view->TopSample(), 300);
    EXPECT_EQ(Picture(), before);
    window->Render();
    EXPECT_EQ(view->TopSample(), 288);
    EXPECT_NE(Picture(), before);
    Key(Qt::Key_Right);
    EXPECT_EQ(view->TopSample(), 300) << "a forward step appears at once";
}

TEST_F(Waveforms, TheBarStepsPagesAndDrags) {
    Open();
    EXPECT_TRUE(SampleBar().isEnabled());
    EXPECT_EQ(SampleBar().value(), window->Place().row * 10);
    EXPECT_GE(SampleBar().pageStep(), 250);
    const std::int64_t row = window->Place().row;
    SampleBar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(window->Place(), (WavePlace{row, 4}));
    SampleBar().triggerAction(QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(window->Place(), (WavePlace{row - window->VisibleSampleCount(), 0}));
    SampleBar().setSliderPosition(1234);
    EXPECT_EQ(view->TopSample(), 123);
    SampleBar().triggerAction(QAbstractSlider::SliderToMaximum);
    EXPECT_EQ(view->TopSample(), 1000 - window->VisibleSampleCount()) << "the end can be reached";
    SampleBar().triggerAction(QAbstractSlider::SliderToMinimum);
    EXPECT_EQ(view->TopSample(), 0);
}

TEST_F(Waveforms, FewSamplesLeaveTheBarDisabled) {
    Open(-5, 4);
    EXPECT_FALSE(SampleBar().isEnabled());
    EXPECT_EQ(view->TopSample(), 0);
    EXPECT_EQ(window->LastSample(), 9);
    EXPECT_EQ(frame.gauge.State().windowLast, 9);
}

TEST_F(Waveforms, AnEmptyCaptureTakesEveryKey) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    auto empty = MakeView(false);
    for (const auto key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_PageUp, Qt::Key_PageDown}) {
        QTest::keyClick(empty.get(), key);
    }
    auto* waves = empty->findChild<CWaveformWnd*>();
    QTest::mouseClick(waves, Qt::LeftButton, {}, {300, 100});
    EXPECT_EQ(document->Marker(1, false), -1);
    EXPECT_EQ(empty->TopSample(), 0);
}

TEST_F(Waveforms, MoveWithTheListingOfTheSameCapture) {
    Open();
    auto listing = MakeView();
    Key(Qt::Key_PageDown);
    EXPECT_EQ(listing->TopSample(), view->TopSample());
    QTest::keyClick(listing.get(), Qt::Key_Down);
    EXPECT_EQ(listing->TopSample(), view->TopSample());
    auto other = MakeView(false);
    EXPECT_EQ(other->TopSample(), view->TopSample());
}

// The zoom.

TEST_F(Waveforms, ZoomByItsBarAndByCommandsSkipsZero) {
    Open();
    const std::int64_t first = view->TopSample();
    const auto act = [&](QAbstractSlider::SliderAction action) {
        ZoomBar().triggerAction(action);
        EXPECT_EQ(ZoomBar().value(), window->Zoom());
        EXPECT_EQ(view->TopSample(), first) << "unchanged";
        return window->Zoom();
    };
    EXPECT_EQ(act(QAbstractSlider::SliderSingleStepAdd), 21);
    EXPECT_EQ(act(QAbstractSlider::SliderPageStepSub), 16);
    window->SetZoom(1);
    EXPECT_EQ(act(QAbstractSlider::SliderSingleStepSub), -2);
    EXPECT_EQ(act(QAbstractSlider::SliderSingleStepAdd), -1);
    EXPECT_EQ(act(QAbstractSlider::SliderSingleStepAdd), 1);
    window->SetZoom(5);
    EXPECT_EQ(act(QAbstractSlider::SliderPageStepSub), -2);
    window->SetZoom(-5);
    EXPECT_EQ(act(QAbstractSlider::SliderPageStepAdd), 1);
    window->SetZoom(5);
    view->Zoom(false);
    EXPECT_EQ(window->Zoom(), -1);
    EXPECT_EQ(ZoomBar().value(), -1);
    window->SetZoom(-5);
    view->Zoom(true);
    EXPECT_EQ(window->Zoom(), 1);
}

TEST_F(Waveforms, ZoomIsLimitedToFourHundredAndMinusSeven) {
    Open();
    window->SetZoom(400);
    EXPECT_FALSE(view->CanZoom(true));
    EXPECT_TRUE(view->CanZoom(false));
    ZoomBar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
    ZoomBar().triggerAction(QAbstractSlider::SliderPageStepAdd);
    view->Zoom(true);
    EXPECT_EQ(window->Zoom(), 400);
    window->SetZoom(-7);
    EXPECT_TRUE(view->CanZoom(true));
    EXPECT_FALSE(view->CanZoom(false));
    ZoomBar().triggerAction(QAbstractSlider::SliderSingleStepSub);
    ZoomBar().triggerAction(QAbstractSlider::SliderPageStepSub);
    view->Zoom(false);
    EXPECT_EQ(window->Zoom(), -7);
    EXPECT_FALSE(MakeView()->CanZoom(true)) << "a listing has no zoom";
    EXPECT_FALSE(MakeView()->CanZoom(false));
}

TEST_F(Waveforms, TheScaleFollowsTheThumbAndTheBarsAreUpdatedOnRelease) {
    Open(-500, 499, false, {1200, 400});
    QScrollBar& bar = ZoomBar();
    QStyleOptionSlider option;
    option.initFrom(&bar);
    option.minimum = bar.minimum();
    option.maximum = bar.maximum();
    option.sliderPosition = option.sliderValue = bar.value();
    option.pageStep = bar.pageStep();
    option.state |= QStyle::State_Horizontal;
    const QPoint from =
        bar.style()
            ->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, &bar)
            .center();
    const int page = SampleBar().pageStep();
    QTest::mousePress(&bar, Qt::LeftButton, {}, from);
    for (const int way : {-2, -60}) {
        const QPoint to = from + QPoint(way, 0);
        QMouseEvent move(QEvent::MouseMove, to, bar.mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&bar, &move);
    }
    EXPECT_EQ(window->Zoom(), -7);
    EXPECT_EQ(SampleBar().pageStep(), page);
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, from + QPoint(-60, 0));
    EXPECT_EQ(window->Zoom(), -7);
    EXPECT_NE(SampleBar().pageStep(), page);
    bar.setSliderPosition(0);
    EXPECT_EQ(window->Zoom(), 1) << "there is no zoom of 0";
}

// Along the signals.

TEST_F(Waveforms, TheVerticalBarMovesTheBands) {
    Open();
    ASSERT_TRUE(SignalBar().isEnabled());
    EXPECT_EQ(SignalBar().pageStep(), window->height() - 18);
    SignalBar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(window->Top(), (BandPlace{0, 1}));
    EXPECT_EQ(SignalBar().value(), 1);
    SignalBar().triggerAction(QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(window->Top(), (BandPlace{-1, 0})) << "before the first, where nothing is drawn";
    EXPECT_EQ(SignalBar().value(), 0);
    SignalBar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(window->Top(), (BandPlace{0, 0}));
    SignalBar().triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(window->Top(), (BandPlace{1, 0}));
    SignalBar().triggerAction(QAbstractSlider::SliderToMaximum);
    const WaveBand last =
        VisibleBands(BandHeights(document->waveformList), window->Top(), window->height()).back();
    EXPECT_EQ(last.top + last.height + 1, window->height()) << "the last band is at the bottom";
}

TEST_F(Waveforms, BandsThatAllFitDisableTheBar) {
    Open(-5, 4, false, {800, 2000});
    EXPECT_FALSE(SignalBar().isEnabled());
    SignalBar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(window->Top(), (BandPlace{0, 0}));
}

TEST_F(Waveforms, TheBarsAreAtTheEdges) {
    Open();
    const int barWidth = SignalBar().width();
    const int barHeight = SampleBar().height();
    EXPECT_EQ(ZoomBar().geometry(), QRect(0, 400 - barHeight, 800 * 15 / 100, barHeight));
    EXPECT_EQ(SampleBar().geometry(), QRect(120, 400 - barHeight, 680, barHeight));
    EXPECT_EQ(SignalBar().geometry(), QRect(800 - barWidth, 17, barWidth, 400 - barHeight - 17));
    EXPECT_EQ(window->geometry(), QRect(0, 0, 800 - barWidth, 400 - barHeight));
}

// The mouse.

TEST_F(Waveforms, ClicksSetAndClearTheMarkers) {
    Open();
    const std::int64_t first = view->TopSample();
    Click(Wave(63));
    EXPECT_EQ(document->Marker(1, false), first + 3);
    Click(Wave(70));
    EXPECT_EQ(document->Marker(1, false), first + 4) << "the sample that begins nearest";
    Click(Wave(69));
    EXPECT_EQ(document->Marker(1, false), first + 3);
    EXPECT_EQ(document->Marker(2, false), -1);
}

TEST_F(Waveforms, AClickOnAMarkersSampleClearsIt) {
    Open();
    const std::int64_t first = view->TopSample();
    Click(Wave(63));
    Click(Wave(61));
    EXPECT_EQ(document->Marker(1, false), -1);
    Click(Wave(83), Qt::RightButton);
    EXPECT_EQ(document->Marker(2, false), first + 4);
    Click(Wave(84), Qt::RightButton);
    EXPECT_EQ(document->Marker(2, false), -1);
}

TEST_F(Waveforms, ADoubleClickSetsAMarkerAndKeepsIt) {
    Open();
    Click(Wave(63));
    QMouseEvent twice(QEvent::MouseButtonDblClick, Wave(63), window->mapToGlobal(Wave(63)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window, &twice);
    EXPECT_EQ(document->Marker(1, false), view->TopSample() + 3);
}

TEST_F(Waveforms, TheFirstSampleIsNotChosenIfItBeginsOutOfSight) {
    Open();
    const std::int64_t first = view->TopSample();
    Click(Wave(3));
    EXPECT_EQ(document->Marker(1, false), first);
    document->SetMarker(1, -1);
    Key(Qt::Key_Right); // four pixels
    Click(Wave(3));
    EXPECT_EQ(document->Marker(1, false), first + 1);
}

TEST_F(Waveforms, AtANegativeZoomAPixelSelectsTheSamplesThatItCounts) {
    Open(-5000, 4999);
    window->SetZoom(-3);
    view->ScrollToSample(100);
    Click(Wave(7));
    EXPECT_EQ(document->Marker(1, false), 100 + 21);
}

TEST_F(Waveforms, AClickAtTheRightEdgeDoesNotScroll) {
    Open(-5000, 4999);
    for (const int zoom : {20, 30, 47, 1, -1, -7}) {
        window->SetZoom(zoom);
        view->ScrollToSample(3000);
        for (int fromEdge = 1; fromEdge <= 25; fromEdge += 3) {
            document->SetMarker(1, -1);
            Click({window->width() - fromEdge, 100});
            EXPECT_GT(document->Marker(1, false), 3000);
            ASSERT_EQ(view->TopSample(), 3000) << zoom << ", " << fromEdge;
        }
        document->SetMarker(1, 3000 + window->VisibleSampleCount() + 20);
        EXPECT_GT(view->TopSample(), 3000) << "far outside";
    }
}

TEST_F(Waveforms, AfterTheLastSampleNothingIsMarked) {
    Open(-5, 4);
    Click(Wave(19 * 20));
    EXPECT_EQ(document->Marker(1, false), -1);
    Click(Wave(9 * 20));
    EXPECT_EQ(document->Marker(1, false), 9);
}

TEST_F(Waveforms, NamesAreSelectedDraggedAndResized) {
    Open();
    const std::string moved = Band(3).RowName();
    const std::string target = Band(1).RowName();
    Click(Name(2));
    EXPECT_TRUE(Band(2).selected);
    Click(Name(3), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_TRUE(Band(2).selected && Band(3).selected);
    QTest::mousePress(window, Qt::LeftButton, {}, Name(3));
    QTest::mouseMove(window, Name(1));
    EXPECT_EQ(window->cursor().shape(), Qt::ClosedHandCursor);
    QTest::mouseRelease(window, Qt::LeftButton, {}, Name(1));
    EXPECT_EQ(Band(1).RowName(), moved);
    EXPECT_EQ(Band(2).RowName(), target);
    EXPECT_EQ(window->cursor().shape(), Qt::ArrowCursor);
    const int limit = SignalBar().maximum();
    Drag(BandEnd(1), BandEnd(1) + QPoint(0, 30));
    EXPECT_EQ(Band(1).height, 50);
    EXPECT_EQ(SignalBar().maximum(), limit + 30);
    Drag(BandEnd(1), BandEnd(1) - QPoint(0, 45));
    EXPECT_EQ(Band(1).height, 20);
    EXPECT_EQ(document->Marker(1, false), -1);
}

TEST_F(Waveforms, AClickWithAModifierStartsNoDrag) {
    Open();
    const std::string name = Band(3).RowName();
    QTest::mousePress(window, Qt::LeftButton, Qt::ControlModifier, Name(3));
    QTest::mouseRelease(window, Qt::LeftButton, Qt::ControlModifier, Name(1));
    EXPECT_EQ(Band(3).RowName(), name);
}

TEST_F(Waveforms, BandsUnderTheMouseFollowTheScrolling) {
    Open();
    for (int i = 0; i < 25; ++i) { // 21 for the first band, 4 of the second
        SignalBar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
    }
    Click({30, 17});
    EXPECT_FALSE(Band(1).selected) << "the header is not a band";
    Click({30, 18 + 10});
    EXPECT_TRUE(Band(1).selected);
    Click({30, 18 + 16 + 10});
    EXPECT_TRUE(Band(2).selected);
    Drag({30, 18 + 15}, {30, 18 + 15 + 8});
    EXPECT_EQ(Band(1).height, 28);
}

TEST_F(Waveforms, TheColumnsCanBeMadeWider) {
    Open();
    Drag({75, 100}, {110, 100});
    EXPECT_EQ(window->NameWidth(), 110);
    EXPECT_EQ(window->ValueWidth(), 50);
    Drag({160, 100}, {200, 100});
    EXPECT_EQ(window->ValueWidth(), 90);
    Drag({110, 5}, {2, 5});
    const int smallest = window->NameWidth();
    EXPECT_EQ(smallest, 3 * QFontMetrics(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed))
                                .horizontalAdvance('0'));
    Drag({smallest, 5}, {2000, 5});
    EXPECT_EQ(window->NameWidth(), smallest) << "some space remains for the waves";
    EXPECT_EQ(document->Marker(1, false), -1);
    for (const auto& signal : document->waveformList.All()) {
        EXPECT_FALSE(signal->selected);
    }
}

TEST_F(Waveforms, TheEdgeOfTheValueColumnIsHitFromTheLeftOnly) {
    Open();
    Drag({125 - 5, 100}, {150, 100});
    EXPECT_EQ(window->ValueWidth(), 50);
    Drag({125 - 4, 100}, {150, 100});
    EXPECT_EQ(window->ValueWidth(), 75);
    Drag({151, 100}, {160, 100});
    EXPECT_EQ(window->ValueWidth(), 75);
    EXPECT_NE(document->Marker(1, false), -1) << "the click was in the waves";
}

TEST_F(Waveforms, TheCursorShowsWhatTheMouseWouldDo) {
    Open();
    const auto over = [&](QPoint place) {
        QTest::mouseMove(window, place);
        return window->cursor().shape();
    };
    EXPECT_EQ(over({75, 100}), Qt::SizeHorCursor);
    EXPECT_EQ(over({123, 100}), Qt::SizeHorCursor);
    EXPECT_EQ(over(BandEnd(2)), Qt::SizeVerCursor);
    EXPECT_EQ(over(Name(2)), Qt::ArrowCursor);
    EXPECT_EQ(over({300, BandEnd(2).y()}), Qt::ArrowCursor);
}

TEST_F(Waveforms, TheRightButtonOnANameOpensTheMenu) {
    Open();
    QStringList texts;
    QTimer::singleShot(0, [&] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            for (const QAction* action : menu->actions()) {
                texts << action->text();
                if (action->text() == "Insert Blank") {
                    const_cast<QAction*>(action)->trigger();
                }
            }
            menu->close();
        }
    });
    const std::string name = Band(2).RowName();
    Click(Name(2), Qt::RightButton);
    EXPECT_TRUE(texts.contains("Change Signal..."));
    EXPECT_EQ(Band(2).dataIndex, -1);
    EXPECT_EQ(Band(3).RowName(), name);
    EXPECT_TRUE(Band(3).selected);
    EXPECT_EQ(document->Marker(2, false), -1);
}

class WaveformsOnLark : public Waveforms {
protected:
    WaveformsOnLark() : Waveforms("VMELark") {}
};

TEST_F(WaveformsOnLark, ChangeSignalAndOkKeepsADecodedLine) {
    Open();
    int command = 0;
    while (Band(command).RowName() != "COMMAND") {
        ++command;
    }
    ChooseOfMenu(command, "Change Signal...", [](QAction& action) {
        AnswerDialog<CChangeSignalDialog>([&] { action.trigger(); },
                                          [](CChangeSignalDialog& dialog) { dialog.accept(); });
    });
    EXPECT_EQ(Band(command).RowName(), "COMMAND");
    EXPECT_NE(Band(command).decoded, nullptr);
}

TEST_F(Waveforms, ABlankRowOfTheMenuStaysEmpty) {
    Open();
    ChooseOfMenu(2, "Insert Blank");
    ASSERT_EQ(Band(2).dataIndex, -1);
    Click(Wave(63));
    const auto isEmpty = [this](int band) {
        // The rows of pixels of the band, right of its name, each of one colour except for the
        // marks and column lines, which all bands share.
        const QImage picture = Picture();
        const int last = BandTop(band) + Band(band).height - 1;
        for (int x = window->NameWidth() + 1; x < window->width(); ++x) {
            for (int y = BandTop(band); y < last; ++y) {
                if (picture.pixel(x, y) != picture.pixel(x, y + 1)) {
                    return false;
                }
            }
        }
        return true;
    };
    EXPECT_TRUE(isEmpty(2));
    EXPECT_FALSE(isEmpty(1) && isEmpty(3));
    // The same from a file.
    TextWriter file;
    ASSERT_TRUE(file.Create(dir.File("list")));
    file.Write("\"Waveform Signals\"\n");
    document->waveformList.WriteSignals(file, false);
    file.Write("\"End of Waveform Signals\"\n");
    ASSERT_TRUE(file.Close());
    view.reset();
    Open(-500, 499, false, {800, 400}, ReadWholeFile(dir.File("list")));
    ASSERT_EQ(Band(2).dataIndex, -1);
    Click(Wave(63));
    EXPECT_TRUE(isEmpty(2));
    EXPECT_FALSE(isEmpty(1) && isEmpty(3));
}

// Drawing.

TEST_F(Waveforms, ASelectionPaintsTheNamesAndAMarkerTheWavesAndValues) {
    Open();
    EXPECT_EQ(Painted([&] { Click(Name(2)); }), QRect(0, 0, 75, window->height()));
    const QRect marked = Painted([&] { Click(Wave(63)); });
    EXPECT_EQ(marked, QRect(75, 0, window->width() - 75, window->height()));
    EXPECT_EQ(Painted([&] { Key(Qt::Key_Right); }),
              QRect(WaveLeft(), 0, window->width() - WaveLeft(), window->height()));
    EXPECT_EQ(Painted([&] { view->ScrollToSample(view->TopSample()); }), QRect());
}

TEST_F(Waveforms, EveryPartialRepaintEqualsTheWholeOne) {
    Open();
    const auto expectWhole = [&](const char* after) {
        const QImage partial = Picture();
        window->Render();
        EXPECT_EQ(Picture(), partial) << after;
    };
    Click(Name(2));
    expectWhole("a selection");
    Click(Wave(63));
    expectWhole("marker 1");
    Click(Wave(203), Qt::RightButton);
    expectWhole("marker 2");
    Key(Qt::Key_Right);
    expectWhole("a step");
    window->SetZoom(3);
    expectWhole("a zoom");
    document->SetMarker(1, -1);
    expectWhole("a marker that goes");
    view->ScrollToSample(10);
    expectWhole("another place");
}

TEST_F(Waveforms, AMarkerOutOfSightIsScrolledIntoView) {
    Open();
    document->SetMarker(1, 900);
    EXPECT_EQ(view->CenterSample(), 900);
    const auto first = view->TopSample();
    document->SetMarker(2, first + 3);
    EXPECT_EQ(view->TopSample(), first);
}

TEST_F(Waveforms, TheValuesFollowAMarkerThatIsScrolledIntoView) {
    Open();
    const auto expectWhole = [&](const char* after) {
        const QImage shown = Picture();
        window->Render();
        EXPECT_EQ(Picture(), shown) << after;
    };
    Click(Wave(63));
    const QImage before = Picture();
    for (const auto& signal : document->searchPattern.All()) {
        if (signal->dataIndex >= 0 && signal->dataIndex < 10) { // the data lines of sample 900
            signal->data[0] |= 900 >> signal->dataIndex & 1;
            signal->mask[0] |= 1;
        }
    }
    view->Find(SearchDirection::Forward);
    ASSERT_EQ(document->Marker(1, false), 900);
    ASSERT_EQ(view->CenterSample(), 900);
    const QRect values(76, 18, 49, window->height() - 18);
    EXPECT_NE(Picture().copy(values), before.copy(values));
    expectWhole("a hit further on");
    document->SetMarker(1, 899);
    Key(Qt::Key_PageUp);
    Key(Qt::Key_PageUp);
    view->Find(SearchDirection::Forward);
    expectWhole("a hit that is further on again");
    SignalBar().triggerAction(QAbstractSlider::SliderPageStepAdd);
    expectWhole("a move of the bands");
}

TEST_F(Waveforms, TheValuesAppearWhenTheMarkersSampleHasArrived) {
    Open(0, 1999);
    document->RebuildMaps(0, 1999);
    document->SetMarker(1, 1000);
    Key(Qt::Key_PageUp);
    Key(Qt::Key_PageUp);
    Key(Qt::Key_PageUp);
    SampleRecord high;
    high.bytes.fill(0xFF);
    const std::vector<SampleRecord> block(32, high);
    document->AddBlock(992, block, false);
    document->FlushBlockUpdates();
    const QImage shown = Picture();
    window->Render();
    EXPECT_EQ(Picture(), shown);
}

TEST_F(Waveforms, NewColoursAreUsedAtTheNextPaint) {
    Open();
    const QImage before = Picture();
    settings.WriteProfileInt("Display", "WaveformBackgroundColor", 0xFFFFFF);
    EXPECT_NE(Picture(), before);
}

TEST_F(Waveforms, AnArrivingBlockIsDrawnIfItIsVisible) {
    Open(0, 19999);
    view->ScrollToSample(320);
    const auto draws = [&](std::uint32_t first, bool zoom) {
        CBlockUpdate block;
        block.first = first;
        block.count = 32;
        block.zoom = zoom;
        return !Painted([&] {
                    document->UpdateAllViews(nullptr, HintBlockArrived, &block);
                }).isEmpty();
    };
    EXPECT_TRUE(draws(320, false));
    EXPECT_FALSE(draws(288, false));
    EXPECT_FALSE(draws(320, true));
    const auto visible = static_cast<std::uint32_t>(window->VisibleSampleCount());
    EXPECT_FALSE(draws(320 + visible + 2, false));
    window->SetZoom(-7); // eight samples per pixel are drawn, though seven count
    const auto drawn = static_cast<std::uint32_t>(window->width() - WaveLeft()) * 8;
    EXPECT_TRUE(draws(320 + drawn - 1, false));
    EXPECT_FALSE(draws(320 + drawn, false));
}

TEST_F(Waveforms, NewDataAreDrawnWhereTheViewIs) {
    Open();
    EXPECT_FALSE(Painted([&] { document->UpdateAllViews(nullptr, HintDataComplete); }).isEmpty());
}

TEST_F(Waveforms, AFilterIsShownAtOnce) {
    Open(0, 999);
    document->SetMarker(2, 510);
    view->ScrollToSample(500);
    const QImage before = Picture();
    document->RemoveView(view.get());
    document->excludedBits.assign(WordsFor(1000), 0xAAAAAAAA);
    document->RebuildMapsFromFile();
    document->AddView(view.get());
    document->UpdateAllViews(nullptr, HintFilterChanged);
    EXPECT_EQ(view->TopSample(), 500);
    EXPECT_EQ(window->Place().row, 250);
    EXPECT_NE(Picture(), before);
    const std::int64_t first = view->TopSample();
    Click(Wave(43));
    EXPECT_EQ(document->Marker(1, false), first + 4) << "two rows further";
}

// Power Zoom.

TEST_F(Waveforms, PowerZoomHasItsOwnSamplesMarkersAndPicoseconds) {
    Open(-500, 499, true);
    EXPECT_EQ(view->CenterSample(), 255);
    EXPECT_EQ(frame.counters, std::make_pair(std::int64_t{255}, std::int64_t{255}));
    Click(Wave(63));
    const std::int64_t marker = document->Marker(1, true);
    EXPECT_EQ(marker, view->TopSample() + 3);
    EXPECT_EQ(document->Marker(1, false), -1);
    for (int i = 0; i < 40; ++i) {
        Key(Qt::Key_PageDown);
    }
    EXPECT_EQ(view->TopSample(), 511 - window->VisibleSampleCount());
    view->resize(300, 400);
    QApplication::processEvents();
    window->SetZoom(-1);
    view->ScrollToSample(100);
    ASSERT_EQ(window->Place().row, 100);
    Key(Qt::Key_Left);
    EXPECT_EQ(view->TopSample(), 96) << "row and sample are the same";
}

} // namespace
} // namespace busquill::test
