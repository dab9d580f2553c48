#include "performance/result_store.h"
#include "platform/main_thread.h"
#include "support/scroll_bar_qt.h"
#include "ui/performance/min_max_average_graph.h"
#include "ui/performance/time_graph.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest/QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace busquill::test {
namespace {

constexpr QSize usual{475, 420};
const QColor red(Qt::red);
const QColor blue(Qt::blue);

/// Row A is red and row B is off.
PerformanceSetup OneRow() {
    PerformanceSetup setup;
    setup.items[0].item = 1;
    setup.items[0].color = 0x0000FF;
    setup.items[1].color = 0xFF0000;
    return setup;
}

PerformanceResults Results(std::int32_t a, std::int32_t b = 0) {
    return {a, b, 0, 0, 0, 0, 0, 0};
}

class TimeGraph : public testing::Test {
protected:
    TimeGraph() {
        graph.SetUp(OneRow());
        graph.resize(usual);
        graph.show();
        QApplication::processEvents();
    }
    void Add(int count, std::int32_t a) {
        for (int i = 0; i < count; ++i) {
            results.Add(Results(a, 90));
        }
    }
    /// Waits for the graph's own timer.
    static void Tick() { QTest::qWait(250); }
    QScrollBar& Bar() { return *graph.findChild<QScrollBar*>(); }
    /// Whether a line of equal values reaches a place of the page, up to the last pixel, or a
    /// single value stands there; the scale is percent.
    bool Shows(int place, int value) {
        const GraphGeometry geometry{usual, ScreenGraphStyle().LabelWidth(), {0, 10, 11}};
        const QPoint at(geometry.TimeX(place), geometry.ValueY(value));
        const QImage image = graph.grab().toImage();
        return image.pixelColor(at) == red || image.pixelColor(at - QPoint(1, 0)) == red;
    }

    MainThread mainThread;
    ResultStore results;
    CTimeGraph graph{nullptr, mainThread, results};
};

TEST_F(TimeGraph, TakesResultsByItsTimer) {
    Add(10, 40);
    EXPECT_FALSE(Shows(5, 40)) << "not before the tick";
    Tick();
    EXPECT_TRUE(Shows(0, 40));
    EXPECT_TRUE(Shows(9, 40));
    EXPECT_FALSE(Shows(11, 40));
    EXPECT_FALSE(Shows(5, 90)) << "the row is off";
    EXPECT_FALSE(graph.grab().toImage().pixelColor(100, 58) == blue);
    Add(5, 60);
    Tick();
    EXPECT_TRUE(Shows(14, 60));
}

TEST_F(TimeGraph, StartsOverOnACleanPage) {
    Add(30, 40);
    Tick();
    EXPECT_FALSE(Shows(0, 40)) << "the page turns with its last value";
    Add(1, 70);
    Tick();
    EXPECT_TRUE(Shows(0, 70)) << "one point";
    EXPECT_FALSE(Shows(1, 40));
    EXPECT_EQ(Bar().maximum(), 30);
    EXPECT_EQ(Bar().value(), 30);
    EXPECT_EQ(Bar().pageStep(), 30);
}

TEST_F(TimeGraph, AnEarlierPageStaysUntilItIsScrolledForward) {
    Add(35, 40);
    Tick();
    ClickArrow(Bar(), false);
    EXPECT_EQ(graph.Page().FirstShown(), 0);
    EXPECT_EQ(Bar().value(), 0);
    EXPECT_TRUE(Shows(29, 40));
    Add(5, 80);
    Tick();
    EXPECT_TRUE(Shows(29, 40));
    EXPECT_EQ(graph.Page().FirstShown(), 0) << "new results do not turn the page";
    ClickArrow(Bar(), true);
    EXPECT_EQ(graph.Page().FirstShown(), 30);
    EXPECT_TRUE(Shows(9, 80)) << "with what has come meanwhile";
    Add(5, 20);
    Tick();
    EXPECT_TRUE(Shows(14, 20)) << "new results show again";
}

TEST_F(TimeGraph, ScrollsByPagesAndByTheThumb) {
    Add(100, 40);
    Tick();
    EXPECT_EQ(Bar().value(), 90);
    QScrollBar& bar = Bar();
    QTest::mouseClick(&bar, Qt::LeftButton, {}, PartOf(bar, QStyle::SC_ScrollBarSubPage).center());
    EXPECT_EQ(graph.Page().FirstShown(), 60);
    const QPoint thumb = PartOf(bar, QStyle::SC_ScrollBarSlider).center();
    QTest::mousePress(&bar, Qt::LeftButton, {}, thumb);
    QTest::mouseMove(&bar, QPoint(0, thumb.y()));
    EXPECT_EQ(graph.Page().FirstShown(), 0);
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, QPoint(0, thumb.y()));
    EXPECT_EQ(graph.Page().FirstShown(), 0);
    EXPECT_TRUE(Shows(29, 40));
    ClickArrow(bar, false);
    EXPECT_EQ(graph.Page().FirstShown(), 0);
}

TEST_F(TimeGraph, TheWheelTurnsPages) {
    Add(100, 40);
    Tick();
    TurnWheel(graph, {0, 240});
    EXPECT_EQ(graph.Page().FirstShown(), 30);
    EXPECT_EQ(Bar().value(), 30);
    TurnWheel(graph, {0, -120});
    EXPECT_EQ(graph.Page().FirstShown(), 60);
    EXPECT_TRUE(Shows(29, 40));
}

TEST_F(TimeGraph, WithoutResultsTheBarStaysAtTheBeginning) {
    Tick();
    ClickArrow(Bar(), true);
    ClickArrow(Bar(), false);
    EXPECT_EQ(graph.Page().FirstShown(), 0);
    EXPECT_EQ(Bar().maximum(), 0);
    EXPECT_EQ(Bar().geometry(), QRect(ScreenGraphStyle().LabelWidth() + 4, 406,
                                      475 - ScreenGraphStyle().LabelWidth() - 4, 14));
}

TEST_F(TimeGraph, TellsHowManyResultsThereAre) {
    const QSignalSpy spy(&graph, &CTimeGraph::ResultCountChanged);
    Add(3, 1);
    Tick();
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy[0][0].toLongLong(), 3);
    Tick();
    EXPECT_EQ(spy.count(), 1) << "only when it changes";
}

TEST_F(TimeGraph, ClearTurnsEverythingOff) {
    Add(40, 40);
    Tick();
    ASSERT_TRUE(Shows(5, 40));
    graph.Clear();
    EXPECT_FALSE(Shows(5, 40));
    EXPECT_EQ(graph.Page().FirstShown(), 0);
    Tick();
    EXPECT_FALSE(Shows(5, 40)) << "all items are off";
    results.Clear();
    graph.Clear();
    Tick();
    EXPECT_EQ(Bar().maximum(), 0);
    graph.EnableItem(8);
    graph.SetItemColor(8, 0);
    graph.SetItemStyle(8, 0);
}

class MinMaxAverageGraph : public testing::Test {
protected:
    MinMaxAverageGraph() {
        graph.SetUp(OneRow());
        graph.resize(usual);
        graph.show();
        QApplication::processEvents();
    }
    QColor At(int item, int value) {
        const GraphGeometry geometry{usual, ScreenGraphStyle().LabelWidth(), {0, 10, 11}};
        return graph.grab().toImage().pixelColor(geometry.ItemX(item) + 3, geometry.ValueY(value));
    }

    CMinMaxAverageGraph graph{nullptr};
};

TEST_F(MinMaxAverageGraph, DrawsTheRangeOfWhatItWasGiven) {
    for (const int value : {40, 20, 60}) {
        graph.AddResults(Results(value, 30));
    }
    EXPECT_EQ(At(0, 20), red);
    EXPECT_EQ(At(0, 60), red);
    EXPECT_EQ(At(0, 40), red) << "the average";
    EXPECT_NE(At(0, 30), red) << "a cap only there";
    EXPECT_NE(At(1, 30), blue) << "the row is off";
}

TEST_F(MinMaxAverageGraph, ValuesAboveTheScaleCountAsItsMaximum) {
    graph.AddResults(Results(500));
    graph.AddResults(Results(0));
    EXPECT_EQ(At(0, 100), red);
    EXPECT_EQ(At(0, 50), red) << "the average of 100 and 0";
}

TEST_F(MinMaxAverageGraph, IsDrawnAgainWhenARangeGrows) {
    graph.AddResults(Results(20));
    graph.AddResults(Results(60));
    ASSERT_EQ(At(0, 40), red);
    for (int i = 0; i < 10; ++i) {
        graph.AddResults(Results(60));
    }
    EXPECT_EQ(At(0, 40), red) << "the mark stays";
    graph.AddResults(Results(61));
    EXPECT_EQ(At(0, 61), red);
    EXPECT_NE(At(0, 40), red) << "and moves with the next drawing";
}

TEST_F(MinMaxAverageGraph, ResultsMayComeFromAnotherThread) {
    std::thread([this] {
        for (int value = 20; value <= 60; ++value) {
            graph.AddResults(Results(value));
        }
    }).join();
    QApplication::processEvents();
    EXPECT_EQ(At(0, 20), red);
    EXPECT_EQ(At(0, 60), red);
}

TEST_F(MinMaxAverageGraph, ShowsWhatAStoreHolds) {
    ResultStore store;
    store.Add(Results(10));
    store.Add(Results(70));
    graph.AddAll(store);
    EXPECT_EQ(At(0, 10), red);
    EXPECT_EQ(At(0, 70), red);
    graph.Clear();
    EXPECT_NE(At(0, 10), red);
    EXPECT_NE(At(0, 70), red);
    graph.EnableItem(8);
}

TEST_F(MinMaxAverageGraph, APieHasNoRanges) {
    graph.AddResults(Results(10));
    graph.SetPieForm(true);
    EXPECT_NE(At(0, 10), red);
    graph.SetPieForm(false);
    EXPECT_EQ(At(0, 10), red);
}

} // namespace
} // namespace busquill::test
