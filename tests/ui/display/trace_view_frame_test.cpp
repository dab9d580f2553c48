// What a trace view shows in its frame.

#include "support/trace_view_fixture_qt.h"
#include "ui/display/state_window.h"
#include "ui/display/wave_window.h"

#include <QtTest/QTest>

namespace busquill::test {
namespace {

/// A view inside a frame that records what the view shows in it.
class FramedView : public TraceViewFixture {
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

TEST_F(FramedView, AFileShowsItsCountsItsGaugeAndItsIndicator) {
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

TEST_F(FramedView, AnEmptyCaptureCountsZeros) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    document->RebuildMaps(0, 0);
    ASSERT_EQ(document->Marker(0, false), 0) << "a trigger without a sample";
    Open();
    EXPECT_EQ(frame.counters, std::make_pair(std::int64_t{0}, std::int64_t{0}));
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
    document->SetMarker(1, 900);
    EXPECT_EQ(view->CenterSample(), 900);
    expectWindow("a marker set elsewhere");
    view->ShowSample(300);
    expectWindow("a sample shown");
}

TEST_F(FramedView, TheGaugeFollowsTheScaleOfWaveforms) {
    Load(-500, 499);
    Open(false);
    const auto& window = *view->findChild<CWaveformWnd*>();
    QScrollBar& zoomBar = *view->findChildren<QScrollBar*>()[2];
    zoomBar.setSliderDown(true);
    zoomBar.setSliderPosition(40);
    ASSERT_EQ(window.Zoom(), 40);
    EXPECT_EQ(Gauge().windowLast, window.LastSample()) << "even while the thumb is held";
    zoomBar.setSliderDown(false);
    EXPECT_EQ(Gauge().windowLast, window.LastSample());
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

TEST_F(FramedView, TwoMarkersOnOneSampleAreZeroTimeApart) {
    Load(-500, 499);
    Open();
    document->SetMarker(1, 400);
    document->SetMarker(2, 400);
    EXPECT_EQ(frame.times[0], "0ns");
    EXPECT_EQ(frame.times[1], frame.times[2]);
}

TEST_F(FramedView, TheTimesFollowArrivingSamples) {
    Load(-500, 499);
    Open();
    document->SetMarker(1, 400);
    document->SetMarker(2, 401);
    const std::string before = frame.times[0];
    SampleRecord later;
    later.bytes[15] = 90;
    document->stateList.LoadSamples(401, std::span(&later, 1));
    CBlockUpdate block;
    document->UpdateAllViews(nullptr, HintBlockArrived, &block);
    EXPECT_EQ(frame.times[0], before) << "updated after the last of the pending blocks";
    document->UpdateAllViews(nullptr, HintNameChanged);
    EXPECT_NE(frame.times[0], before);
}

TEST_F(FramedView, TheTimesAreRemovedWithTheirColumn) {
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

TEST_F(FramedView, AListingWithoutATimeFieldHasNoTimes) {
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
    EXPECT_NE(other.times[0], "") << "this list has one";
}

TEST_F(FramedView, AFilterWithoutAMatchShowsNoRows) {
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

} // namespace
} // namespace busquill::test
