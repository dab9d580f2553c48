// Anomaly detection and the backplane test through the program's windows, on the simulated board.

#include "support/board_program_fixture_qt.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/backplane_document.h"
#include "ui/controls/check_tree.h"
#include "ui/framework/go_stop_child.h"
#include "ui/framework/view.h"
#include "ui/testsuites/backplane_options_dialog.h"

#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <gmock/gmock.h>

#include <algorithm>

namespace busquill::test {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class CheckSuitesOnBoard : public BoardProgramFixture {
protected:
    void Open(const char* entry) {
        Choose(QString("File/New/%1").arg(entry));
        window = dynamic_cast<CGoStopChild*>(Frame().Area().activeSubWindow());
        ASSERT_NE(window, nullptr);
    }
    /// The window after the board got its check list.
    void OpenAnomaly() {
        Forget();
        Open("Anomaly Detection");
        ASSERT_TRUE(QTest::qWaitFor([&] { return !Payloads().empty(); }, 5000));
    }
    void OpenBackplane() { Open("Backplane Test"); }

    CView& View() { return *window->GetActiveView(); }
    CCheckTree& Tree() { return *window->findChild<CCheckTree*>(); }
    QListWidget& List() { return *window->findChild<QListWidget*>(); }
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        for (int row = 0; row < List().count(); ++row) {
            lines.push_back(List().item(row)->text().toStdString());
        }
        return lines;
    }
    void ClickBox(int row) {
        Tree().scrollToItem(&Tree().Item(row));
        const QRect item = Tree().visualItemRect(&Tree().Item(row));
        QTest::mouseClick(Tree().viewport(), Qt::LeftButton, {},
                          {item.left() + 8, item.center().y()});
    }
    void Bar(const char* name) {
        QTest::mouseClick(window->findChild<QToolButton*>(name), Qt::LeftButton);
    }
    bool RunEnds() {
        return QTest::qWaitFor([&] { return window->RunState() != RunPicture::Running; }, 60000);
    }
    /// From here on the log counts.
    void Forget() { from = board->Log().size(); }
    std::vector<std::string> Payloads() const { return Matches(" payload", 6); }
    /// "function 18 stop anomaly detection", without reads and writes of memory.
    std::vector<std::string> Functions() const {
        std::vector<std::string> functions;
        const auto log = board->Log();
        for (std::size_t i = from; i < log.size(); ++i) {
            if (const auto at = log[i].find("function "); at != std::string::npos) {
                const std::string function = log[i].substr(at, log[i].find(',') - at);
                if (!function.ends_with(" memory")) {
                    functions.push_back(function);
                }
            }
        }
        return functions;
    }
    /// The addresses of reads.
    std::vector<std::string> Reads() const {
        return Matches(" length", 0, "read memory, address ");
    }

    CGoStopChild* window = nullptr;
    std::size_t from = 0;

private:
    /// What stands before `end` in the lines that have it, from a column or from after a text on.
    std::vector<std::string> Matches(const std::string& end, std::size_t column,
                                     const std::string& after = "") const {
        std::vector<std::string> found;
        const auto log = board->Log();
        for (std::size_t i = from; i < log.size(); ++i) {
            const auto at = log[i].find(after);
            const auto last = log[i].find(end);
            if (at != std::string::npos && last != std::string::npos) {
                const auto first = std::max(column, at + after.size());
                found.push_back(log[i].substr(first, last - first));
            }
        }
        return found;
    }
};

const std::string allOn = "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00";
const std::string allOff = "ff ff ff ff ff ff ff ff ff ff ff ff ff ff 03 00";

TEST_F(CheckSuitesOnBoard, ViolationsArriveOneEachSecond) {
    Connect({"--anomaly-rate", "100"});
    OpenAnomaly();
    EXPECT_THAT(Payloads(), ElementsAre(allOn));
    Press(View(), "Clear All");
    ClickBox(119); // Warnings
    EXPECT_THAT(Payloads(),
                ElementsAre(allOn, allOff, "ff ff ff ff ff ff ff ff ff ff ff ff ff 7f 00 00"));
    Forget();
    Bar("Go");
    EXPECT_EQ(window->RunState(), RunPicture::Running);
    ASSERT_TRUE(QTest::qWaitFor([&] { return List().count() == 3; }, 10000));
    EXPECT_THAT(Lines(),
                Each(AnyOf("112 - Target Retry", "113 - Target Disconnect", "114 - Target Abort")));
    EXPECT_THAT(Reads(), ElementsAre("1548", "1548", "1548"));
    ClickBox(121);
    ClickBox(122);
    EXPECT_THAT(Payloads(), SizeIs(3)) << "during the run too";
    ASSERT_TRUE(QTest::qWaitFor([&] { return List().count() == 5; }, 10000));
    EXPECT_EQ(Lines()[4], "114 - Target Abort");
    Bar("Stop");
    EXPECT_EQ(window->RunState(), RunPicture::Stopped);
    EXPECT_THAT(Functions(), ElementsAre("function 17 start anomaly detection",
                                         "function 18 stop anomaly detection"));
    EXPECT_THAT(Lines(), SizeIs(5));
    const auto reads = Reads().size();
    QTest::qWait(1200);
    EXPECT_EQ(Reads().size(), reads);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CheckSuitesOnBoard, ANothingAndAnUnnamedCheckAreNotListed) {
    Connect({"--anomaly-rate", "0"});
    OpenAnomaly();
    Bar("Go");
    board->Fault("anomaly 115");
    board->Fault("anomaly 114");
    ASSERT_TRUE(QTest::qWaitFor([&] { return List().count() == 1; }, 10000));
    QTest::qWait(1200);
    EXPECT_THAT(Lines(), ElementsAre("114 - Target Abort"));
    EXPECT_THAT(static_cast<CAnomalyDetectionDoc&>(window->GetDocument()).Results(),
                ElementsAre(115, 114));
}

TEST_F(CheckSuitesOnBoard, ASecondStartStopsFirst) {
    Connect();
    OpenAnomaly();
    Bar("Go");
    Forget();
    Bar("Go");
    EXPECT_THAT(Functions(), ElementsAre("function 18 stop anomaly detection",
                                         "function 17 start anomaly detection"));
    EXPECT_THAT(Payloads(), ElementsAre(allOn));
    Forget();
    window->close();
    QApplication::processEvents();
    QTest::qWait(1200);
    EXPECT_THAT(Functions(), IsEmpty());
    EXPECT_THAT(Reads(), IsEmpty());
}

TEST_F(CheckSuitesOnBoard, AVmeBoardShowsItsChecksAndSignals) {
    Connect({"--model", "VMEKite"});
    OpenAnomaly();
    EXPECT_EQ(Tree().RowCount(), 73);
    Press(View(), "Clear All");
    EXPECT_EQ(Payloads().back(), "ff ff ff ff ff ff ff ff 07 00 00 00 00 00 00 00");
    OpenBackplane();
    EXPECT_EQ(Tree().RowCount(), 106);
}

TEST_F(CheckSuitesOnBoard, AFailedReadIsReportedAndTheRunGoesOn) {
    Connect({"--anomaly-rate", "100"});
    OpenAnomaly();
    Bar("Go");
    board->Fault("silence");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !prompts.Texts().empty(); }, 60000));
    EXPECT_THAT(prompts.Texts(), Contains("Error reading anomaly results data from analyzer."));
    board->Fault("normal");
    const int before = List().count();
    EXPECT_TRUE(QTest::qWaitFor([&] { return List().count() > before; }, 30000));
    EXPECT_EQ(window->RunState(), RunPicture::Running);
}

TEST_F(CheckSuitesOnBoard, ABackplaneIsTestedSignalBySignal) {
    Connect({"--backplane", "4+5+6, 8+92, broken 9", "--fault", "backplane-busy 2"});
    OpenBackplane();
    Press(View(), "Clear All");
    for (const int row : {6, 9, 10, 97}) {
        ClickBox(row);
    }
    AnswerDialog<CBackplaneOptionsDlg>([&] { Press(View(), "Options"); },
                                       [&](CBackplaneOptionsDlg& dialog) {
                                           Tick(dialog, "High");
                                           Press(dialog, "OK");
                                       });
    Forget();
    Bar("Go");
    EXPECT_EQ(window->RunState(), RunPicture::Running);
    ASSERT_TRUE(RunEnds());
    EXPECT_THAT(Lines(), ElementsAre("AD[5]", "    AD[4] SHORTED", "    AD[6] SHORTED", "AD[8]",
                                     "    Bit 92 SHORTED", "AD[9]", "    Cannot drive signal",
                                     "RST", "    Ok"));
    EXPECT_EQ(List().currentRow(), 7);
    const std::string start = "function 39 start backplane test";
    EXPECT_THAT(Functions(),
                ElementsAre(start, start, start, start, "function 40 stop backplane test"));
    EXPECT_THAT(std::vector(Payloads()).front(), "01");
    EXPECT_THAT(Payloads()[1], StartsWith("00 20 00 00 "));
    EXPECT_THAT(Payloads()[3], StartsWith("00 00 00 01 00 "));
    EXPECT_THAT(Payloads(), SizeIs(8));
    const auto reads = Reads();
    ASSERT_EQ(reads.size(), 16U);
    EXPECT_THAT(std::vector(reads.begin(), reads.begin() + 4),
                ElementsAre("1551", "1551", "1551", "1552"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CheckSuitesOnBoard, ABackplaneTestIsStopped) {
    Connect({"--fault", "backplane-busy 100000"});
    OpenBackplane();
    Bar("Go");
    QTest::qWait(500);
    EXPECT_EQ(window->RunState(), RunPicture::Running);
    Bar("Stop");
    EXPECT_EQ(window->RunState(), RunPicture::Stopped);
    EXPECT_THAT(Lines(), ElementsAre("AD[0]"));
    EXPECT_EQ(Functions().back(), "function 40 stop backplane test");
    const auto reads = Reads().size();
    QTest::qWait(500);
    EXPECT_EQ(Reads().size(), reads);
}

TEST_F(CheckSuitesOnBoard, AVmeFileTicksByTheNamesOfThePciBus) {
    Connect({"--model", "VMEKite"});
    OpenBackplane();
    Press(View(), "Clear All");
    ClickBox(6);  // AD[5]
    ClickBox(71); // Control: the same text has another place in the PCI table
    const std::string path = dir.File("vme.bpt");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_THAT(ReadWholeFile(path), HasSubstr("\"Test\",\"WRITE\"\r\n"));
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    std::vector<int> ticked;
    for (int row = 0; row < Tree().RowCount(); ++row) {
        if (Tree().IsChecked(row)) {
            ticked.push_back(row);
        }
    }
    EXPECT_THAT(ticked, ElementsAre(6, 75));
}

TEST_F(CheckSuitesOnBoard, InDemoModeChecksAreInventedAndNothingCanBeDriven) {
    StartDemo();
    Open("Anomaly Detection");
    Bar("Go");
    ASSERT_TRUE(QTest::qWaitFor([&] { return List().count() > 0; }, 30000));
    const auto found = static_cast<CAnomalyDetectionDoc&>(window->GetDocument()).Results().at(0);
    EXPECT_GE(found, 1);
    EXPECT_LE(found, 25);
    EXPECT_THAT(Lines()[0], StartsWith(std::to_string(found) + " - "));
    window->close();
    QApplication::processEvents();
    Open("Backplane Test");
    Press(View(), "Clear All");
    ClickBox(97);
    Bar("Go");
    ASSERT_TRUE(RunEnds());
    EXPECT_THAT(Lines(), ElementsAre("RST", "    Cannot drive signal"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
