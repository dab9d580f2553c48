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
    std::string Value(const std::string& name) {
        const auto& table = *Dock().findChild<QTableWidget*>("IntervalTable");
        for (int row = 0; row < table.rowCount(); ++row) {
            if (table.item(row, 0)->text().toStdString() == name) {
                return table.item(row, 1)->text().toStdString();
            }
        }
        return "(none)";
    }
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

/// A setup that is chosen after the run says nothing about its samples.
TEST_F(IntervalOfRuns, CountsClocksAsTheSamplesWereTaken) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    Choose("Analyze/Interval");
    Trace().setup.clock = clock133MHz;
    Go();
    ASSERT_TRUE(Complete());
    Trace().setup.clock = clockOfBus;
    Trace().SetMarker(1, 10);
    Trace().SetMarker(2, 60);
    Settle();
    EXPECT_EQ(Value("Samples"), "50");
    EXPECT_EQ(Value("Clocks"), "(none)");
    EXPECT_EQ(Note(), "");
    Trace().setup.clock = clockTransfer;
    Go();
    Settle();
    ASSERT_TRUE(Complete());
    Trace().setup.clock = clockOfBus;
    Trace().SetMarker(1, 10);
    Trace().SetMarker(2, 60);
    Settle();
    EXPECT_EQ(Note(), "The setup did not store every sample, so counts may be too small.");
}

} // namespace
} // namespace busquill::test
