// What lies between the markers, in its panel beside the windows of a capture.

#include "analysis/interval.h"
#include "capture/trace_document.h"
#include "support/modal_qt.h"
#include "support/program_fixture_qt.h"
#include "ui/display/trace_view.h"
#include "ui/trace/child_frame.h"

#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QEventLoop>
#include <QLabel>
#include <QTableWidget>
#include <QTimer>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::HasSubstr;

class IntervalPanels : public ProgramFixture {
protected:
    IntervalPanels() {
        StartDemo();
        Frame().resize(1100, 800);
        Open("Trigger2.tra");
        Choose("Analyze/Interval");
    }
    void Open(const std::string& name) {
        program->App().OpenDocumentFile(dir.File(name));
        Settle();
    }
    /// Panels follow when the program waits for an event.
    static void Settle() {
        QEventLoop loop;
        QTimer::singleShot(5, &loop, &QEventLoop::quit);
        loop.exec();
    }
    CTraceView& View() {
        return dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow()).TraceView();
    }
    CTesselDoc& Trace() { return View().Trace(); }
    void PutMarkers(std::int64_t first, std::int64_t second) {
        Trace().ToggleMarker(1, first, false);
        Trace().ToggleMarker(2, second, false);
        Settle();
    }
    QDockWidget& Dock() { return *Frame().findChild<QDockWidget*>("Interval"); }
    QTableWidget& Table() { return *Dock().findChild<QTableWidget*>("IntervalTable"); }
    std::string Note() { return Dock().findChild<QLabel*>("IntervalNote")->text().toStdString(); }
    std::string Value(const std::string& name) {
        for (int row = 0; row < Table().rowCount(); ++row) {
            if (Table().item(row, 0)->text().toStdString() == name) {
                return Table().item(row, 1)->text().toStdString();
            }
        }
        return "(none)";
    }
};

TEST_F(IntervalPanels, AskForMarkersUntilBothAreSet) {
    ASSERT_TRUE(Dock().isVisible());
    EXPECT_THAT(Note(), HasSubstr("F7 and F8"));
    EXPECT_EQ(Table().rowCount(), 0);
    Trace().ToggleMarker(1, 100, false);
    Settle();
    EXPECT_THAT(Note(), HasSubstr("F7 and F8"));
    Trace().ToggleMarker(2, 200, false);
    Settle();
    EXPECT_EQ(Note(), "");
    EXPECT_EQ(Value("Samples"), "100");
    Trace().ToggleMarker(2, 200, false); // removes it
    Settle();
    EXPECT_EQ(Table().rowCount(), 0);
}

TEST_F(IntervalPanels, ShowTheFiguresOfTheCore) {
    PutMarkers(3000, 1000);
    const IntervalFigures figures =
        FiguresOf(program->Link().Traits(), program->Tables(),
                  {Trace().GetStore().GetData(false), 0, {}}, 1000, 3000, true);
    ASSERT_GT(figures.transactions.value(), 10U);
    EXPECT_EQ(Value("Samples"), "2,000");
    EXPECT_THAT(
        Value("Time"),
        HasSubstr(QLocale(QLocale::English).toString(qlonglong{figures.time}).toStdString() +
                  "ns"));
    EXPECT_EQ(Value("Transactions"), std::to_string(*figures.transactions));
    EXPECT_EQ(Value("Bytes"),
              QLocale(QLocale::English).toString(qulonglong{figures.bytes}).toStdString());
    EXPECT_THAT(Value("Throughput"), HasSubstr("MB/s"));
    EXPECT_THAT(Value("1/t"), HasSubstr("Hz"));
}

TEST_F(IntervalPanels, FollowMarkersThatAreMovedByKeys) {
    PutMarkers(100, 200);
    View().setFocus();
    QTest::keyClick(&Frame(), Qt::Key_Right, Qt::AltModifier);
    Settle();
    EXPECT_EQ(Value("Samples"), "99");
    QTest::keyClick(&Frame(), Qt::Key_Left, Qt::AltModifier | Qt::ShiftModifier);
    Settle();
    EXPECT_EQ(Value("Samples"), "98");
}

TEST_F(IntervalPanels, CountTheEdgesOfTheSelectedSignals) {
    PutMarkers(100, 1100);
    const int before = Table().rowCount();
    for (const auto& signal : Trace().stateList.All()) {
        if (signal->RowName() == "FRAME" && !signal->grouped) {
            signal->selected = true;
        }
    }
    Settle();
    const EdgeCount edges = [&] {
        for (const auto& signal : Trace().stateList.All()) {
            if (signal->selected) {
                return EdgesOf(*signal, {Trace().GetStore().GetData(false), 0, {}}, 100, 1100);
            }
        }
        return EdgeCount();
    }();
    ASSERT_GT(edges.changes, 0U);
    EXPECT_EQ(Table().rowCount(), before + 1);
    EXPECT_EQ(Value("Edges of FRAME"), std::to_string(edges.changes) + ": " +
                                           std::to_string(edges.rising) + " rising, " +
                                           std::to_string(edges.falling) + " falling");
}

TEST_F(IntervalPanels, AreCopiedAsLines) {
    PutMarkers(100, 200);
    QApplication::clipboard()->clear();
    Frame().activateWindow();
    Table().setFocus();
    Table().clearSelection();
    Settle();
    Choose("Edit/Copy");
    EXPECT_THAT(QApplication::clipboard()->text().toStdString(), HasSubstr("Samples\t100\nTime\t"));
    QTest::mouseClick(Table().viewport(), Qt::LeftButton, {},
                      Table().visualItemRect(Table().item(0, 0)).center());
    Settle();
    QApplication::clipboard()->clear();
    QTest::keyClick(&Table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "Samples\t100\n");
}

TEST_F(IntervalPanels, AreCopiedAsPlainNumbersWithTheirUnits) {
    for (const auto& signal : Trace().stateList.All()) {
        signal->selected = signal->RowName() == "FRAME" && !signal->grouped;
    }
    PutMarkers(0, 3000);
    const EdgeCount edges = [&] {
        for (const auto& signal : Trace().stateList.All()) {
            if (signal->selected) {
                return EdgesOf(*signal, {Trace().GetStore().GetData(false), 0, {}}, 0, 3000);
            }
        }
        return EdgeCount();
    }();
    const std::int64_t time = Trace().stateList.TimeFrom(0, 3000).value();
    Frame().activateWindow();
    Table().setFocus();
    Settle();
    EXPECT_EQ(
        AnswerMenu([&] { QTest::keyClick(&Table(), Qt::Key_F10, Qt::ShiftModifier); }, "&Copy"),
        QStringList("&Copy"));
    const std::string copied = QApplication::clipboard()->text().toStdString();
    EXPECT_THAT(copied, HasSubstr("Samples\t3000\n"));
    EXPECT_THAT(copied, HasSubstr("Time\t" + std::to_string(time) + "\tns\n"));
    EXPECT_THAT(copied, testing::ContainsRegex("Throughput\t[0-9.e+]+\tB/s\n"));
    EXPECT_THAT(copied,
                HasSubstr("\nEdges of FRAME\t" + std::to_string(edges.changes) +
                          "\nRising edges of FRAME\t" + std::to_string(edges.rising) +
                          "\nFalling edges of FRAME\t" + std::to_string(edges.falling) + "\n"));
}

/// A capture of so many samples that they are counted in several pieces.
class LongIntervals : public IntervalPanels {
protected:
    LongIntervals() {
        std::string text =
            "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\",0," +
            std::to_string(last) + '\n';
        for (int i = 0; i <= last; ++i) {
            text += std::to_string(i) + "," + std::to_string(i % 7) +
                    ",2,3,0,0,0,0,0,0,0,0,0,0,0,30,0,0,0\n";
        }
        dir.Write("long.tra", text);
        Open("long.tra");
        for (const auto& signal : View().List().All()) {
            signal->selected = true;
        }
    }
    bool HasCounted() {
        constexpr int patience = 60'000; // milliseconds
        return QTest::qWaitFor([&] { return Value("Transactions") != "(none)"; }, patience);
    }
    static constexpr int last = 120'000;
};

TEST_F(LongIntervals, AreCountedInPiecesBetweenEvents) {
    PutMarkers(0, last);
    EXPECT_EQ(Value("Samples"), "120,000");
    EXPECT_EQ(Value("Transactions"), "(none)");
    EXPECT_THAT(Note(), testing::MatchesRegex("Counting, [0-9]+ % ..."));
    // A marker that is moved meanwhile begins anew.
    Trace().ToggleMarker(2, last, false);
    Trace().ToggleMarker(2, last - 1, false);
    ASSERT_TRUE(HasCounted());
    EXPECT_EQ(Value("Samples"), "119,999");
    EXPECT_EQ(Note(), "");
    EXPECT_EQ(Value("Edges of FRAME"), "0: 0 rising, 0 falling");
    bool anyChange = false;
    for (const auto& signal : View().List().All()) {
        if (signal->IsGroupStart() && signal->decoded == nullptr && !signal->IsBlank()) {
            const auto edges =
                EdgesOf(*signal, {Trace().GetStore().GetData(false), 0, {}}, 0, last - 1);
            const std::string shown = Value("Changes of " + signal->RowName());
            EXPECT_EQ(shown,
                      QLocale(QLocale::English).toString(qulonglong{edges.changes}).toStdString())
                << signal->RowName();
            anyChange = anyChange || edges.changes > 1000;
        }
    }
    EXPECT_TRUE(anyChange);
}

TEST_F(LongIntervals, AreNotCountedInAClosedWindow) {
    PutMarkers(0, last);
    ASSERT_THAT(Note(), HasSubstr("Counting"));
    Frame().Area().activeSubWindow()->close();
    QTest::qWait(50);
    Settle();
    EXPECT_EQ(Value("Transactions"), "(none)");
    EXPECT_THAT(Note(), testing::Not(HasSubstr("Counting")));
}

TEST_F(IntervalPanels, FollowTheActiveWindow) {
    PutMarkers(100, 200);
    QMdiSubWindow* const first = Frame().Area().activeSubWindow();
    Open("Trigger1.tra");
    EXPECT_EQ(Table().rowCount(), 0) << "its markers are not set";
    Frame().Area().setActiveSubWindow(first);
    Settle();
    EXPECT_EQ(Value("Samples"), "100");
    for (QMdiSubWindow* window : Frame().Area().subWindowList()) {
        window->close();
    }
    Settle();
    EXPECT_EQ(Note(), "The active window shows no capture.");
}

TEST_F(IntervalPanels, SayThatSamplesBetweenTheMarkersAreMissing) {
    std::string text = ReadWholeFile(dir.File("Trigger2.tra"));
    const std::size_t sample = text.find("\n-1920,");
    ASSERT_NE(sample, std::string::npos);
    dir.Write("gap.tra", text.erase(sample, text.find('\n', sample + 1) - sample));
    Open("gap.tra");
    PutMarkers(100, 140); // the capture begins with sample -2070
    EXPECT_EQ(Note(), "");
    PutMarkers(120, 200);
    EXPECT_EQ(Note(),
              "Samples between the markers are missing, so times and counts are too small.");
}

TEST_F(IntervalPanels, OfPowerZoomHaveTimesInPicosecondsAndNoTransactions) {
    Open("Trigger1.tra");
    for (QMdiSubWindow* window : Frame().Area().subWindowList()) {
        if (dynamic_cast<CChildFrame&>(*window).TraceView().IsZoom()) {
            Frame().Area().setActiveSubWindow(window);
        }
    }
    ASSERT_TRUE(View().IsZoom());
    Trace().ToggleMarker(1, 10, true);
    Trace().ToggleMarker(2, 30, true);
    Settle();
    EXPECT_EQ(Value("Samples"), "20");
    EXPECT_THAT(Value("Time"), HasSubstr("ps"));
    EXPECT_EQ(Value("Transactions"), "(none)");
}

TEST_F(IntervalPanels, EscapeLeadsBackToTheCapture) {
    PutMarkers(100, 200);
    Frame().activateWindow();
    Table().setFocus();
    QTest::keyClick(&Table(), Qt::Key_Escape);
    EXPECT_FALSE(Table().hasFocus());
    EXPECT_TRUE(View().isAncestorOf(QApplication::focusWidget()) || View().hasFocus());
}

} // namespace
} // namespace busquill::test
