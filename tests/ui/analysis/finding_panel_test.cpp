// The list of findings and hits beside the windows of a capture, used as a user does: through the
// menu, with mouse and keys.

#include "analysis/sample_findings.h"
#include "capture/trace_document.h"
#include "signals/cell_text.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"
#include "support/panel_fixture_qt.h"
#include "ui/analysis/finding_model.h"
#include "ui/analysis/finding_panel.h"
#include "ui/analysis/panel_table.h"
#include "ui/display/trace_view.h"
#include "ui/patterns/pattern_dialogs.h"
#include "ui/shell/help_window.h"
#include "ui/shell/manual_browser.h"
#include "ui/trace/child_frame.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace busquill::test {
namespace {

using testing::ElementsAre;

class FindingPanels : public PanelFixture<StoredCaptureFixture, FindingModel> {
protected:
    FindingPanels() : PanelFixture(findingNames) {}

    void Activate(QMdiSubWindow& window) {
        Frame().Area().setActiveSubWindow(&window);
        QApplication::processEvents();
        Frame().RefreshCommands();
    }
    void Close(QWidget& window) {
        window.close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
        Frame().RefreshCommands();
    }
    void ClickRow(int row, Qt::KeyboardModifiers modifiers = {}) {
        ClickCell(row, FindingModel::Kind, modifiers);
    }
    QToolButton& OnlyHits() { return *Dock().findChild<QToolButton*>("OnlyHits"); }
    QCheckBox& OnlyShown() { return *Dock().findChild<QCheckBox*>("OnlyShown"); }
    /// Chooses what is listed, by keys.
    void List(int index) {
        auto& box = *Dock().findChild<QComboBox*>("ListedFindings");
        box.setFocus();
        QTest::keyClick(&box, Qt::Key_Home);
        for (int i = 0; i < index; ++i) {
            QTest::keyClick(&box, Qt::Key_Down);
        }
        ASSERT_TRUE(Settled());
    }
    std::vector<std::int64_t> Samples() {
        std::vector<std::int64_t> samples;
        for (int row = 0; row < Rows(); ++row) {
            samples.push_back(Model().SampleOf(row));
        }
        return samples;
    }
    /// The samples of a capture for which something holds.
    template <typename Holds>
    static std::vector<std::int64_t> SamplesWhere(const CTesselDoc& document, Holds holds) {
        const auto records = document.GetStore().GetData(false);
        std::vector<std::int64_t> samples;
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (holds(i, records)) {
                samples.push_back(static_cast<std::int64_t>(i));
            }
        }
        return samples;
    }
    static std::vector<std::int64_t> FallsOfFrame(const CTesselDoc& document) {
        return SamplesWhere(document, [](std::size_t i, const auto& records) {
            return i > 0 && records[i - 1].Bit(CaptureBuilder::Frame) &&
                   !records[i].Bit(CaptureBuilder::Frame);
        });
    }
    void ExpectAt(CChildFrame& frame, int row) {
        EXPECT_NEAR(static_cast<double>(Center(frame)), static_cast<double>(Model().SampleOf(row)),
                    2);
    }
};

TEST_F(FindingPanels, TheKeyOpensAndClosesThePanel) {
    CChildFrame& frame = Open("Trigger2.tra");
    EXPECT_FALSE(Dock().isVisible());
    EXPECT_FALSE(Entry("Analyze/Findings and Hits").isChecked());
    QTest::keyClick(&frame.TraceView(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(Dock().isVisible());
    EXPECT_TRUE(Entry("Analyze/Findings and Hits").isChecked());
    EXPECT_TRUE(Dock().isAncestorOf(QApplication::focusWidget()));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(frame.TraceView().hasFocus());
    QTest::keyClick(&frame.TraceView(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(Dock().isVisible());
}

TEST_F(FindingPanels, ListsWhatTheBoardHasFoundWithItsTimeSinceTheTrigger) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const SampleFindings findings(program->Tables());
    EXPECT_EQ(Samples(), SamplesWhere(frame.Trace(), [&](std::size_t i, const auto& records) {
                  return findings.RuleOf(records[i]) != 0;
              }));
    ASSERT_EQ(Rows(), 32);
    EXPECT_EQ(Summary(), "32 findings");
    EXPECT_EQ(Cell(0, FindingModel::Sample), "-2040");
    EXPECT_EQ(Cell(0, FindingModel::Time), "-61.20us");
    EXPECT_EQ(Cell(0, FindingModel::Kind), "Rule");
    EXPECT_EQ(Cell(0, FindingModel::What), "Target Disconnect");
    // One after the trigger.
    const int last = Rows() - 1;
    const std::int64_t trigger = frame.Trace().Marker(0, false);
    ASSERT_GT(Model().SampleOf(last), trigger);
    EXPECT_EQ(Cell(last, FindingModel::Time),
              FormatTimeSince(*frame.Trace().stateList.TimeFrom(trigger, Model().SampleOf(last)),
                              false, false));
}

TEST_F(FindingPanels, ListsTheSamplesThatFulfilAnExpression) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    List(2);
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "Type an expression to find samples.");
    Type("FRAME falls");
    EXPECT_EQ(Rows(), 0) << "the user may go on typing";
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows() > 0; }, 3000));
    const auto expected = FallsOfFrame(frame.Trace());
    ASSERT_GT(expected.size(), 200U);
    EXPECT_EQ(Samples(), expected);
    EXPECT_EQ(Cell(0, FindingModel::Kind), "Hit");
    EXPECT_EQ(Summary(), "32 findings, 270 hits; 270 listed");
    Give("sample == 22");
    ASSERT_EQ(Rows(), 1);
    EXPECT_EQ(Cell(0, FindingModel::Sample), "22");
    EXPECT_EQ(Cell(0, FindingModel::What), "COMMAND I/O Wr, ADDRESS32 000003F8");
    EXPECT_EQ(Summary(), "32 findings, 1 hit; 1 listed");
    Give("");
    EXPECT_EQ(Rows(), 0);
}

TEST_F(FindingPanels, ASampleThatIsBothHasTwoRows) {
    Open("Trigger2.tra");
    OpenPanel();
    Give("sample in -2040..-2039");
    ASSERT_EQ(Rows(), 34);
    EXPECT_EQ(Cell(0, FindingModel::Kind), "Rule");
    EXPECT_EQ(Cell(0, FindingModel::Sample), "-2040");
    EXPECT_EQ(Cell(1, FindingModel::Kind), "Hit");
    EXPECT_EQ(Cell(1, FindingModel::Sample), "-2040");
    EXPECT_EQ(Cell(2, FindingModel::Sample), "-2039");
    List(1);
    EXPECT_EQ(Rows(), 32);
    List(2);
    EXPECT_EQ(Rows(), 2);
    List(0);
    EXPECT_EQ(Rows(), 34);
}

TEST_F(FindingPanels, TimesInAnExpressionCountFromTheTrigger) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    List(2);
    Give("ACCUM in -1us..1us");
    const std::int64_t trigger = frame.Trace().Marker(0, false);
    EXPECT_EQ(Samples(), SamplesWhere(frame.Trace(), [&](std::size_t i, const auto&) {
                  const auto time =
                      frame.Trace().stateList.TimeFrom(trigger, static_cast<std::int64_t>(i));
                  return *time >= -1000 && *time <= 1000;
              }));
    EXPECT_GT(Rows(), 30);
}

TEST_F(FindingPanels, AClickTakesAllWindowsOfTheCaptureThere) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(20);
    ExpectAt(frame, 20);
    EXPECT_EQ(&ActiveFrame(), &frame) << "the capture stays the active one";
    EXPECT_EQ(frame.Trace().Marker(1, false), -1) << "no marker moves";
    frame.SwitchDisplay(false);
    QApplication::processEvents();
    EXPECT_EQ(CurrentRow(), 20);
    ClickRow(9);
    ExpectAt(frame, 9);
}

TEST_F(FindingPanels, KeysGoFromRowToRow) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    QTest::keyClick(&Table(), Qt::Key_End);
    EXPECT_EQ(CurrentRow(), 31);
    QTest::keyClick(&Table(), Qt::Key_Up);
    EXPECT_EQ(CurrentRow(), 30);
    ExpectAt(frame, 30);
    QTest::keyClick(&Table(), Qt::Key_Home);
    EXPECT_EQ(CurrentRow(), 0);
    frame.TraceView().GoTo(GoToTarget::End);
    QTest::keyClick(&Table(), Qt::Key_Return);
    EXPECT_LT(frame.TraceView().TopSample(), 100) << "Enter goes there again";
}

TEST_F(FindingPanels, OpeningThePanelDoesNotMoveTheCapture) {
    CChildFrame& frame = Open("Trigger2.tra");
    const std::int64_t top = frame.TraceView().TopSample();
    OpenPanel();
    ASSERT_TRUE(Table().hasFocus());
    EXPECT_EQ(CurrentRow(), -1);
    EXPECT_NEAR(static_cast<double>(frame.TraceView().TopSample()), static_cast<double>(top), 20)
        << "it is lower now";
    QTest::keyClick(&Table(), Qt::Key_Down);
    EXPECT_EQ(CurrentRow(), 0);
    ExpectAt(frame, 0);
}

TEST_F(FindingPanels, F3GoesToTheNextRowAlsoFromTheLine) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    List(2);
    Give("FRAME falls");
    const std::int64_t marker = frame.Trace().Marker(1, false);
    frame.TraceView().ScrollToSample(Model().SampleOf(100) - 1);
    QTest::keyClick(&Line(), Qt::Key_F3);
    EXPECT_EQ(CurrentRow(), 100) << "the first one from what is shown on";
    ExpectAt(frame, 100);
    QTest::keyClick(&Line(), Qt::Key_F3);
    EXPECT_EQ(CurrentRow(), 101);
    QTest::keyClick(&Line(), Qt::Key_F3, Qt::ShiftModifier);
    QTest::keyClick(&Line(), Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(CurrentRow(), 99);
    Table().setFocus();
    QTest::keyClick(&Table(), Qt::Key_F3);
    EXPECT_EQ(CurrentRow(), 100);
    EXPECT_EQ(frame.Trace().Marker(1, false), marker) << "the search for the pattern has not run";
    QTest::keyClick(&Table(), Qt::Key_End);
    QTest::keyClick(&Table(), Qt::Key_F3);
    EXPECT_EQ(CurrentRow(), Rows() - 1);
}

TEST_F(FindingPanels, Marker1ChoosesTheRowOfItsSample) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const std::int64_t sample = Model().SampleOf(7);
    frame.TraceView().ShowSample(sample + 4);
    const std::int64_t top = frame.TraceView().TopSample();
    frame.Trace().ToggleMarker(1, sample, false);
    EXPECT_EQ(CurrentRow(), 7);
    EXPECT_EQ(Table().selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(frame.TraceView().TopSample(), top) << "the display does not move";
    frame.Trace().SetMarker(1, sample + 1);
    EXPECT_EQ(CurrentRow(), 7) << "no row has this sample";
    frame.Trace().SetMarker(1, Model().SampleOf(0));
    EXPECT_EQ(CurrentRow(), 0);
}

TEST_F(FindingPanels, Marker1ChoosesTheFirstRowOfAllToo) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ASSERT_EQ(CurrentRow(), -1);
    frame.Trace().SetMarker(1, Model().SampleOf(0));
    EXPECT_EQ(CurrentRow(), 0);
}

TEST_F(FindingPanels, AMistakeIsExplainedAndTheHitsStay) {
    Open("Trigger2.tra");
    OpenPanel();
    List(2);
    Give("FRAME falls");
    Type("FRAME falls and COMAND == 1");
    EXPECT_NE(Mistake().find("there is no signal \"COMAND\""), std::string::npos) << Mistake();
    QTest::qWait(600);
    QTest::keyClick(&Line(), Qt::Key_Return);
    EXPECT_EQ(Rows(), 270);
    Type("bytes > 4");
    EXPECT_NE(Mistake().find("belongs to transactions"), std::string::npos) << Mistake();
}

TEST_F(FindingPanels, ExpressionsThatWereUsedAreOfferedAgainInTheNextRun) {
    Open("Trigger2.tra");
    OpenPanel();
    Give("FRAME falls");
    Give("sample == 22");
    Frame().close();
    program.reset();
    StartDemo();
    Open("Trigger2.tra");
    ASSERT_TRUE(Dock().isVisible());
    ASSERT_EQ(Line().count(), 2);
    EXPECT_EQ(Line().itemText(0), "sample == 22");
    EXPECT_EQ(Line().itemText(1), "FRAME falls");
    EXPECT_EQ(settings.GetProfileString("Transactions", "Filter1", ""), "");
}

TEST_F(FindingPanels, CopiesTheSelectedRows) {
    Open("Trigger2.tra");
    OpenPanel();
    ClickRow(0);
    QTest::keyClick(&Table(), Qt::Key_Down, Qt::ShiftModifier);
    Frame().RefreshCommands();
    QTest::keyClick(&Table(), Qt::Key_C, Qt::ControlModifier);
    const std::string wanted = "Sample\tTime\tKind\tText\n-2040\t-61.20us\tRule\tTarget "
                               "Disconnect\n" +
                               Cell(1, 0) + '\t' + Cell(1, 1) + "\tRule\t" + Cell(1, 3) + '\n';
    EXPECT_EQ(Clipboard(), wanted);
    QApplication::clipboard()->clear();
    Choose("Edit/Copy");
    EXPECT_EQ(Clipboard(), wanted);
}

TEST_F(FindingPanels, LettersAndTheWheelChangeNothing) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(3);
    const std::int64_t top = frame.TraceView().TopSample();
    QTest::keyClick(&Table(), Qt::Key_R);
    EXPECT_EQ(CurrentRow(), 3);
    const auto turn = [](QWidget& over, int angle) {
        QWheelEvent wheel({5, 5}, over.mapToGlobal(QPointF(5, 5)), {}, {0, angle}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        wheel.ignore();
        QApplication::sendEvent(&over, &wheel);
        return wheel.isAccepted();
    };
    Table().verticalScrollBar()->setValue(0);
    EXPECT_TRUE(turn(*Table().viewport(), 120)) << "at the end of the table too";
    turn(Line(), -120);
    EXPECT_EQ(Line().currentText(), "");
    EXPECT_EQ(frame.TraceView().TopSample(), top);
}

TEST_F(FindingPanels, TheMenuHasAKeyInTheTableAndInTheLine) {
    Open("Trigger2.tra");
    OpenPanel();
    ClickRow(3);
    for (QWidget* focus : {static_cast<QWidget*>(&Table()), static_cast<QWidget*>(&Line())}) {
        focus->setFocus();
        Frame().RefreshCommands();
        const QStringList entries =
            AnswerMenu([&] { QTest::keyClick(focus, Qt::Key_F10, Qt::ShiftModifier); }, "Findings");
        EXPECT_EQ(entries.join(' ').remove('&').toStdString(),
                  "Copy Next Previous  * Findings and hits Findings Hits  Only samples that are "
                  "shown Show Only Hits");
        Frame().activateWindow();
        QApplication::processEvents();
        EXPECT_EQ(Model().WhatIsListed(), FindingModel::Listed::Findings);
        List(0);
    }
}

TEST_F(FindingPanels, F1OpensItsPageOfTheManual) {
    Open("Trigger2.tra");
    OpenPanel();
    QTest::keyClick(&Table(), Qt::Key_F1);
    auto* help = Frame().findChild<HelpWindow*>();
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->findChild<ManualBrowser*>()->Page(), "findings.md");
}

// The filter of the windows.

TEST_F(FindingPanels, TheButtonShowsOnlyHitsInTheWindowsOfTheCapture) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    EXPECT_FALSE(OnlyHits().isEnabled()) << "there is no expression";
    Give("FRAME falls");
    ASSERT_TRUE(OnlyHits().isEnabled());
    QTest::mouseClick(&OnlyHits(), Qt::LeftButton);
    EXPECT_TRUE(OnlyHits().isChecked());
    EXPECT_EQ(Summary(), "32 findings, 270 hits; the windows show only hits");
    EXPECT_TRUE(Entry("Analyze/Show Only Hits").isChecked());
    const auto expected = FallsOfFrame(frame.Trace());
    ASSERT_EQ(frame.Trace().RowCount(false), static_cast<std::int64_t>(expected.size()));
    for (std::size_t row = 0; row < expected.size(); ++row) {
        ASSERT_EQ(frame.Trace().RowToSample(static_cast<std::int64_t>(row), false), expected[row]);
    }
    EXPECT_EQ(Rows(), 302) << "the list stays";
    QTest::mouseClick(&OnlyHits(), Qt::LeftButton);
    EXPECT_FALSE(OnlyHits().isChecked());
    EXPECT_FALSE(frame.Trace().IsFiltered());
}

TEST_F(FindingPanels, TheFilterFollowsTheExpression) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    Give("FRAME falls");
    Choose("Analyze/Show Only Hits");
    ASSERT_EQ(frame.Trace().RowCount(false), 270);
    Give("sample in 1..50");
    EXPECT_EQ(frame.Trace().RowCount(false), 50);
    EXPECT_EQ(frame.Trace().FilterExpression(), "sample in 1..50");
    Give("");
    EXPECT_FALSE(frame.Trace().IsFiltered());
    EXPECT_FALSE(OnlyHits().isChecked());
    EXPECT_FALSE(Entry("Analyze/Show Only Hits").isEnabled());
}

TEST_F(FindingPanels, AnExpressionKeptByNameIsSearchedAgainWhenItHasChanged) {
    const std::string file = dir.File("busquill/expressions.txt");
    std::filesystem::create_directories(dir.File("busquill"));
    std::ofstream(file) << "mine: sample in 0..5\n";
    const CTesselDoc& document = Open("Trigger2.tra").Trace();
    OpenPanel();
    Give("@mine");
    EXPECT_EQ(Model().HitCount(), 6U);
    Choose("Analyze/Show Only Hits");
    EXPECT_EQ(document.RowCount(false), 6);
    std::ofstream(file) << "mine: sample in 0..9\n";
    QTest::keyClick(&Line(), Qt::Key_Return);
    ASSERT_TRUE(Settled());
    EXPECT_EQ(Model().HitCount(), 10U);
    EXPECT_EQ(document.RowCount(false), 10);
    // Another window in between is enough.
    std::ofstream(file) << "mine: sample in 0..2\n";
    QMdiSubWindow* const first = Frame().Area().activeSubWindow();
    Open("Trigger1.tra");
    Activate(*first);
    EXPECT_TRUE(QTest::qWaitFor([&] { return document.RowCount(false) == 3; }));
}

TEST_F(FindingPanels, TheDialogOfTheFilterRemovesItToo) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    Give("FRAME falls");
    QTest::mouseClick(&OnlyHits(), Qt::LeftButton);
    ASSERT_TRUE(frame.Trace().IsFiltered());
    ChooseDialog<CFilterPatternDlg>("Search/Filter", [](CFilterPatternDlg& dialog) {
        auto* const ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        QTest::mouseClick(ok, Qt::LeftButton);
    });
    Frame().RefreshCommands();
    EXPECT_FALSE(frame.Trace().IsFiltered());
    EXPECT_FALSE(OnlyHits().isChecked());
    EXPECT_FALSE(Entry("Analyze/Show Only Hits").isChecked());
    Give("FRAME rises");
    EXPECT_FALSE(frame.Trace().IsFiltered()) << "other hits do not bring it back";
}

TEST_F(FindingPanels, TheListLeavesOutWhatTheWindowsDoNotShowIfWanted) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    Give("sample in -2040..-2000");
    QTest::mouseClick(&OnlyHits(), Qt::LeftButton);
    EXPECT_EQ(Rows(), 32 + 41);
    QTest::mouseClick(&OnlyShown(), Qt::LeftButton, {}, {8, OnlyShown().height() / 2});
    ASSERT_TRUE(OnlyShown().isChecked());
    const auto samples = Samples();
    EXPECT_GT(samples.size(), 41U) << "with findings in these samples";
    EXPECT_LT(samples.size(), 32U + 41);
    for (const std::int64_t sample : samples) {
        EXPECT_TRUE(frame.Trace().IsRowSample(sample, false));
    }
    EXPECT_NE(Summary().find("listed"), std::string::npos);
    // It follows the filter of the windows.
    QTest::mouseClick(&OnlyHits(), Qt::LeftButton);
    EXPECT_EQ(Rows(), 32 + 41);
    Give("sample == 100000");
    QTest::mouseClick(&OnlyHits(), Qt::LeftButton);
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "A filter hides all of these samples in the windows of the capture.");
}

TEST_F(FindingPanels, TheMenuFiltersWhileThePanelIsClosed) {
    CChildFrame& frame = Open("Trigger2.tra");
    EXPECT_FALSE(Entry("Analyze/Show Only Hits").isEnabled());
    OpenPanel();
    Give("FRAME falls");
    Choose("Analyze/Findings and Hits");
    ASSERT_FALSE(Dock().isVisible());
    Choose("Analyze/Show Only Hits");
    EXPECT_EQ(frame.Trace().RowCount(false), 270);
    Open("Trigger1.tra");
    EXPECT_FALSE(Entry("Analyze/Show Only Hits").isEnabled());
    EXPECT_FALSE(Entry("Analyze/Show Only Hits").isChecked());
    Activate(frame);
    EXPECT_TRUE(Entry("Analyze/Show Only Hits").isChecked());
    Choose("Analyze/Show Only Hits");
    EXPECT_FALSE(frame.Trace().IsFiltered());
}

// Other windows and other captures.

TEST_F(FindingPanels, FollowTheActiveWindow) {
    CChildFrame& first = Open("Trigger2.tra");
    OpenPanel();
    Give("sample == 22");
    List(2);
    ASSERT_EQ(Rows(), 1);
    ClickRow(0);
    Type("sample ==");
    Choose("File/New/Performance/Utilization");
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The active window shows no capture.");
    EXPECT_EQ(Summary(), "");
    EXPECT_EQ(Line().currentText(), "");
    CChildFrame& second = Open("Trigger1.tra");
    ASSERT_TRUE(Settled());
    EXPECT_EQ(Rows(), 72);
    EXPECT_EQ(Summary(), "72 findings");
    EXPECT_EQ(Line().currentText(), "");
    EXPECT_EQ(CurrentRow(), -1);
    Activate(first);
    EXPECT_EQ(Rows(), 1);
    EXPECT_EQ(CurrentRow(), 0) << "the row is still chosen";
    EXPECT_EQ(Line().currentText(), "sample ==") << "what was typed is kept";
    Close(first);
    Activate(second);
    EXPECT_EQ(Rows(), 72);
    while (!Windows().isEmpty()) {
        Close(*Windows().first());
    }
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The active window shows no capture.");
}

TEST_F(FindingPanels, StayWithACaptureThatLosesOneOfItsWindows) {
    CChildFrame& frame = Open("Trigger1.tra"); // with a window of Power Zoom samples
    ASSERT_EQ(Windows().size(), 2);
    Activate(frame);
    OpenPanel();
    ClickRow(3);
    Activate(*Windows().last());
    EXPECT_EQ(Rows(), 72) << "of the capture, not of the Power Zoom samples";
    EXPECT_EQ(CurrentRow(), 3);
    Close(frame);
    ASSERT_EQ(Windows().size(), 1);
    EXPECT_EQ(Rows(), 72);
    EXPECT_EQ(CurrentRow(), 3);
}

TEST_F(FindingPanels, HearOfChangesWhicheverWindowOfTheCaptureIsClosed) {
    for (const bool closesFirst : {true, false}) {
        CChildFrame& frame = Open("Trigger1.tra"); // with a window of Power Zoom samples
        CTesselDoc& document = frame.Trace();
        OpenPanel();
        Close(closesFirst ? *Windows().first() : *Windows().last());
        ASSERT_EQ(Windows().size(), 1);
        document.SetMarker(1, Model().SampleOf(5));
        EXPECT_EQ(CurrentRow(), 5) << closesFirst;
        Close(*Windows().first());
        EXPECT_EQ(Table().model(), nullptr);
        Choose("Analyze/Findings and Hits");
    }
}

TEST_F(FindingPanels, ShowNothingOldWhenTheyAreShownAgain) {
    CChildFrame& first = Open("Trigger2.tra");
    OpenPanel();
    Choose("Analyze/Findings and Hits");
    ASSERT_FALSE(Dock().isVisible());
    Open("Trigger1.tra");
    Close(first);
    OpenPanel();
    EXPECT_EQ(Rows(), 72);
}

TEST_F(FindingPanels, ReadTheSamplesAnewWhenTheBusChanges) {
    Open("Trigger2.tra");
    OpenPanel();
    Give("FRAME falls");
    ASSERT_EQ(Rows(), 302);
    program->Link().WriteBusConfig({.busMode = BusVme});
    Frame().RefreshCommands();
    ASSERT_TRUE(Settled());
    EXPECT_EQ(Line().currentText(), "FRAME falls");
    EXPECT_EQ(Model().HitCount(), 0U);
    program->Link().WriteBusConfig({.busMode = BusPci});
    Frame().RefreshCommands();
    EXPECT_TRUE(QTest::qWaitFor([&] { return Rows() == 302 && !Model().IsWorking(); }));
}

// Without windows.

class FindingModels : public testing::Test {
protected:
    void Load(int samples) {
        std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\","
                           "0," +
                           std::to_string(samples - 1) + "\n";
        for (int i = 0; i < samples; ++i) {
            text += std::to_string(i) + "," + std::to_string(i & 255) +
                    ",2,3,0,0,0,0,0,0,0,0,0,0,0,30,0,0,0\n";
        }
        ASSERT_TRUE(document.OnOpenDocument(dir.Write("samples.tra", text)));
    }
    std::optional<SampleCondition> Where(std::string_view text) {
        auto parsed = SampleCondition::Parse(text, board.tables, {&document.stateList});
        return std::get<SampleCondition>(std::move(parsed));
    }

    BoardTables board{"PCIKite-1"};
    RecordingPrompts prompts;
    const TempDir dir;
    CTesselDoc document{NewTraceContext{board.tables}, prompts};
};

TEST_F(FindingModels, WorkOutNoRowBeforeItIsShown) {
    Load(200'000);
    FindingModel model(document, board.board, board.tables);
    model.SetActive(true);
    model.SetExpression("not AD == 0", Where("not AD == 0"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model.IsWorking(); }));
    ASSERT_EQ(model.rowCount(), 200'000);
    EXPECT_EQ(model.Text(123'456, FindingModel::Sample), "123456");
    EXPECT_EQ(model.SampleOf(199'999), 199'999);
    QElapsedTimer time;
    time.start();
    for (int row = 0; row < 200'000; row += 50) {
        EXPECT_EQ(model.RowOfKey(model.KeyOf(row)), row);
    }
    EXPECT_LT(time.elapsed(), 2000);
}

TEST_F(FindingModels, SearchOnlyWhileActive) {
    Load(1000);
    FindingModel model(document, board.board, board.tables);
    model.SetExpression("sample < 10", Where("sample < 10"));
    QTest::qWait(50);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(model.HasAllHits());
    model.SetActive(true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model.IsWorking(); }));
    EXPECT_EQ(model.rowCount(), 10);
    EXPECT_TRUE(model.HasAllHits());
    model.SetActive(false);
    model.DocumentChanged(HintDataComplete);
    EXPECT_EQ(model.rowCount(), 0) << "nothing old is shown";
}

TEST_F(FindingModels, SamplesAfterThoseThatAFileLeavesOutHaveNoTime) {
    std::string text =
        "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\",-2,4\n";
    for (const int i : {-2, -1, 0, 1, 3, 4}) {
        text += std::to_string(i) + ",1,2,3,0,0,0,0,0,0,0,0,0,0,0,30,0,0,0\n";
    }
    ASSERT_TRUE(document.OnOpenDocument(dir.Write("gap.tra", text)));
    FindingModel model(document, board.board, board.tables);
    model.SetActive(true);
    model.SetExpression("sample in -9..9", Where("sample in -9..9"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model.IsWorking(); }));
    ASSERT_EQ(model.rowCount(), 6);
    QStringList times;
    for (int row = 0; row < 6; ++row) {
        times << model.Text(row, FindingModel::Time);
    }
    EXPECT_EQ(times.join('|').toStdString(), "-60ns|-30ns|0ns|30ns||");
}

TEST(FindingsOfAConnector, AreNone) {
    BoardTables board("VMEKiteP2", BusVmeP2);
    RecordingPrompts prompts;
    const TempDir dir;
    CTesselDoc document(NewTraceContext{board.tables}, prompts);
    std::string text =
        "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\",0,9\n";
    for (int i = 0; i < 10; ++i) { // all pins high, where other buses have the anomaly bit
        text +=
            std::to_string(i) + ",255,255,255,255,255,255,255,255,255,255,255,255,255,0,30,0,0,0\n";
    }
    ASSERT_TRUE(document.OnOpenDocument(dir.Write("pins.tra", text)));
    FindingModel model(document, board.board, board.tables);
    model.SetActive(true);
    EXPECT_FALSE(model.IsWorking());
    EXPECT_EQ(model.rowCount(), 0);
}

} // namespace
} // namespace busquill::test
