// Other colours are drawn and change nothing else, in the windows of all functions.

#include "capture/trace_document.h"
#include "exerciser/master_document.h"
#include "performance/performance_document.h"
#include "stimulus/stimulus_document.h"
#include "support/board_line_fixture_qt.h"
#include "support/contrast_qt.h"
#include "support/pattern_grid_qt.h"
#include "ui/controls/check_tree.h"
#include "ui/controls/color_button.h"
#include "ui/display/display_properties.h"
#include "ui/display/trace_view.h"
#include "ui/exerciser/memory_list.h"
#include "ui/framework/go_stop_child.h"
#include "ui/framework/painting.h"
#include "ui/framework/view.h"
#include "ui/levels/level_panel.h"
#include "ui/patterns/pattern_table.h"
#include "ui/performance/min_max_average_graph.h"
#include "ui/performance/time_graph.h"
#include "ui/testsuites/config_analysis_view.h"

#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QScrollBar>
#include <QSignalSpy>
#include <QToolButton>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;

class ColorChange : public BoardLineFixture {
protected:
    void Open(const QString& entry) {
        Choose("File/New/" + entry);
        window = dynamic_cast<CMDIChildWnd*>(Frame().Area().activeSubWindow());
        ASSERT_NE(window, nullptr);
    }
    CView& View() { return *window->GetActiveView(); }
    template <class Widget>
    Widget& Find(const char* name = nullptr) {
        auto* found = name == nullptr ? window->findChild<Widget*>()
                                      : window->findChild<Widget*>(QString(name));
        if (found == nullptr) {
            throw std::runtime_error(name == nullptr ? "no such widget" : name);
        }
        return *found;
    }
    void Bar(const char* name) { QTest::mouseClick(&Find<QToolButton>(name), Qt::LeftButton); }
    RunPicture Picture() { return dynamic_cast<CGoStopChild&>(*window).RunState(); }
    std::vector<int> Functions() {
        std::vector<int> functions;
        line->Do([&] { functions = std::exchange(board.functions, {}); });
        return functions;
    }
    /// Chooses a background for the functions' windows and one for the listing, and checks that the
    /// window follows.
    void ChangeColors() {
        QWidget& view = View();
        ChooseDialog<CDisplayProperties>("Edit/Display/Colors", [](CDisplayProperties& sheet) {
            for (const char* name :
                 {"Other Windows Background", "State Background", "Waveform Background"}) {
                AnswerDialog<QColorDialog>(
                    [&] { QTest::mouseClick(sheet.findChild<ColorButton*>(name), Qt::LeftButton); },
                    [](QColorDialog& dialog) {
                        dialog.setCurrentColor(QColor(1, 2, 3));
                        Press(dialog, "OK");
                    });
            }
            Press(sheet, "OK");
        });
        QApplication::processEvents();
        if (dynamic_cast<CTraceView*>(&view) == nullptr) {
            EXPECT_EQ(view.grab().toImage().pixelColor(3, view.height() - 3), QColor(1, 2, 3));
        }
    }

    void ChooseSet(const QString& name) {
        ChooseDialog<CDisplayProperties>("Edit/Display/Colors", [&](CDisplayProperties& sheet) {
            AnswerMenu([&] { QTest::mouseClick(&ButtonOf(sheet, "Color Sets"), Qt::LeftButton); },
                       name);
            Press(sheet, "OK");
        });
        QApplication::processEvents();
    }
    /// The contrast between the ground of a part of a widget, its first pixel, and what is drawn on
    /// it.
    static double ContrastIn(QWidget& widget, const QRect& part) {
        const QImage image = widget.grab(part).toImage();
        double best = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                best = std::max(best, Contrast(image.pixelColor(0, 0), image.pixelColor(x, y)));
            }
        }
        return best;
    }

    CMDIChildWnd* window = nullptr;
};

TEST_F(ColorChange, AMeasurementKeepsItsValuesAndItsGraphs) {
    StartDemo();
    Open("Performance/Utilization");
    auto& document = static_cast<CPerformanceDoc&>(window->GetDocument());
    document.Setup().updateInterval = 1;
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return document.Results().Count() >= 40; }));
    Bar("Stop");
    const auto shown = [&] {
        QStringList texts;
        for (char row = 'A'; row <= 'H'; ++row) {
            texts << Find<QLabel>(("Value " + std::string(1, row)).c_str()).text();
        }
        return texts;
    };
    ASSERT_TRUE(RunUntil(
        [&] { return Find<QLabel>("Result Count").text().toInt() == document.Results().Count(); }));
    auto& time = Find<CTimeGraph>();
    QTest::keyClick(time.findChild<QScrollBar*>(), Qt::Key_PageUp);
    const QStringList values = shown();
    const QImage graphs[] = {time.grab().toImage(), Find<CMinMaxAverageGraph>().grab().toImage()};
    EXPECT_NE(values[0], "");
    ChangeColors();
    EXPECT_EQ(shown(), values);
    EXPECT_EQ(time.grab().toImage(), graphs[0]) << "the page that the user has turned to";
    EXPECT_EQ(Find<CMinMaxAverageGraph>().grab().toImage(), graphs[1]);
}

TEST_F(ColorChange, AMeasurementGoesOn) {
    StartDemo();
    Open("Performance/Utilization");
    auto& document = static_cast<CPerformanceDoc&>(window->GetDocument());
    document.Setup().updateInterval = 1;
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return document.Results().Count() >= 10; }));
    ChangeColors();
    EXPECT_EQ(Picture(), RunPicture::Running);
    const std::int64_t count = document.Results().Count();
    EXPECT_GE(count, 10);
    EXPECT_TRUE(RunUntil([&] { return document.Results().Count() > count; }));
}

TEST_F(ColorChange, AMasterKeepsItsFieldsAndItsRun) {
    board.contents[801] = {0x81}; // its status: busy
    StartOnLine();
    Open("Exerciser/Master");
    auto& repeat = Find<QLineEdit>("Repeat");
    repeat.setFocus();
    QTest::keyClick(&repeat, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&repeat, "12345");
    repeat.setSelection(1, 2);
    Find<QComboBox>("Command").setCurrentText("Write");
    auto& dump = *Find<CMemoryListBox>().verticalScrollBar();
    dump.setValue(7);
    QSignalSpy rebuilt(Find<QComboBox>("Command").model(), &QAbstractItemModel::rowsRemoved);
    ChangeColors();
    EXPECT_EQ(repeat.text(), "12345");
    EXPECT_EQ(repeat.selectedText(), "23");
    EXPECT_TRUE(repeat.isUndoAvailable());
    EXPECT_EQ(Frame().focusWidget(), &repeat);
    EXPECT_EQ(Find<QComboBox>("Command").currentText(), "Write");
    EXPECT_TRUE(rebuilt.isEmpty()) << "no list is filled again";
    EXPECT_EQ(dump.value(), 7);
    EXPECT_EQ(static_cast<CMasterDoc&>(window->GetDocument()).Form().repeat, "12345");
    Bar("Go");
    ASSERT_EQ(Picture(), RunPicture::Running);
    ChangeColors();
    EXPECT_EQ(Picture(), RunPicture::Running);
    Bar("Stop");
}

TEST_F(ColorChange, ATargetKeepsItsFieldsAndSendsNothing) {
    StartOnLine();
    Open("Target");
    Tick(View(), "Enable Target");
    Find<QComboBox>("Response").setCurrentText("Retry");
    Find<CMemoryListBox>().verticalScrollBar()->setValue(5);
    QSignalSpy rebuilt(Find<QComboBox>("AddressSpace").model(), &QAbstractItemModel::rowsRemoved);
    Functions();
    line->Do([this] { board.writes.clear(); });
    ChangeColors();
    EXPECT_TRUE(dynamic_cast<QAbstractButton&>(ButtonOf(View(), "Enable Target")).isChecked());
    EXPECT_EQ(Find<QComboBox>("Response").currentText(), "Retry");
    EXPECT_EQ(Find<CMemoryListBox>().verticalScrollBar()->value(), 5);
    EXPECT_TRUE(rebuilt.isEmpty());
    line->Do([this] { EXPECT_TRUE(board.writes.empty()); });
}

TEST_F(ColorChange, AStimulusKeepsItsPlacesAndItsRun) {
    board.contents[929] = {0x80}; // its status: running
    StartOnLine();
    Open("Exerciser/Stimulus");
    auto& document = static_cast<CStimulusDoc&>(window->GetDocument());
    auto& grid = Find<CPatternTable>("Stimulus").Grid();
    auto& events = Find<CPatternTable>("Events").Grid();
    auto& levels = *Find<CLevelPanel>().verticalScrollBar();
    // The first column made wider by its edge, then both tables scrolled.
    const PatternGeometry geometry = events.Geometry();
    const auto& columns = geometry.columns;
    const int edge = geometry.CellRect({0, columns.Visible().front().signal}).right();
    QTest::mousePress(&events, Qt::LeftButton, {}, {edge, 5});
    QTest::mouseMove(&events, {edge + 20, 5});
    QTest::mouseMove(&events, {edge + 40, 5});
    QTest::mouseRelease(&events, Qt::LeftButton, {}, {edge + 40, 5});
    const std::size_t first = columns.Visible().front().signal;
    const int width = document.Program().control.events[first].VisibleWidth();
    grid.StepRows(2);
    grid.StepSignals(true);
    grid.StepSignals(true);
    ASSERT_GT(grid.Offset(), 0);
    levels.setValue(30);
    Bar("Go");
    ASSERT_EQ(Picture(), RunPicture::Running);
    const int offset = grid.Offset();
    const QImage tables[] = {grid.grab().toImage(), events.grab().toImage()};
    Functions();
    ChangeColors();
    EXPECT_EQ(grid.Offset(), offset);
    EXPECT_EQ(grid.Geometry().topRow, 2);
    EXPECT_EQ(document.Program().control.events[first].VisibleWidth(), width);
    EXPECT_EQ(grid.grab().toImage(), tables[0]);
    EXPECT_EQ(events.grab().toImage(), tables[1]);
    EXPECT_EQ(levels.value(), 30);
    EXPECT_EQ(Picture(), RunPicture::Running);
}

TEST_F(ColorChange, AConfigurationKeepsItsPlace) {
    StartDemo();
    Open("Exerciser/Configuration");
    auto& address = Find<QLineEdit>("Address");
    address.setSelection(2, 3);
    auto& bar = *Find<CConfigAnalysisView>().verticalScrollBar();
    bar.setValue(40);
    ASSERT_EQ(bar.value(), 40);
    ChangeColors();
    EXPECT_EQ(address.selectionStart(), 2);
    EXPECT_EQ(address.selectedText().size(), 3);
    EXPECT_EQ(bar.value(), 40);
}

TEST_F(ColorChange, ABackplaneTestGoesOnWithItsResults) {
    board.contents[1551] = {0x80}; // busy
    StartOnLine();
    Open("Backplane Test");
    auto& tree = Find<CCheckTree>();
    auto& list = Find<QListWidget>();
    Bar("Go");
    ASSERT_EQ(Picture(), RunPicture::Running);
    line->Do([this] { board.contents[1551] = {0}; });
    ASSERT_TRUE(RunUntil([&] { return list.count() > 6; }));
    line->Do([this] { board.contents[1551] = {0x80}; });
    Functions();
    ASSERT_TRUE(RunUntil([&] { return !Functions().empty(); })); // a signal is being tested
    list.setCurrentRow(2);
    list.scrollToTop();
    tree.verticalScrollBar()->setValue(3);
    const int count = list.count();
    ChangeColors();
    EXPECT_EQ(Picture(), RunPicture::Running);
    EXPECT_EQ(list.count(), count);
    EXPECT_EQ(list.currentRow(), 2);
    EXPECT_EQ(list.verticalScrollBar()->value(), 0);
    EXPECT_EQ(tree.verticalScrollBar()->value(), 3);
    line->Do([this] { board.contents[1551] = {0}; });
    EXPECT_TRUE(RunUntil([&] { return list.count() > count; }));
}

TEST_F(ColorChange, AnomalyDetectionGoesOnWithItsFindings) {
    board.contents[1548] = {25};
    StartOnLine();
    Open("Anomaly Detection");
    auto& tree = Find<CCheckTree>();
    auto& list = Find<QListWidget>();
    ASSERT_TRUE(RunUntil([&] {
        std::size_t writes = 0;
        line->Do([&] { writes = std::exchange(board.writes, {}).size(); });
        return writes > 0; // the first check list
    }));
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return list.count() >= 1; }));
    list.setCurrentRow(0);
    tree.verticalScrollBar()->setValue(9);
    line->Do([this] { board.writes.clear(); });
    ChangeColors();
    EXPECT_EQ(Picture(), RunPicture::Running);
    EXPECT_GE(list.count(), 1);
    EXPECT_EQ(list.currentRow(), 0);
    EXPECT_EQ(tree.verticalScrollBar()->value(), 9);
    line->Do([this] { EXPECT_TRUE(board.writes.empty()) << "the check list again"; });
    const int count = list.count();
    EXPECT_TRUE(RunUntil([&] { return list.count() > count; }));
}

TEST_F(ColorChange, TracesStayWhereTheyAre) {
    StartDemo();
    for (const char* name : {"Trigger2.tra", "Trigger1.tra"}) { // a listing, waveforms
        auto& trace = dynamic_cast<CTesselDoc&>(*program->App().OpenDocumentFile(dir.File(name)));
        window = dynamic_cast<CMDIChildWnd*>(Frame().Area().activeSubWindow());
        trace.SetMarker(1, 20);
        auto& view = dynamic_cast<CTraceView&>(View());
        view.ScrollToSample(7);
        QTest::keyClick(&view, Qt::Key_Right);
        const auto places = [&] {
            std::vector<int> values;
            for (const auto* bar : view.findChildren<QScrollBar*>()) {
                values.push_back(bar->value());
            }
            return values;
        };
        const auto before = places();
        const std::int64_t top = view.TopSample();
        ChangeColors();
        EXPECT_EQ(view.TopSample(), top) << name;
        EXPECT_EQ(places(), before) << name;
        EXPECT_EQ(trace.Marker(1, view.IsZoom()), 20) << name;
    }
}

TEST_F(ColorChange, LevelsOfAStimulusCanBeReadInADarkForm) {
    StartDemo();
    Open("Exerciser/Stimulus");
    ChooseSet("&Dark");
    int labels = 0;
    for (auto* label : Find<CLevelPanel>().findChildren<QLabel*>()) {
        EXPECT_GE(ContrastIn(*Find<CLevelPanel>().widget(), label->geometry()), readable)
            << label->text().toStdString();
        ++labels;
    }
    EXPECT_GT(labels, 15);
}

TEST_F(ColorChange, TheAnalysisCanBeReadInADarkForm) {
    StartDemo();
    Open("Exerciser/Configuration");
    ChooseSet("&Dark");
    QWidget& text = *Find<CConfigAnalysisView>().widget();
    const int pitch = text.fontMetrics().height();
    EXPECT_GE(ContrastIn(Find<CConfigAnalysisView>(), {2, 2, 100, 2 * pitch}), readable);
    // The titles of the boxes, above their frames.
    EXPECT_GE(ContrastIn(Find<CConfigAnalysisView>(), {2, 5 * pitch - 3, 100, pitch}), readable);
}

TEST_F(ColorChange, TheAnalysisFollowsTheColorsOfTheSystem) {
    const QPalette usual = QApplication::palette();
    StartDemo();
    Open("Exerciser/Configuration");
    auto& analysis = Find<CConfigAnalysisView>();
    const int pitch = analysis.widget()->fontMetrics().height();
    for (const Qt::GlobalColor ground : {Qt::black, Qt::white}) {
        QPalette system = usual;
        system.setColor(QPalette::Window, ground);
        system.setColor(QPalette::WindowText, ground == Qt::black ? Qt::white : Qt::black);
        QApplication::setPalette(system);
        QApplication::processEvents();
        const QImage image = analysis.widget()->grab().toImage();
        EXPECT_EQ(image.pixelColor(0, 0), QColor(ground));
        EXPECT_GE(ContrastIn(analysis, {2, 2, 100, 2 * pitch}), readable);
        EXPECT_GE(ContrastIn(analysis, {2, 5 * pitch - 3, 100, pitch}), readable) << "a title";
    }
    QApplication::setPalette(usual);
}

TEST_F(ColorChange, ALineOfARowLooksLikeTheOneInTheGraph) {
    StartDemo();
    Open("Performance/Utilization");
    ChooseSet("&Dark");
    const QRect letter(32, 5, 20, 20); // with the margin of its label
    EXPECT_GE(ContrastIn(View(), letter), readable);
    const QRect sample(5, 5, 26, 20);
    const QImage row = View().grab(sample).toImage();
    EXPECT_EQ(row.pixelColor(15, 9), QColor(Qt::black)) << "the colour of row A";
    EXPECT_EQ(row.pixelColor(15, 4), ColorOf(0xC0C0C0)) << "the ground of the graphs";
    EXPECT_EQ(row.pixelColor(0, 5), ColorOf(0x303030));
}

} // namespace
} // namespace busquill::test
