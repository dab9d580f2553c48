#include "support/trace_fixture_qt.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_frame.h"
#include "ui/display/trace_view.h"

#include <QStyle>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <QtTest/qtestspontaneevent.h>

namespace busquill::test {
namespace {

class TraceView : public TraceFixture {
protected:
    static int Rows(CTraceView& view) { return view.findChild<CStateWnd*>()->VisibleRowCount(); }
    /// As the system sends it: to the window under the pointer, which passes it on.
    static void Wheel(CTraceView& view, int delta) {
        const QPointF at(50, 100);
        QWheelEvent event(at, view.mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(view.findChild<CStateWnd*>(), &event);
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
    class Frame final : public TraceFrame {
    public:
        void SetTitleName(const std::string& text) override { name = text; }
        void SetComment(const std::string& text) override { comment = text; }
        std::string name;
        std::string comment;
    } frame;
    Load(0, 9, "\"Description\",\"What it shows\"\n");
    CTraceView view(nullptr, true, false, settings);
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

} // namespace
} // namespace busquill::test
