// What lies between the markers while a capture runs and is replaced by the next.

#include "support/live_frame_fixture_qt.h"

#include <QDockWidget>
#include <QEventLoop>
#include <QLabel>
#include <QTableWidget>
#include <QTimer>

namespace busquill::test {
namespace {

class IntervalOfRuns : public LiveFrameFixture {
protected:
    /// Panels follow when the program waits for an event.
    static void Settle() {
        QEventLoop loop;
        QTimer::singleShot(5, &loop, &QEventLoop::quit);
        loop.exec();
    }
    QDockWidget& Dock() { return *Frame().findChild<QDockWidget*>("Interval"); }
    int Lines() { return Dock().findChild<QTableWidget*>("IntervalTable")->rowCount(); }
    std::string Note() { return Dock().findChild<QLabel*>("IntervalNote")->text().toStdString(); }
};

TEST_F(IntervalOfRuns, ShowsNothingOfThePowerZoomOfTheRunBefore) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    Go();
    ASSERT_TRUE(Complete());
    Choose("Analyze/Interval");
    QTest::mouseClick(&Bar().ZoomButton(), Qt::LeftButton);
    for (QMdiSubWindow* window : Windows()) {
        if (dynamic_cast<CChildFrame&>(*window).TraceView().IsZoom()) {
            Frame().Area().setActiveSubWindow(window);
        }
    }
    Trace().SetZoomMarker(1, 10);
    Trace().SetZoomMarker(2, 60);
    Settle();
    EXPECT_GT(Lines(), 2);
    EXPECT_EQ(Note(), "");
    Trace().Run().Go(Trace().setup, ""); // as from the other window
    Settle();
    ASSERT_TRUE(Running());
    EXPECT_EQ(Lines(), 0);
    EXPECT_EQ(Note(), "The capture has not ended yet.");
    ASSERT_TRUE(Complete());
    Settle();
    EXPECT_GT(Lines(), 2);
}

TEST_F(IntervalOfRuns, WaitsForSamplesThatHaveNotArrived) {
    Connect({"--buffer", "64", "--rate", "50000"});
    OpenFrame("State");
    Choose("Analyze/Interval");
    StopALongRun();
    ASSERT_TRUE(RunUntil([&] { return Trace().IsUploading(); }));
    Trace().SetMarker(1, 1);
    Trace().SetMarker(2, Trace().SampleCount(false) - 1);
    Settle();
    ASSERT_TRUE(Trace().IsUploading());
    EXPECT_EQ(Lines(), 0);
    EXPECT_EQ(Note(), "The samples between the markers are still being fetched.");
    board->Fault("delay 0");
    ASSERT_TRUE(Complete());
    Settle();
    EXPECT_GT(Lines(), 4);
    EXPECT_EQ(Note(), "");
}

} // namespace
} // namespace busquill::test
