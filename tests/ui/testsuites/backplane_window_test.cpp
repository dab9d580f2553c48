// The backplane test in the program's windows, on a scripted line.

#include "ui/testsuites/backplane_options_dialog.h"
#include "ui/testsuites/check_suite_windows.h"

#include <QGroupBox>
#include <QRadioButton>
#include <QScrollBar>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;

class BackplaneWindow : public CheckSuiteWindows {
protected:
    /// Returns what was chosen before.
    QString ChooseSensitivity(const QString& choice, const QString& button) {
        QString before;
        AnswerDialog<CBackplaneOptionsDlg>(
            [&] { Press(View(), "Options"); },
            [&](CBackplaneOptionsDlg& dialog) {
                EXPECT_EQ(dialog.windowTitle(), "Backplane Options");
                EXPECT_EQ(dialog.findChild<QGroupBox*>()->title(), "Sensitivity");
                for (auto* each : dialog.findChildren<QRadioButton*>()) {
                    before += each->isChecked() ? each->text() : "";
                }
                Tick(dialog, choice);
                Press(dialog, button);
            });
        return before;
    }
};

TEST_F(BackplaneWindow, ABackplaneGroupSwitchesItsSignals) {
    StartOnLine();
    OpenBackplane();
    ClickBox(75); // Control, with 7 signals
    EXPECT_EQ(Ticked(), 98 - 8);
    EXPECT_FALSE(Backplane().IsEnabled(82));
    EXPECT_TRUE(Backplane().IsEnabled(74));
    EXPECT_TRUE(Backplane().IsEnabled(83));
    ClickBox(76);
    EXPECT_FALSE(Tree().IsChecked(75)) << "a signal leaves its group alone";
    EXPECT_TRUE(Backplane().IsEnabled(76));
    EXPECT_THAT(TakeWrites(), IsEmpty());
}

TEST_F(BackplaneWindow, OfResultsThatAreShownAgainTheFirstIsSelected) {
    StartDemo();
    OpenBackplane();
    for (int i = 0; i < 100; ++i) {
        Backplane().Results().push_back("line " + std::to_string(i));
    }
    Backplane().UpdateAllViews(nullptr, CDocument::hintLoaded);
    EXPECT_EQ(List().currentRow(), 0);
    EXPECT_EQ(List().verticalScrollBar()->value(), 0);
}

TEST_F(BackplaneWindow, ABackplaneRunFollowsItsSignal) {
    StartOnLine();
    OpenBackplane();
    Press(View(), "Clear All");
    Bar("Go");
    EXPECT_THAT(prompts.Texts(), ElementsAre("One or more signals must be selected to test."));
    prompts.Forget();
    EXPECT_EQ(Picture(), RunPicture::Stopped);
    ClickBox(6); // AD[5]
    ClickBox(9);
    EXPECT_THAT(TakeWrites(), IsEmpty()) << "ticks are not sent";
    line->Do([this] {
        Bytes seen(28);
        seen[0] = 0x60; // 5 and 6
        board.contents[1552] = seen;
        board.contents[1551] = {0x80};
    });
    Bar("Go");
    EXPECT_EQ(Picture(), RunPicture::Running);
    EXPECT_THAT(Lines(), ElementsAre("AD[5]"));
    line->Do([this] { board.contents[1551] = {0}; });
    ASSERT_TRUE(RunUntil([&] { return Picture() == RunPicture::Stopped; }));
    EXPECT_THAT(Lines(),
                ElementsAre("AD[5]", "    AD[6] SHORTED", "AD[8]", "    Cannot drive signal"));
    EXPECT_EQ(List().currentRow(), 2) << "the last signal's line";
    EXPECT_EQ(Backplane().Results(), Lines());
    line->Do([this] { EXPECT_EQ(board.functions.back(), 40); });
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BackplaneWindow, TicksCountUntilTheirSignalsTurn) {
    StartOnLine();
    OpenBackplane();
    Press(View(), "Clear All");
    ClickBox(6);
    ClickBox(9);
    line->Do([this] { board.contents[1551] = {0x80}; });
    Bar("Go");
    ClickBox(9);
    ClickBox(10);
    line->Do([this] { board.contents[1551] = {0}; });
    ASSERT_TRUE(RunUntil([&] { return Picture() == RunPicture::Stopped; }));
    EXPECT_THAT(Lines(), ElementsAre("AD[5]", "    Cannot drive signal", "AD[9]",
                                     "    Cannot drive signal"));
}

TEST_F(BackplaneWindow, ASecondBackplaneRunBeginsAnew) {
    StartOnLine();
    OpenBackplane();
    Press(View(), "Clear All");
    ClickBox(6);
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return Picture() == RunPicture::Stopped; }));
    EXPECT_THAT(Lines(), SizeIs(2));
    Press(View(), "Clear All");
    Bar("Go");
    EXPECT_THAT(prompts.Texts(), ElementsAre("One or more signals must be selected to test."));
    EXPECT_THAT(Lines(), SizeIs(2)) << "nothing runs";
    ClickBox(1);
    Bar("Go");
    EXPECT_THAT(Lines(), ElementsAre("AD[0]"));
    ASSERT_TRUE(RunUntil([&] { return Picture() == RunPicture::Stopped; }));
    EXPECT_THAT(Lines(), ElementsAre("AD[0]", "    Cannot drive signal"));
    EXPECT_EQ(Backplane().Results(), Lines());
}

TEST_F(BackplaneWindow, AFailedBackplaneCommandIsReportedAndTheRunGoesOn) {
    StartOnLine();
    OpenBackplane();
    UseRefusal();
    Bar("Go");
    EXPECT_THAT(prompts.Texts(),
                IsSupersetOf({"Error sending backplane sensitivity to analyzer.",
                              "Error sending backplane test signals to analyzer.",
                              "Error sending start backplane test command to analyzer."}));
    EXPECT_EQ(Picture(), RunPicture::Running);
    UseBoard();
    ASSERT_TRUE(RunUntil([&] { return List().count() > 1; }));
}

TEST_F(BackplaneWindow, ClosingABackplaneWindowEndsThePollsAndSendsNothing) {
    StartOnLine();
    OpenBackplane();
    line->Do([this] { board.contents[1551] = {0x80}; });
    Bar("Go");
    line->Do([this] { board.functions.clear(); });
    ASSERT_TRUE(RunUntil([&] {
        std::size_t polls = 0;
        line->Do([&] { polls = board.functions.size(); });
        return polls > 0;
    }));
    Press(View(), "Close");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the window is gone
    line->Do([this] { board.functions.clear(); });
    QTest::qWait(300);
    line->Do([this] { EXPECT_THAT(board.functions, IsEmpty()); });
}

TEST_F(BackplaneWindow, TheSensitivityIsChosenInOptions) {
    StartOnLine();
    OpenBackplane();
    EXPECT_EQ(ChooseSensitivity("Low", "Cancel"), "Normal");
    EXPECT_EQ(ChooseSensitivity("High", "OK"), "Normal");
    Bar("Go");
    EXPECT_THAT(TakeWrites(), Contains("1550: 01"));
    EXPECT_EQ(ChooseSensitivity("Low", "OK"), "High");
    Bar("Go");
    EXPECT_THAT(TakeWrites(), Contains("1550: 02"));
}

TEST_F(BackplaneWindow, EachBackplaneWindowHasItsOwnSensitivity) {
    StartDemo();
    OpenBackplane();
    EXPECT_EQ(ChooseSensitivity("Low", "OK"), "Normal");
    UseFile("Save", dir.File("run.bpt"));
    UseFile("Load", dir.File("run.bpt"));
    EXPECT_EQ(ChooseSensitivity("High", "OK"), "Low") << "files leave it alone";
    OpenBackplane();
    EXPECT_EQ(ChooseSensitivity("Low", "OK"), "Normal");
}

TEST_F(BackplaneWindow, AVsbBoardHasItsSignalsAndNoChecks) {
    const std::string model = "VSBKite";
    line->Do([&] { board.contents[0] = Bytes(model.begin(), model.end()); });
    StartOnLine();
    EXPECT_FALSE(Entry("File/New/Anomaly Detection").isEnabled());
    OpenBackplane();
    ASSERT_EQ(Tree().RowCount(), 60);
    EXPECT_EQ(Tree().Item(33).text(0), "Control");
    EXPECT_EQ(Tree().Item(59).text(0), "GA2");
    Press(View(), "Clear All");
    ClickBox(59);
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return Picture() == RunPicture::Stopped; }));
    EXPECT_THAT(Lines(), ElementsAre("GA2", "    Cannot drive signal"));
    EXPECT_THAT(
        TakeWrites(), // 86
        ElementsAre("1550: 00", "1552: " + std::string(42, '0') + "40" + std::string(12, '0')));
}

} // namespace
} // namespace busquill::test
