// Anomaly detection and the backplane test in the program's windows, on a scripted line.

#include "support/recording_paint_device_qt.h"
#include "ui/link/bus_config_dialog.h"
#include "ui/shell/help_window.h"
#include "ui/testsuites/check_suite_windows.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBrowser>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string allOn = "1532: 00000000000000000000000000000000";
const std::string allOff = "1532: ffffffffffffffffffffffffffff0300";

TEST_F(CheckSuiteWindows, TheWindowsHaveTheirTitlesAndButtons) {
    StartDemo();
    OpenAnomaly();
    EXPECT_EQ(window->windowTitle(), "Anomaly Detection");
    EXPECT_EQ(Tree().RowCount(), 124);
    EXPECT_EQ(Tree().topLevelItemCount(), 3);
    EXPECT_EQ(Tree().Item(24).text(0), "Target");
    EXPECT_TRUE(Tree().Item(24).isExpanded());
    QStringList buttons;
    for (const auto* button : View().findChildren<QPushButton*>()) {
        buttons << button->text();
    }
    EXPECT_EQ(buttons, (QStringList{"&Load", "&Save", "&Clear All", "&Set All", "&Options", "&Help",
                                    "&Close"}));
    Press(View(), "Options");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No options are available."));
    Press(View(), "Close");
    QApplication::processEvents();
    EXPECT_THAT(Windows(), IsEmpty());
    OpenBackplane();
    EXPECT_EQ(window->windowTitle(), "Backplane Test");
    EXPECT_EQ(Tree().RowCount(), 98);
    EXPECT_EQ(Tree().topLevelItemCount(), 6);
    EXPECT_EQ(View().findChildren<QPushButton*>().size(), 7);
    Press(View(), "Close");
    QApplication::processEvents();
    EXPECT_THAT(Windows(), IsEmpty());
}

TEST_F(CheckSuiteWindows, HelpOpensItsPage) {
    StartDemo();
    EXPECT_EQ(HelpPage(program->App().HelpTopics(), 20), "anomaly-detection.md");
    EXPECT_EQ(HelpPage(program->App().HelpTopics(), 32), "backplane.md");
    const auto helpTitle = [] {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (auto* text = top->findChild<QTextBrowser*>(); text != nullptr && top->isVisible()) {
                return text->toPlainText().section('\n', 0, 0);
            }
        }
        return QString();
    };
    OpenAnomaly();
    Press(View(), "Help");
    EXPECT_EQ(helpTitle(), "Anomaly detection");
    OpenBackplane();
    Press(View(), "Help");
    EXPECT_EQ(helpTitle(), "Backplane test");
}

TEST_F(CheckSuiteWindows, TreeAndListStandSideBySideAboveTheButtons) {
    StartDemo();
    EnlargeFrame();
    OpenAnomaly();
    for (const QSize size : {QSize(700, 420), QSize(901, 555)}) {
        ResizeView(size.width(), size.height());
        ASSERT_EQ(View().size(), size);
        const int listWidth = size.width() / 2 - 20;
        const int listHeight = size.height() - 50 - 45;
        EXPECT_EQ(Tree().geometry(), QRect(10, 45, listWidth, listHeight));
        EXPECT_EQ(List().geometry(), QRect(10 + listWidth + 20, 45, listWidth, listHeight));
        std::vector<int> lefts;
        for (const auto* button : View().findChildren<QPushButton*>()) {
            lefts.push_back(button->x());
            EXPECT_EQ(button->size(), QSize(70, 25));
            EXPECT_EQ(button->y(), size.height() - 5 - 25);
        }
        EXPECT_THAT(lefts, ElementsAre(10, 90, 170, 250, 370, 460, 550));
    }
}

TEST_F(CheckSuiteWindows, TitlesStandAboveTreeAndList) {
    StartDemo();
    EnlargeFrame();
    const auto expectTitles = [&](const QString& checklist) {
        ResizeView(700, 420);
        RecordingPaintDevice device(View().size());
        View().render(&device, {}, {}, {});
        const auto titles = device.Recorded().TextsBetween(5, 25);
        ASSERT_EQ(titles.size(), 2U);
        EXPECT_EQ(titles[0].text, checklist);
        EXPECT_EQ(titles[1].text, "Test Results");
        EXPECT_EQ(titles[0].rect.left(), Tree().x());
        EXPECT_EQ(titles[1].rect.left(), List().x());
        for (const auto& title : titles) {
            EXPECT_NEAR(title.rect.center().y(), 15, 1);
        }
    };
    OpenAnomaly();
    expectTitles("Anomaly Checklist");
    OpenBackplane();
    expectTitles("Backplane Test Checklist");
}

TEST_F(CheckSuiteWindows, TheTreeOpensAtItsTop) {
    StartDemo();
    OpenAnomaly();
    ASSERT_GT(Tree().verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(Tree().verticalScrollBar()->value(), 0);
    EXPECT_EQ(Tree().itemAt(5, 5), &Tree().Item(0));
}

TEST_F(CheckSuiteWindows, TheBarKeepsItsDistanceFromTheRightEdge) {
    StartDemo();
    EnlargeFrame();
    OpenBackplane();
    const auto distances = [&] {
        std::vector<int> all;
        for (const char* name : {"Run State", "Go", "Stop"}) {
            auto* control = window->findChild<QWidget*>(name);
            all.push_back(window->width() - control->mapTo(window, QPoint()).x());
        }
        return all;
    };
    window->resize(700, 400);
    QApplication::processEvents();
    const auto before = distances();
    window->resize(950, 500);
    QApplication::processEvents();
    EXPECT_EQ(distances(), before);
}

TEST_F(CheckSuiteWindows, TheBoardGetsTheCheckListWhenTheWindowIsOpen) {
    StartOnLine();
    QElapsedTimer sinceTheOpening;
    sinceTheOpening.start();
    OpenAnomaly();
    EXPECT_EQ(Ticked(), 124);
    auto writes = TakeWrites();
    if (sinceTheOpening.elapsed() < 100) { // a slow machine may take longer to open a window
        EXPECT_THAT(writes, IsEmpty());
    }
    QTest::qWait(300);
    for (auto& write : TakeWrites()) {
        writes.push_back(std::move(write));
    }
    EXPECT_THAT(writes, ElementsAre(allOn)) << "once";
    EXPECT_EQ(Ticked(), 124);
}

TEST_F(CheckSuiteWindows, EveryChangeOfABoxGoesToTheBoardAtOnce) {
    StartOnLine();
    OpenQuietAnomaly();
    ClickBox(2);
    EXPECT_THAT(TakeWrites(), ElementsAre("1532: 01000000000000000000000000000000"));
    EXPECT_FALSE(Anomalies().IsEnabled(2));
    ClickBox(2);
    EXPECT_THAT(TakeWrites(), ElementsAre(allOn));
    Tree().setCurrentItem(&Tree().Item(121));
    QTest::keyClick(&Tree(), Qt::Key_Space);
    EXPECT_THAT(TakeWrites(), ElementsAre("1532: 00000000000000000000000000800000"));
    Press(View(), "Clear All");
    EXPECT_THAT(TakeWrites(), ElementsAre(allOff));
    EXPECT_EQ(Ticked(), 0);
    Press(View(), "Set All");
    EXPECT_THAT(TakeWrites(), ElementsAre(allOn));
    EXPECT_EQ(Ticked(), 124);
}

TEST_F(CheckSuiteWindows, AClickOrAKeyInTheTreeSendsTheCheckListToo) {
    StartOnLine();
    OpenQuietAnomaly();
    ClickText(2);
    EXPECT_THAT(TakeWrites(), ElementsAre(allOn));
    QTest::keyClick(&Tree(), Qt::Key_Down);
    EXPECT_THAT(TakeWrites(), ElementsAre(allOn));
    EXPECT_EQ(Ticked(), 124);
}

TEST_F(CheckSuiteWindows, TheRightButtonSendsNothing) {
    StartOnLine();
    OpenQuietAnomaly();
    const QRect item = Tree().visualItemRect(&Tree().Item(2));
    QTest::mouseClick(Tree().viewport(), Qt::RightButton, {}, {item.left() + 8, item.center().y()});
    EXPECT_EQ(Ticked(), 124);
    EXPECT_THAT(TakeWrites(), IsEmpty());
}

TEST_F(CheckSuiteWindows, AfterADoubleClickTheBoardHasWhatTheTreeShows) {
    StartOnLine();
    OpenQuietAnomaly();
    const QRect item = Tree().visualItemRect(&Tree().Item(2));
    const QPoint box(item.left() + 8, item.center().y());
    QTest::mouseClick(Tree().viewport(), Qt::LeftButton, {}, box);
    QTest::mouseDClick(Tree().viewport(), Qt::LeftButton, {}, box);
    EXPECT_EQ(Anomalies().IsEnabled(2), Tree().IsChecked(2));
    const std::string off = "1532: 01000000000000000000000000000000";
    EXPECT_EQ(TakeWrites().back(), Tree().IsChecked(2) ? allOn : off);
}

TEST_F(CheckSuiteWindows, AGroupSwitchesAllItsChecks) {
    StartOnLine();
    OpenQuietAnomaly();
    ClickBox(119); // Warnings, with the subgroup Protocol and 112 to 114
    EXPECT_THAT(TakeWrites(), ElementsAre("1532: 00000000000000000000000000800300"));
    EXPECT_EQ(Ticked(), 124 - 5);
    for (int row = 119; row < 124; ++row) {
        EXPECT_FALSE(Anomalies().IsEnabled(row)) << row;
    }
    EXPECT_TRUE(Anomalies().IsEnabled(118));
}

TEST_F(CheckSuiteWindows, CheckingAGroupRestoresWhatASubgroupSwitchedOff) {
    StartOnLine();
    OpenQuietAnomaly();
    ClickBox(1); // Master: 1 to 22
    EXPECT_THAT(TakeWrites(), ElementsAre("1532: ffff3f00000000000000000000000000"));
    EXPECT_TRUE(Anomalies().IsEnabled(0));
    ClickBox(0);
    TakeWrites();
    ClickBox(0);
    EXPECT_THAT(TakeWrites(), ElementsAre(allOn));
    EXPECT_EQ(Ticked(), 124);
}

TEST_F(CheckSuiteWindows, TheSpaceKeySwitchesAGroup) {
    StartOnLine();
    OpenQuietAnomaly();
    Tree().setCurrentItem(&Tree().Item(119));
    QTest::keyClick(&Tree(), Qt::Key_Space);
    EXPECT_THAT(TakeWrites(), ElementsAre("1532: 00000000000000000000000000800300"));
    EXPECT_EQ(Ticked(), 124 - 5);
}

TEST_F(CheckSuiteWindows, ARunFillsTheList) {
    StartOnLine();
    OpenQuietAnomaly();
    line->Do([this] { board.contents[1548] = {25}; });
    Bar("Go");
    EXPECT_EQ(Picture(), RunPicture::Running);
    EXPECT_THAT(TakeWrites(), ElementsAre(allOn));
    ASSERT_TRUE(RunUntil([&] { return List().count() == 1; }));
    ClickBox(2);
    EXPECT_THAT(TakeWrites(), SizeIs(1));
    EXPECT_EQ(Picture(), RunPicture::Running);
    ASSERT_TRUE(RunUntil([&] { return List().count() == 2; }));
    EXPECT_EQ(Lines()[1], "25 - DEVSEL deassserted before tranasction complete");
    Bar("Stop");
    EXPECT_EQ(Picture(), RunPicture::Stopped);
    EXPECT_THAT(Lines(), SizeIs(2)) << "they stay";
    Bar("Go");
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CheckSuiteWindows, AFailedCheckListIsReported) {
    StartOnLine();
    OpenQuietAnomaly();
    UseRefusal();
    ClickBox(2);
    EXPECT_THAT(prompts.Texts(), Contains("Error sending anomaly checklist to analyzer."));
    EXPECT_TRUE(prompts.Boxes().back().topmost);
}

TEST_F(CheckSuiteWindows, ClosingTheWindowEndsThePollsAndSendsNothing) {
    StartOnLine();
    OpenQuietAnomaly();
    Bar("Go");
    line->Do([this] { board.functions.clear(); });
    window->close();
    QTest::qWait(1300);
    line->Do([this] { EXPECT_THAT(board.functions, IsEmpty()); });
    QElapsedTimer sinceTheOpening;
    sinceTheOpening.start();
    OpenAnomaly();
    window->close();
    if (sinceTheOpening.elapsed() < 100) { // before its first check list
        QTest::qWait(300);
        line->Do([this] { EXPECT_THAT(board.functions, IsEmpty()); });
    }
}

TEST_F(CheckSuiteWindows, TheListFollowsItsEndUnlessTheUserHasScrolled) {
    StartOnLine();
    EnlargeFrame();
    OpenQuietAnomaly();
    ResizeView(700, 145); // room for some two lines
    line->Do([this] { board.contents[1548] = {25}; });
    const QScrollBar& bar = *List().verticalScrollBar();
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return List().count() == 5; }));
    QApplication::processEvents();
    ASSERT_GT(bar.maximum(), 0);
    EXPECT_EQ(bar.value(), bar.maximum());
    List().verticalScrollBar()->setValue(0);
    ASSERT_TRUE(RunUntil([&] { return List().count() == 6; }));
    QApplication::processEvents();
    EXPECT_EQ(bar.value(), 0);
}

TEST_F(CheckSuiteWindows, StopTellsTheBoardAtRest) {
    StartOnLine();
    OpenBackplane();
    line->Do([this] { board.functions.clear(); });
    Bar("Stop");
    line->Do([this] { EXPECT_THAT(board.functions, ElementsAre(40)); });
    OpenQuietAnomaly();
    line->Do([this] { board.functions.clear(); });
    Bar("Stop");
    line->Do([this] { EXPECT_THAT(board.functions, IsEmpty()); });
}

// The tree of an open window keeps its rows; what they stand for changes.
TEST_F(CheckSuiteWindows, AChangeOfTheBusChangesTheTableUnderAnOpenWindow) {
    StartDemo();
    OpenAnomaly();
    Press(View(), "Clear All");
    ClickBox(2);
    UseFile("Save", dir.File("pci.adt"));
    OpenBackplane();
    Press(View(), "Clear All");
    ClickBox(72);
    ChooseDialog<CBusConfigDialog>("Utilities/Bus Configuration", [](CBusConfigDialog& dialog) {
        auto& mode = *dialog.findChild<QComboBox*>();
        mode.setCurrentText("VME");
        ASSERT_EQ(mode.currentText(), "VME");
        Press(dialog, "OK");
    });
    Bar("Go");
    EXPECT_EQ(Tree().Item(72).text(0), "CB/E[7]");
    EXPECT_THAT(Lines(), ElementsAre("WRITE"));
    Frame().Area().activatePreviousSubWindow();
    window = dynamic_cast<CMDIChildWnd*>(Frame().Area().activeSubWindow());
    ASSERT_EQ(Tree().RowCount(), 124);
    UseFile("Save", dir.File("vme.adt"));
    const std::string head = "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n";
    EXPECT_EQ(ReadWholeFile(dir.File("pci.adt")),
              head + "\"Test\",\"1 - FRAME deasserted before IRDY asserted\"\r\n");
    EXPECT_EQ(ReadWholeFile(dir.File("vme.adt")),
              head + "\"Test\",\"1 - Illegal Combination of DS[1:0]*, A1 and LWORD* "
                     "(2.10a)\"\r\n");
}

} // namespace
} // namespace busquill::test
