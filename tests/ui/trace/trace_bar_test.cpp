#include "ui/capture/position_gauge.h"
#include "ui/trace/trace_bar.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QToolButton>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class TraceBar : public testing::Test {
protected:
    void Show(int width) {
        bar.resize(width, bar.sizeHint().height());
        bar.show();
        QApplication::processEvents();
    }
    QString Text(const char* name) { return bar.findChild<QLabel*>(name)->text(); }
    /// The times that are shown, from the left.
    std::string Times() {
        std::string shown;
        for (const char* name : {"time-markers", "time-marker1", "time-marker2"}) {
            shown += bar.findChild<QLabel*>(name)->isVisible() ? "1" : "0";
        }
        return shown;
    }

    CTraceBar bar;
};

TEST_F(TraceBar, CountersHaveSevenDigits) {
    EXPECT_EQ(Text("Before"), "0000000");
    bar.SetCounters(42, 1234567);
    EXPECT_EQ(Text("Before"), "0000042");
    EXPECT_EQ(Text("After"), "1234567");
    bar.SetCounters(16777215, 0);
    EXPECT_EQ(Text("Before"), "16777215");
}

TEST_F(TraceBar, IndicatorAndLevel) {
    EXPECT_EQ(Text("Level"), "L1");
    const auto picture = [&] { return bar.findChild<QLabel*>("Indicator")->pixmap().toImage(); };
    const QImage idle = picture();
    bar.SetIndicator(RunIndicator::Running, 4);
    EXPECT_EQ(Text("Level"), "L4");
    EXPECT_NE(picture(), idle);
    bar.SetIndicator(RunIndicator::Uploading, -1);
    EXPECT_EQ(Text("Level"), "L4") << "there is no level";
    bar.SetIndicator(RunIndicator::Idle, -1);
    EXPECT_EQ(picture(), idle);
}

TEST_F(TraceBar, ANarrowFrameHidesTheTimesFromTheRight) {
    Show(1200);
    EXPECT_EQ(Times(), "111");
    std::string last = Times();
    std::vector<std::string> seen = {last};
    for (int width = 1200; width > 300; --width) {
        bar.resize(width, bar.height());
        if (Times() != last) {
            last = Times();
            seen.push_back(last);
        }
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"111", "110", "100", "000"}));
}

TEST_F(TraceBar, TheOtherPartsKeepFivePixelsFromTheRightEdge) {
    for (const int width : {700, 1200}) {
        Show(width);
        const QRect help(bar.HelpButton().mapTo(&bar, QPoint()), bar.HelpButton().size());
        EXPECT_EQ(help.right(), width - 1 - 5) << width;
    }
}

TEST_F(TraceBar, TimesAreShownAsGiven) {
    bar.SetTimes({"1.2us", "", "30ns"});
    EXPECT_EQ(Text("time-markers"), "1.2us");
    EXPECT_EQ(Text("time-marker1"), "");
    EXPECT_EQ(Text("time-marker2"), "30ns");
}

TEST_F(TraceBar, APowerZoomFrameHasNoRunControls) {
    bar.HideRunControls();
    Show(560);
    for (const QWidget* control : std::initializer_list<const QWidget*>{
             &bar.GoButton(), &bar.StopButton(), &bar.SetupButton(), &bar.SetupBox(),
             &bar.DisplayButton(), &bar.ZoomButton(), &bar.HelpButton()}) {
        EXPECT_FALSE(control->isVisible()) << control->objectName().toStdString();
    }
    EXPECT_TRUE(bar.Gauge().isVisible());
    EXPECT_TRUE(bar.findChild<QLabel*>("Before")->isVisible());
}

} // namespace
} // namespace busquill::test
