// The configuration space and the compliance tests through the program's windows.

#include "support/board_program_fixture_qt.h"
#include "support/recording_printer_qt.h"
#include "testsuites/compliance_document.h"
#include "testsuites/config_document.h"
#include "ui/controls/check_tree.h"
#include "ui/display/display_properties.h"
#include "ui/patterns/pattern_edit.h"
#include "ui/testsuites/compliance_child.h"
#include "ui/testsuites/compliance_options_dialog.h"
#include "ui/testsuites/compliance_view.h"
#include "ui/testsuites/config_analysis_view.h"
#include "ui/testsuites/config_child.h"
#include "ui/testsuites/config_view.h"
#include "ui/testsuites/instructions_dialog.h"
#include "ui/testsuites/register_picture.h"
#include "ui/testsuites/result_list.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolButton>
#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>
#include <map>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

const std::string fileHead = "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n";

class TestSuiteWindows : public BoardProgramFixture {
protected:
    TestSuiteWindows() {
        for (const char* name : {"PCIVendors.txt", "PCIClass.txt"}) {
            std::filesystem::copy(SourceFile("data/" + std::string(name)), dir.File(name));
        }
        SetCheckList(
            "[Configuration]\nCFG1. One\nCFG2. Two\n<Look at it>\n[Master]\nMST1. Three\n");
    }
    void SetCheckList(const std::string& text) const { dir.Write("ComplianceChecklist.txt", text); }

    void OpenConfiguration() {
        Choose("File/New/Exerciser/Configuration");
        window = dynamic_cast<CConfigChild*>(Frame().Area().activeSubWindow());
        ASSERT_NE(window, nullptr);
    }
    void OpenCompliance() {
        Choose("File/New/Compliance Tests");
        window = dynamic_cast<CComplianceChild*>(Frame().Area().activeSubWindow());
        ASSERT_NE(window, nullptr);
    }
    CView& View() { return *window->GetActiveView(); }
    CConfigSpaceData& Device() { return static_cast<CConfigDoc&>(window->GetDocument()).Device(); }
    CComplianceDoc& Tests() { return static_cast<CComplianceDoc&>(window->GetDocument()); }
    QString Text(const char* field) { return window->findChild<QLineEdit*>(field)->text(); }
    CCheckTree& Tree() { return *window->findChild<CCheckTree*>(); }
    CResultList& Results() { return *window->findChild<CResultList*>(); }
    std::vector<std::string> ResultTexts() {
        std::vector<std::string> texts;
        for (int row = 0; row < Results().count(); ++row) {
            texts.push_back(Results().item(row)->text().toStdString());
        }
        return texts;
    }
    std::vector<bool> Ticks() {
        std::vector<bool> ticks;
        for (int row = 0; row < Tree().RowCount(); ++row) {
            ticks.push_back(Tree().IsChecked(row));
        }
        return ticks;
    }
    void ClickBox(int row) {
        const QRect item = Tree().visualItemRect(&Tree().Item(row));
        QTest::mouseClick(Tree().viewport(), Qt::LeftButton, {},
                          {item.left() + 8, item.center().y()});
    }
    void Bar(const char* name) {
        QTest::mouseClick(window->findChild<QToolButton*>(name), Qt::LeftButton);
    }
    RunPicture Picture() { return dynamic_cast<CGoStopChild*>(window)->RunState(); }
    bool RunEnds() {
        return QTest::qWaitFor([&] { return Picture() != RunPicture::Running; }, 30000);
    }
    /// Presses Go and answers the instructions, which come at once.
    void GoAndPress(const QString& answer) {
        AnswerDialog<CInstructionsDialog>(
            [&] { Bar("Go"); }, [&](CInstructionsDialog& dialog) { Press(dialog, answer); });
    }
    /// The buttons of the view with their mnemonics, from left to right and from the top.
    std::vector<std::string> Buttons() {
        auto buttons = View().findChildren<QPushButton*>();
        std::ranges::sort(buttons, {}, [](const QPushButton* button) {
            return std::pair(button->y(), button->x());
        });
        std::vector<std::string> texts;
        for (const QPushButton* button : buttons) {
            texts.push_back(button->text().toStdString());
        }
        return texts;
    }
    /// The first line of the help that the view's button opens.
    std::string HelpTitle() {
        Press(View(), "Help");
        for (const QWidget* each : QApplication::topLevelWidgets()) {
            const auto* browser = each->findChild<QTextBrowser*>();
            if (each->isVisible() && browser != nullptr) {
                return browser->document()->begin().text().toStdString();
            }
        }
        return "";
    }
    void LoadFile(const std::string& path) {
        AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                                  [&](QFileDialog& files) { GiveFileName(files, path); });
    }
    std::vector<std::string> Wire(std::size_t from) {
        auto functions = board->Functions();
        functions.erase(functions.begin(), functions.begin() + static_cast<std::ptrdiff_t>(from));
        for (std::string& function : functions) {
            function = function.substr(0, function.find(','));
        }
        return functions;
    }

    CMDIChildWnd* window = nullptr;
};

TEST_F(TestSuiteWindows, TheDevicesOfTheBusAreShownOneAfterTheOther) {
    Connect();
    OpenConfiguration();
    EXPECT_EQ(window->windowTitle(), "Configuration Space");
    EXPECT_EQ(window->size(), QSize(620, 525));
    EXPECT_EQ(window->findChild<QToolButton*>("Go"), nullptr);
    EXPECT_THAT(Buttons(), ElementsAre("&Find", "< &Back", "&Next >", "&Read", "&Write", "&Options",
                                       "&Save", "&Load", "&Help", "&Close"));
    EXPECT_EQ(Text("Address"), "0000000000000000");
    EXPECT_TRUE(window->findChild<QLineEdit*>("Address")->isReadOnly()) << "it only shows";
    Press(View(), "Find");
    EXPECT_EQ(Text("Address"), "0000000080000000");
    EXPECT_EQ(Device().Identity().deviceId, 0x1237U);
    Press(View(), "Next >");
    EXPECT_EQ(Text("Address"), "0000000080000800");
    Press(View(), "< Back");
    EXPECT_EQ(Device().Identity().deviceId, 0x1237U);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    Press(View(), "< Back");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No device found."));
    EXPECT_EQ(Text("Address"), "0000000080000000");
    prompts.Forget();
    const auto functions = board->Functions().size();
    Press(View(), "Read");
    Press(View(), "Write");
    EXPECT_EQ(board->Functions().size(), functions) << "they do nothing";
    Press(View(), "Options");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No options are available."));
    EXPECT_EQ(HelpTitle(), "Configuration space");
}

/// Counts the paint events of the widgets that it watches.
class PaintCounter final : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        paints[watched] += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    std::map<QObject*, int> paints;
};

TEST_F(TestSuiteWindows, ADeviceIsDrawnWhenItIsFound) {
    Connect();
    OpenConfiguration();
    auto* picture = View().findChild<RegisterPicture*>();
    QWidget* analysis = View().findChild<CConfigAnalysisView*>()->widget();
    QApplication::processEvents();
    const QImage before[] = {picture->grab().toImage(), analysis->grab().toImage()};
    PaintCounter counter;
    picture->installEventFilter(&counter);
    analysis->installEventFilter(&counter);
    Press(View(), "Find");
    QApplication::processEvents();
    EXPECT_GT(counter.paints[picture], 0);
    EXPECT_GT(counter.paints[analysis], 0);
    EXPECT_NE(picture->grab().toImage(), before[0]);
    EXPECT_NE(analysis->grab().toImage(), before[1]);
    counter.paints.clear();
    const std::string path = dir.Write("device.cfg", "");
    LoadFile(path);
    QApplication::processEvents();
    EXPECT_GT(counter.paints[picture], 0) << "a loaded file redraws";
    EXPECT_GT(counter.paints[analysis], 0);
}

TEST_F(TestSuiteWindows, TheGroundHasTheUsersColor) {
    StartDemo();
    const auto ground = [this] {
        return View().grab().toImage().pixelColor(View().width() - 3, View().height() - 3);
    };
    OpenConfiguration();
    EXPECT_EQ(ground(), QColor(0xC0, 0xC0, 0xC0));
    settings.WriteProfileInt("Display", "OtherBackgroundColor", 0x804020);
    EXPECT_EQ(ground(), QColor(0x20, 0x40, 0x80)) << "read whenever it is painted";
    OpenCompliance();
    EXPECT_EQ(ground(), QColor(0x20, 0x40, 0x80));
}

TEST_F(TestSuiteWindows, TheFieldsStandInTwoColumnsAboveTheButtons) {
    StartDemo();
    OpenCompliance();
    struct Row {
        const char* field;
        int left, bottom, width; // the bottom from that of the view
    };
    for (const Row& row : {Row{"Vendor ID", 120, 95, 142}, Row{"Device ID", 120, 70, 142},
                           Row{"Function #", 120, 45, 142}, Row{"Address", 432, 95, 142},
                           Row{"Vendor Name", 432, 70, 250}, Row{"Class", 432, 45, 250}}) {
        EXPECT_EQ(window->findChild<QLineEdit*>(row.field)->geometry(),
                  QRect(row.left, View().height() - row.bottom - 20, row.width, 20))
            << row.field;
    }
    EXPECT_LT(Tree().geometry().right(), View().width() / 2);
    EXPECT_GE(Results().geometry().left(), View().width() / 2);
    EXPECT_EQ(Tree().topLevelItemCount(), 2) << "tests stand below their groups";
    EXPECT_EQ(Tree().Item(2).parent(), &Tree().Item(0));
    EXPECT_EQ(Tree().Item(4).parent(), &Tree().Item(3));
}

TEST_F(TestSuiteWindows, AConfigurationFileIsEmpty) {
    Connect();
    OpenConfiguration();
    Press(View(), "Find");
    const std::string path = dir.File("device.cfg");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(ReadWholeFile(path), "");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(Text("Address"), "0000000080000000");
    Press(View(), "Close");
    QApplication::processEvents();
    EXPECT_THAT(Windows(), IsEmpty());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(TestSuiteWindows, MissingNamesAreReportedAndTheWindowOpens) {
    std::filesystem::remove(dir.File("PCIClass.txt"));
    Connect({"--model", "PCIKite"});
    OpenConfiguration();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Warning: Class map file " + dir.File("PCIClass.txt") + " not found"));
    Press(View(), "Find");
    EXPECT_EQ(Device().Identity().className, "Unknown - ID 0x060000");
}

TEST_F(TestSuiteWindows, InDemoModeNoDeviceIsFound) {
    StartDemo();
    OpenConfiguration();
    Press(View(), "Find");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No device found."));
}

TEST_F(TestSuiteWindows, ADeviceIsTested) {
    Connect({"--compliance", "CFG1 fail 3"});
    OpenCompliance();
    EXPECT_EQ(window->windowTitle(), "Compliance Tests");
    EXPECT_THAT(Buttons(), ElementsAre("&Find", "< &Back", "&Next >", "&Load", "&Save",
                                       "&Clear All", "&Set All", "&Options", "&Help", "&Close"));
    EXPECT_EQ(Text("Function #"), "");
    for (const QLineEdit* field : View().findChildren<QLineEdit*>()) {
        EXPECT_TRUE(field->isReadOnly()) << field->objectName().toStdString();
    }
    EXPECT_THAT(Ticks(), ElementsAre(true, true, true, true, true));
    Bar("Go");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No device was found - select Find."));
    prompts.Forget();
    Press(View(), "Find");
    Press(View(), "Next >");
    EXPECT_EQ(Text("Vendor ID"), "1011");
    EXPECT_EQ(Text("Device ID"), "0024");
    EXPECT_EQ(Text("Function #"), "0");
    EXPECT_EQ(Text("Address"), "0000000080000800");
    EXPECT_EQ(Text("Vendor Name"), "Digital Equipment Corporation");
    EXPECT_EQ(Text("Class"), "Bridge");
    ClickBox(2); // its instructions would wait
    const auto from = board->Functions().size();
    Bar("Go");
    EXPECT_EQ(Picture(), RunPicture::Running);
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG1. One"));
    ASSERT_TRUE(RunEnds());
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG1. One Failed(3)", "MST1. Three Passed"));
    EXPECT_EQ(Results().currentRow(), 1);
    EXPECT_EQ(Picture(), RunPicture::Stopped);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_EQ(HelpTitle(), "Compliance tests");
    std::vector<std::string> starts;
    for (const std::string& function : Wire(from)) {
        if (!function.starts_with("function 1 ")) {
            starts.push_back(function);
        }
    }
    EXPECT_THAT(starts, ElementsAre("function 2 write memory", "function 2 write memory",
                                    "function 19 start compliance test", "function 2 write memory",
                                    "function 2 write memory", "function 19 start compliance test",
                                    "function 20 stop compliance test"));
}

TEST_F(TestSuiteWindows, TheOperatorReadsInstructions) {
    Connect();
    OpenCompliance();
    Press(View(), "Find");
    Press(View(), "Clear All");
    ClickBox(2);
    AnswerDialog<CInstructionsDialog>([&] { Bar("Go"); },
                                      [&](CInstructionsDialog& dialog) {
                                          EXPECT_EQ(dialog.windowTitle(),
                                                    "Compliance Test Instructions");
                                          auto* text = dialog.findChild<QPlainTextEdit*>();
                                          EXPECT_EQ(text->toPlainText(), "Look at it");
                                          EXPECT_TRUE(text->isReadOnly());
                                          Press(dialog, "Continue");
                                      });
    ASSERT_TRUE(RunEnds());
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG2. Two Passed"));
    GoAndPress("Skip Test");
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG2. Two Skipped"));
    EXPECT_EQ(Picture(), RunPicture::Stopped);
    GoAndPress("Stop Test");
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG2. Two"));
    EXPECT_THAT(Tests().Results(), IsEmpty());
    EXPECT_EQ(Picture(), RunPicture::Stopped);
    AnswerDialog<CInstructionsDialog>(
        [&] { Bar("Go"); },
        [&](CInstructionsDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG2. Two")) << "Escape stops";
    EXPECT_EQ(Picture(), RunPicture::Stopped);
}

TEST_F(TestSuiteWindows, StopEndsARun) {
    Connect({"--compliance", "* slow 10000"});
    OpenCompliance();
    Press(View(), "Find");
    Bar("Go");
    QTest::qWait(500);
    EXPECT_EQ(Picture(), RunPicture::Running);
    Bar("Stop");
    EXPECT_EQ(Picture(), RunPicture::Stopped);
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG1. One"));
    EXPECT_THAT(Wire(0).back(), "function 20 stop compliance test");
}

TEST_F(TestSuiteWindows, ChecksFollowMouseAndKeys) {
    StartDemo();
    OpenCompliance();
    ClickBox(0);
    EXPECT_THAT(Ticks(), ElementsAre(false, false, false, true, true)) << "the group's tests too";
    EXPECT_FALSE(Tests().IsSelected(0) || Tests().IsSelected(1) || Tests().IsSelected(2));
    ClickBox(2);
    EXPECT_THAT(Ticks(), ElementsAre(false, false, true, true, true)) << "the group stays";
    EXPECT_TRUE(Tests().IsSelected(2));
    Tree().setCurrentItem(&Tree().Item(3));
    QTest::keyClick(&Tree(), Qt::Key_Space);
    EXPECT_THAT(Ticks(), ElementsAre(false, false, true, false, false));
    EXPECT_FALSE(Tests().IsSelected(4));
    Press(View(), "Set All");
    EXPECT_THAT(Ticks(), ElementsAre(true, true, true, true, true));
    Press(View(), "Clear All");
    EXPECT_THAT(Ticks(), ElementsAre(false, false, false, false, false));
    EXPECT_FALSE(Tests().IsSelected(499));
    Press(View(), "Find");
    Bar("Go");
    EXPECT_THAT(prompts.Texts(), ElementsAre("One or more tests must be selected to execute."));
}

TEST_F(TestSuiteWindows, InDemoModeEveryTestPasses) {
    StartDemo();
    OpenCompliance();
    Press(View(), "Find");
    EXPECT_EQ(Text("Vendor ID"), "1317");
    EXPECT_EQ(Text("Device ID"), "0985");
    EXPECT_EQ(Text("Address"), "0000000080000000");
    EXPECT_EQ(Text("Vendor Name"), "Admtek Inc.");
    EXPECT_EQ(Text("Class"), "Network Controller");
    EXPECT_EQ(Text("Function #"), "0");
    ClickBox(2);
    Bar("Go");
    ASSERT_TRUE(RunEnds());
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG1. One Passed", "MST1. Three Passed"));
}

TEST_F(TestSuiteWindows, AMissingCheckListIsAnEmptyTree) {
    std::filesystem::remove(dir.File("ComplianceChecklist.txt"));
    StartDemo();
    OpenCompliance();
    EXPECT_EQ(Tree().RowCount(), 0);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    Press(View(), "Find");
    Bar("Go");
    EXPECT_THAT(prompts.Texts(), ElementsAre("One or more tests must be selected to execute."));
}

TEST_F(TestSuiteWindows, BoxesBeyondTheFlagsStartUntickedAndFollowTheMouse) {
    std::string list = "[G]\n";
    for (int i = 1; i <= 502; ++i) {
        list += "TST" + std::to_string(i) + ". x\n";
    }
    SetCheckList(list);
    StartDemo();
    OpenCompliance();
    EXPECT_EQ(Tree().RowCount(), 503);
    EXPECT_TRUE(Tree().IsChecked(499));
    EXPECT_FALSE(Tree().IsChecked(500));
    Press(View(), "Set All");
    EXPECT_FALSE(Tree().IsChecked(502));
    Tree().scrollToBottom();
    ClickBox(501);
    EXPECT_TRUE(Tree().IsChecked(501));
    EXPECT_FALSE(Tests().IsSelected(501));
}

TEST_F(TestSuiteWindows, AFileIsSavedAndLoaded) {
    StartDemo();
    OpenCompliance();
    Press(View(), "Find");
    ClickBox(2);
    Bar("Go");
    ASSERT_TRUE(RunEnds());
    const std::string path = dir.File("run.cpl");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_THAT(ReadWholeFile(path), StartsWith("\"FileType\",\"Compliance File\"\r\n"));
    window->close();
    QApplication::processEvents();
    OpenCompliance();
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(Picture(), RunPicture::Loaded);
    EXPECT_EQ(Text("Vendor Name"), "Admtek Inc.");
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG1. One Passed", "MST1. Three Passed"));
    EXPECT_THAT(Ticks(), ElementsAre(true, true, false, true, true));
    Bar("Go");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Select Find before starting test."));
    EXPECT_EQ(Picture(), RunPicture::Loaded);
    EXPECT_THAT(ResultTexts(), SizeIs(2));
    Press(View(), "Find");
    Bar("Go");
    EXPECT_EQ(Picture(), RunPicture::Running);
}

TEST_F(TestSuiteWindows, LoadingAFileEndsARun) {
    Connect({"--compliance", "* slow 10000"});
    OpenCompliance();
    Press(View(), "Find");
    Bar("Go");
    const std::string path = dir.Write("run.cpl", fileHead);
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(Picture(), RunPicture::Loaded);
    EXPECT_THAT(Wire(0).back(), "function 20 stop compliance test");
    const auto from = board->Functions().size();
    QTest::qWait(500);
    EXPECT_THAT(Wire(from), IsEmpty());
}

TEST_F(TestSuiteWindows, AFileThatIsRefusedLeavesARunAlone) {
    Connect({"--compliance", "* slow 3"});
    OpenCompliance();
    Press(View(), "Find");
    ClickBox(2);
    Bar("Go");
    LoadFile(dir.Write("run.cpl", "\"FileType\",\"Master File\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid compliance file type of 'Master File'."));
    EXPECT_EQ(Picture(), RunPicture::Running);
    ASSERT_TRUE(RunEnds());
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG1. One Passed", "MST1. Three Passed"));
}

TEST_F(TestSuiteWindows, OtherColorsLeaveARunAlone) {
    Connect({"--compliance", "* slow 3"});
    OpenCompliance();
    Press(View(), "Find");
    ClickBox(2);
    Bar("Go");
    ChooseDialog<CDisplayProperties>("Edit/Display/Colors",
                                     [](CDisplayProperties& sheet) { Press(sheet, "OK"); });
    EXPECT_EQ(Picture(), RunPicture::Running);
    EXPECT_EQ(Text("Function #"), "0");
    ASSERT_TRUE(RunEnds());
    EXPECT_EQ(Picture(), RunPicture::Stopped);
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG1. One Passed", "MST1. Three Passed"));
}

TEST_F(TestSuiteWindows, TheFunctionNumberIsThatOfTheLastScan) {
    Connect();
    OpenCompliance();
    for (const char* button : {"Find", "Next >", "Next >", "Next >"}) {
        Press(View(), button);
    }
    EXPECT_EQ(Text("Function #"), "1");
    Press(View(), "< Back");
    EXPECT_EQ(Text("Function #"), "0");
    Press(View(), "Next >");
    LoadFile(dir.Write("run.cpl", fileHead + "\"VendorID\",\"10a1\"\r\n"));
    EXPECT_EQ(Text("Vendor ID"), "10a1");
    EXPECT_EQ(Text("Function #"), "") << "that of another device";
    Press(View(), "Find");
    EXPECT_EQ(Text("Function #"), "0");
}

TEST_F(TestSuiteWindows, TheWindowOfARunMayBeClosed) {
    Connect({"--compliance", "* slow 10000"});
    OpenCompliance();
    Press(View(), "Find");
    Bar("Go");
    Press(View(), "Close");
    QApplication::processEvents();
    EXPECT_THAT(Windows(), IsEmpty());
    const auto from = board->Functions().size();
    QTest::qWait(500);
    EXPECT_THAT(Wire(from), IsEmpty());
    EXPECT_THAT(Wire(0).back(), testing::Not("function 20 stop compliance test"));
}

TEST_F(TestSuiteWindows, AFileOpenedFromTheMenuShowsAsLoaded) {
    StartDemo();
    const std::string path = dir.Write(
        "run.cpl", "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n"
                   "\"VendorID\",\"10a1\"\r\n\"Result\",\"CFG1\",\"Failed\",7,\"One\"\r\n");
    AnswerDialog<QFileDialog>([&] { Choose("File/Open..."); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    window = dynamic_cast<CMDIChildWnd*>(Frame().Area().activeSubWindow());
    ASSERT_NE(dynamic_cast<CComplianceChild*>(window), nullptr);
    EXPECT_EQ(Picture(), RunPicture::Loaded);
    EXPECT_EQ(Text("Vendor ID"), "10a1");
    EXPECT_THAT(ResultTexts(), ElementsAre("CFG1. One Failed(7)"));
}

TEST_F(TestSuiteWindows, TheTargetAddressGoesToTheBoardAtOnce) {
    Connect();
    OpenCompliance();
    const auto set = [&](bool accept) {
        AnswerDialog<CComplianceOptionsDialog>(
            [&] { Press(View(), "Options"); },
            [&](CComplianceOptionsDialog& dialog) {
                EXPECT_EQ(dialog.windowTitle(), " Compliance Test Options");
                dialog.findChild<CPatternEdit*>()->SetValue(0x123456789ABCDEF0);
                Press(dialog, accept ? "OK" : "Cancel");
            });
    };
    const auto from = board->Functions().size();
    set(false);
    EXPECT_THAT(Wire(from), IsEmpty());
    set(true);
    EXPECT_THAT(Wire(from), SizeIs(1));
    EXPECT_THAT(board->Log(), testing::Contains(HasSubstr("f0 de bc 9a 78 56 34 12")));
    AnswerDialog<CComplianceOptionsDialog>([&] { Press(View(), "Options"); },
                                           [&](CComplianceOptionsDialog& dialog) {
                                               EXPECT_EQ(dialog.findChild<CPatternEdit*>()->Value(),
                                                         0x123456789ABCDEF0U);
                                           });
}

/// The pages of a PDF file.
int PagesOf(const std::string& path) {
    const std::string pdf = ReadWholeFile(path);
    int pages = 0;
    for (std::size_t at = pdf.find("/Type /Page\n"); at != std::string::npos;
         at = pdf.find("/Type /Page\n", at + 1)) {
        ++pages;
    }
    return pages;
}

TEST_F(TestSuiteWindows, TheReportIsPrintedAndPreviewed) {
    StartDemo();
    OpenCompliance();
    Tests().Results().assign(60, {{'C', 'F', 'G', 1, 0}, "Title", TestOutcome::Passed, 0});
    ASSERT_TRUE(Entry("File/Print...").isEnabled());
    const std::string path = dir.File("report.pdf");
    const auto toFile = [&path](const QPrintDialog& dialog) {
        auto* printers = dialog.findChild<QComboBox*>("printers");
        auto* name = dialog.findChild<QLineEdit*>("filename");
        ASSERT_TRUE(printers != nullptr && name != nullptr);
        printers->setCurrentIndex(printers->findText("Print to File (PDF)"));
        name->setText(QString::fromStdString(path));
    };
    ChooseDialog<QPrintDialog>("File/Print...", [&](QPrintDialog& dialog) {
        toFile(dialog);
        Press(dialog, "Print");
    });
    EXPECT_EQ(PagesOf(path), 2);
    std::filesystem::remove(path);
    ChooseDialog<QPrintDialog>("File/Print...", [&](QPrintDialog& dialog) {
        toFile(dialog);
        dialog.printer()->setOutputFileName(QString::fromStdString(path));
        Press(dialog, "Cancel");
    });
    EXPECT_FALSE(std::filesystem::exists(path));
    ASSERT_TRUE(Entry("File/Print Preview").isEnabled());
    ChooseDialog<QPrintPreviewDialog>("File/Print Preview", [](QPrintPreviewDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QPrintPreviewWidget*>()->pageCount(), 2);
    });
}

TEST_F(TestSuiteWindows, ThePagesOfTheReportBelongToTheWindow) {
    StartDemo();
    OpenCompliance();
    Tests().Results().assign(45, {{'C', 'F', 'G', 1, 0}, "Title", TestOutcome::Passed, 0});
    const auto print = [&](RecordingPrinter& printer) {
        EXPECT_EQ(static_cast<CComplianceView&>(View()).PrintTo(printer), std::nullopt);
    };
    RecordingPrinter portrait({1000, 1500}, QPageLayout::Portrait);
    const std::time_t before = std::time(nullptr);
    print(portrait);
    const std::time_t after = std::time(nullptr);
    EXPECT_THAT(portrait.Pages(), SizeIs(1));
    EXPECT_TRUE(portrait.Shows(0, window->windowTitle()));
    bool dated = false;
    for (std::time_t time = before; time <= after; ++time) {
        char text[128];
        std::strftime(text, sizeof text, "%c", std::localtime(&time));
        dated = dated || portrait.Shows(0, QString::fromLocal8Bit(text));
    }
    EXPECT_TRUE(dated);
    RecordingPrinter landscape({1500, 1000}, QPageLayout::Landscape);
    print(landscape);
    EXPECT_THAT(landscape.Pages(), SizeIs(2));
    EXPECT_TRUE(landscape.Shows(1, "Page 2"));
    Tests().Results().clear();
    RecordingPrinter empty({1000, 1500}, QPageLayout::Portrait);
    print(empty);
    EXPECT_THAT(empty.Pages(), SizeIs(1));
    EXPECT_TRUE(empty.Shows(0, "Page 1"));
}

} // namespace
} // namespace busquill::test
