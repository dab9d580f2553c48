// Anomaly detection and the backplane test in the program's windows, on a scripted line.

#include "support/board_line_fixture_qt.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/backplane_document.h"
#include "ui/controls/check_tree.h"
#include "ui/shell/help_window.h"
#include "ui/testsuites/anomaly_child.h"
#include "ui/testsuites/backplane_child.h"
#include "ui/testsuites/backplane_options_dialog.h"

#include <QElapsedTimer>
#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTextBrowser>
#include <QToolButton>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string allOn = "1532: 00000000000000000000000000000000";
const std::string allOff = "1532: ffffffffffffffffffffffffffff0300";

class CheckSuiteWindows : public BoardLineFixture {
protected:
    template <class Child>
    void Open(const char* entry) {
        Choose(QString("File/New/%1").arg(entry));
        window = dynamic_cast<Child*>(Frame().Area().activeSubWindow());
        ASSERT_NE(window, nullptr);
    }
    void OpenAnomaly() { Open<CAnomalyDetectionChild>("Anomaly Detection"); }
    void OpenBackplane() { Open<CBackplaneTestChild>("Backplane Test"); }
    /// The window after the board got its check list.
    void OpenQuietAnomaly() {
        OpenAnomaly();
        ASSERT_TRUE(RunUntil([&] { return !TakeWrites().empty(); }));
    }
    CView& View() { return *window->GetActiveView(); }
    CCheckTree& Tree() { return *window->findChild<CCheckTree*>(); }
    QListWidget& List() { return *window->findChild<QListWidget*>(); }
    CAnomalyDetectionDoc& Anomalies() {
        return static_cast<CAnomalyDetectionDoc&>(window->GetDocument());
    }
    CBackplaneTestDoc& Backplane() {
        return static_cast<CBackplaneTestDoc&>(window->GetDocument());
    }
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        for (int row = 0; row < List().count(); ++row) {
            lines.push_back(List().item(row)->text().toStdString());
        }
        return lines;
    }
    int Ticked() {
        int count = 0;
        for (int row = 0; row < Tree().RowCount(); ++row) {
            count += Tree().IsChecked(row) ? 1 : 0;
        }
        return count;
    }
    void ClickBox(int row) { ClickAt(row, 8); }
    void ClickText(int row) { ClickAt(row, 40); }
    void Bar(const char* name) {
        QTest::mouseClick(window->findChild<QToolButton*>(name), Qt::LeftButton);
    }
    RunPicture Picture() { return dynamic_cast<CGoStopChild*>(window)->RunState(); }
    /// "1532: 00ff...", those since the last call.
    std::vector<std::string> TakeWrites() {
        std::vector<std::string> writes;
        line->Do([&] {
            for (const auto& write : board.writes) {
                const auto hex = QByteArray(reinterpret_cast<const char*>(write.bytes.data()),
                                            static_cast<qsizetype>(write.bytes.size()))
                                     .toHex();
                writes.push_back(std::to_string(write.address) + ": " + hex.toStdString());
            }
            board.writes.clear();
        });
        return writes;
    }
    void UseFile(const char* button, const std::string& path) {
        AnswerDialog<QFileDialog>([&] { Press(View(), button); },
                                  [&](QFileDialog& files) { GiveFileName(files, path); });
    }
    void ResizeView(int width, int height) {
        View().setMinimumSize(width, height);
        View().setMaximumSize(width, height);
        QApplication::processEvents();
    }
    void EnlargeFrame() {
        Frame().resize(1500, 1000);
        QApplication::processEvents();
    }

    CMDIChildWnd* window = nullptr;

private:
    void ClickAt(int row, int x) {
        Tree().scrollToItem(&Tree().Item(row));
        const QRect item = Tree().visualItemRect(&Tree().Item(row));
        QTest::mouseClick(Tree().viewport(), Qt::LeftButton, {},
                          {item.left() + x, item.center().y()});
    }
};

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
    EXPECT_EQ(HelpPage(program->App().HelpTopics(), 20), ":/manual/anomaly-detection.md");
    EXPECT_EQ(HelpPage(program->App().HelpTopics(), 32), ":/manual/backplane.md");
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

TEST_F(CheckSuiteWindows, OfResultsThatAreShownAgainTheFirstIsSelected) {
    StartDemo();
    OpenBackplane();
    for (int i = 0; i < 100; ++i) {
        Backplane().Results().push_back("line " + std::to_string(i));
    }
    Backplane().UpdateAllViews(nullptr);
    EXPECT_EQ(List().currentRow(), 0);
    EXPECT_EQ(List().verticalScrollBar()->value(), 0);
}

TEST_F(CheckSuiteWindows, ABackplaneRunFollowsItsSignal) {
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

TEST_F(CheckSuiteWindows, TheSensitivityIsChosenInOptions) {
    StartOnLine();
    OpenBackplane();
    const auto choose = [&](const QString& choice, const QString& button) {
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
    };
    EXPECT_EQ(choose("Low", "Cancel"), "Normal");
    EXPECT_EQ(choose("High", "OK"), "Normal");
    Bar("Go");
    EXPECT_THAT(TakeWrites(), Contains("1550: 01"));
    EXPECT_EQ(choose("Low", "OK"), "High");
    Bar("Go");
    EXPECT_THAT(TakeWrites(), Contains("1550: 02"));
}

TEST_F(CheckSuiteWindows, ABackplaneFileBringsTicksAndResults) {
    StartDemo();
    OpenBackplane();
    Press(View(), "Clear All");
    ClickBox(6);
    Backplane().Results() = {"AD[5]", "    Ok"};
    UseFile("Save", dir.File("run.bpt"));
    const std::string text = ReadWholeFile(dir.File("run.bpt"));
    EXPECT_EQ(text, "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n"
                    "\"Test\",\"AD[5]\"\r\n\r\n\"Results\"\r\n\"AD[5]\"\r\n\"    Ok\"\r\n");
    UseFile("Save", dir.File("bare"));
    EXPECT_EQ(ReadWholeFile(dir.File("bare.adt")), text);
    Press(View(), "Set All");
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return List().count() > 5; }));
    UseFile("Load", dir.File("run.bpt"));
    EXPECT_EQ(Picture(), RunPicture::Stopped) << "the results are those of the file";
    EXPECT_EQ(Ticked(), 1);
    EXPECT_TRUE(Tree().IsChecked(6));
    EXPECT_THAT(Lines(), ElementsAre("AD[5]", "    Ok"));
    EXPECT_EQ(List().currentRow(), 0);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    dir.Write("bad.bpt", "\"FileType\",\"x\"\r\n");
    UseFile("Load", dir.File("bad.bpt"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid backplane file type of 'x'."));
    EXPECT_EQ(Ticked(), 1);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(CheckSuiteWindows, AnAnomalyFileIsCheckedAndChangesNothing) {
    StartOnLine();
    OpenQuietAnomaly();
    Press(View(), "Clear All");
    UseFile("Save", dir.File("run"));
    EXPECT_EQ(ReadWholeFile(dir.File("run.adt")),
              "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n");
    ClickBox(2);
    TakeWrites();
    UseFile("Load", dir.File("run.adt"));
    EXPECT_EQ(Ticked(), 1);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    dir.Write("other.adt", "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n");
    UseFile("Load", dir.File("other.adt"));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Invalid anomaly file type of 'Backplane Test File'."));
    EXPECT_EQ(Ticked(), 1);
    EXPECT_THAT(TakeWrites(), IsEmpty());
}

TEST_F(CheckSuiteWindows, FilesAreOpenedFromTheMenu) {
    StartDemo();
    const auto open = [&](const std::string& path) {
        AnswerDialog<QFileDialog>([&] { Choose("File/Open..."); },
                                  [&](QFileDialog& files) { GiveFileName(files, path); });
        window = dynamic_cast<CMDIChildWnd*>(Frame().Area().activeSubWindow());
    };
    open(dir.Write("run.bpt", "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n"
                              "\"Test\",\"AD[5]\"\r\n\"Results\"\r\n\"AD[5]\"\r\n"));
    ASSERT_NE(dynamic_cast<CBackplaneTestChild*>(window), nullptr);
    EXPECT_EQ(Ticked(), 1);
    EXPECT_THAT(Lines(), ElementsAre("AD[5]"));
    open(dir.Write("run.adt", "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n"));
    ASSERT_NE(dynamic_cast<CAnomalyDetectionChild*>(window), nullptr);
    EXPECT_EQ(Ticked(), 124);
}

} // namespace
} // namespace busquill::test
