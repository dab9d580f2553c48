// A measurement through the program's windows, against the simulated board.

#include "performance/performance_document.h"
#include "performance/performance_setup_file.h"
#include "support/board_program_fixture_qt.h"
#include "ui/performance/min_max_average_graph.h"
#include "ui/performance/performance_child.h"
#include "ui/performance/performance_setup_dialog.h"
#include "ui/performance/performance_view.h"
#include "ui/performance/time_graph.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace busquill::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::StartsWith;

class Measurement : public BoardProgramFixture {
protected:
    void OpenMeasurement(const QString& type) {
        Choose("File/New/Performance/" + type);
        frame = dynamic_cast<CPerformanceChild*>(Frame().Area().activeSubWindow());
        ASSERT_NE(frame, nullptr);
    }
    CPerformanceDoc& Document() { return static_cast<CPerformanceDoc&>(frame->GetDocument()); }
    CPerformanceView& View() { return *dynamic_cast<CPerformanceView*>(frame->GetActiveView()); }
    QComboBox& Box(const char* name) { return *frame->findChild<QComboBox*>(name); }
    QString Text(const char* name) { return frame->findChild<QLabel*>(name)->text(); }
    void Click(const char* name) {
        QTest::mouseClick(frame->findChild<QToolButton*>(name), Qt::LeftButton);
    }
    template <typename Condition>
    static bool RunUntil(Condition holds) {
        return QTest::qWaitFor(holds, 60000);
    }
    bool HasResults(std::int64_t count) {
        return RunUntil([&] { return Document().Results().Count() >= count; });
    }
    /// Chooses a name in a box of the bar, as a click on it would.
    void ChooseIn(const char* box, const QString& name) {
        QComboBox& combo = Box(box);
        const int index = combo.findText(name);
        ASSERT_GE(index, 0) << name.toStdString();
        combo.setCurrentIndex(index);
        emit combo.activated(index);
    }
    void SetInterval(int milliseconds) { Document().Setup().updateInterval = milliseconds; }

    CPerformanceChild* frame = nullptr;
};

TEST_F(Measurement, FromGoToASavedFileAndBack) {
    Connect({"--rate", "2000"});
    OpenMeasurement("Utilization");
    EXPECT_EQ(frame->windowTitle(), "Performance - Utilization");
    EXPECT_EQ(Text("Label A"), " Bus Busy : All");
    EXPECT_EQ(Text("Label H"), " Target Efficiency : All");
    EXPECT_EQ(Text("Value A"), "");
    EXPECT_EQ(Text("Result Count"), "00000000");
    SetInterval(10);
    Click("Go");
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    ASSERT_TRUE(HasResults(40));
    ASSERT_TRUE(RunUntil([&] { return Text("Result Count").toInt() >= 40; }));
    EXPECT_NE(Text("Value A"), "");
    Click("Stop");
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    const auto count = Document().Results().Count();
    QTest::qWait(300);
    EXPECT_EQ(Document().Results().Count(), count);
    EXPECT_EQ(Text("Result Count").toLongLong(), count);
    EXPECT_THAT(prompts.Texts(), IsEmpty());

    // On the wire: the setup's 241 bytes, start, reads of 32 bytes, stop.
    const auto functions = board->Functions();
    EXPECT_THAT(functions, Contains(HasSubstr("address 499 length 241")));
    const auto reads = Contains(HasSubstr("read memory, address 748 length 32"));
    EXPECT_THAT(functions, reads.Times(AllOf(Ge(count), Le(count + 1)))); // one during Stop
    EXPECT_THAT(functions.back(), HasSubstr("stop performance"));

    const std::string path = dir.File("run.per");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_THAT(ReadWholeFile(path), StartsWith("\"FileType\",\"Performance File\"\r\n"));
    OpenMeasurement("Latency");
    EXPECT_EQ(frame->windowTitle(), "Performance - Latency");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(frame->windowTitle(), "Performance - Utilization");
    EXPECT_EQ(Document().Results().Count(), count);
    EXPECT_EQ(Text("Label A"), " Bus Busy : All");
    ASSERT_TRUE(RunUntil([&] { return Text("Result Count").toLongLong() == count; }));
}

TEST_F(Measurement, IsOpenedForEachType) {
    Connect();
    const std::pair<const char*, const char*> types[] = {
        {"Utilization", "Performance - Utilization"},
        {"Transfer Rate", "Performance - Transfer Rate"},
        {"Latency", "Performance - Latency"},
        {"Burst Distribution", "Performance - Burst Distribution"},
        {"Statistics", "Performance - Statistics"}};
    for (const auto& [entry, title] : types) {
        OpenMeasurement(entry);
        EXPECT_EQ(frame->windowTitle(), title);
        EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
        EXPECT_EQ(Document().Results().Count(), 0);
    }
    EXPECT_EQ(Text("Label A"), " Cycle : Mem Rd");
    EXPECT_EQ(Text("Label F"), " Cycle : Cfg Wr");
    EXPECT_EQ(Text("Label G"), "");
}

// The letters of the pictures: shown values are of the row's own item.
TEST_F(Measurement, TheValueDisplayAppliesToAllRowsAndIsKept) {
    Connect();
    OpenMeasurement("Utilization");
    EXPECT_EQ(Box("Value Display").currentText(), "Instantaneous");
    auto& results = Document().Results();
    SetInterval(5);
    Click("Go");
    ASSERT_TRUE(HasResults(20));
    Click("Stop");
    QTest::qWait(50);
    const auto count = results.Count();
    std::int32_t least = results.At(0)[0];
    std::int32_t most = least;
    std::int64_t sum = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        least = std::min(least, results.At(i)[0]);
        most = std::max(most, results.At(i)[0]);
        sum += results.At(i)[0];
    }
    EXPECT_EQ(Text("Value A").toInt(), results.At(count - 1)[0]);
    ChooseIn("Value Display", "Average");
    EXPECT_EQ(Text("Value A").toInt(), sum / count);
    ChooseIn("Value Display", "Min");
    EXPECT_EQ(Text("Value A").toInt(), least);
    ChooseIn("Value Display", "Max");
    EXPECT_EQ(Text("Value A").toInt(), most);
    EXPECT_EQ(settings.GetProfileInt("Display", "PerfValueDisplay", -1), 3);
    OpenMeasurement("Latency");
    EXPECT_EQ(Box("Value Display").currentText(), "Max");
}

TEST_F(Measurement, ASetupIsSavedChosenAndUsed) {
    Connect();
    PerformanceSetup stored;
    stored.setupName = "Two rows";
    stored.items[0].item = 3;
    stored.items[0].cycle = 2;
    ASSERT_TRUE(
        SavePerformanceSetup(stored, WorkingDirectory(dir.Path()), SetupNameTyped::No, prompts));
    OpenMeasurement("Utilization");
    EXPECT_EQ(Box("Setup Box").itemText(0), "<New>");
    EXPECT_EQ(Box("Setup Box").itemText(1), "Two rows");
    EXPECT_EQ(Box("Setup Box").currentText(), "<New>");
    SetInterval(10);
    Click("Go");
    ASSERT_TRUE(HasResults(5));
    AnswerDialog<CPerformanceSetupDialog>([&] { ChooseIn("Setup Box", "Two rows"); },
                                          [&](CPerformanceSetupDialog& dialog) {
                                              EXPECT_EQ(dialog.windowTitle(), "Performance Setup");
                                              Press(dialog, "OK");
                                          });
    EXPECT_EQ(Document().Setup().setupName, "Two rows");
    EXPECT_EQ(Box("Setup Box").currentText(), "Two rows");
    EXPECT_EQ(Text("Label A"), " Transfers : Mem Rd");
    EXPECT_EQ(Text("Label B"), "");
    // The run has begun again, at the interval of the setup.
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    EXPECT_EQ(Document().Setup().updateInterval, 100);
    ASSERT_TRUE(HasResults(3));
    Click("Stop");
    const auto functions = board->Functions();
    EXPECT_THAT(functions, Contains(HasSubstr("write memory, address 499 length 241")).Times(2));
}

TEST_F(Measurement, CancellingTheSetupChangesNoResults) {
    Connect();
    OpenMeasurement("Utilization");
    SetInterval(10);
    Click("Go");
    ASSERT_TRUE(HasResults(5));
    Click("Stop");
    const auto count = Document().Results().Count();
    AnswerDialog<CPerformanceSetupDialog>(
        [&] { Click("Setup"); }, [&](CPerformanceSetupDialog& dialog) { Press(dialog, "Cancel"); });
    EXPECT_EQ(Document().Results().Count(), count);
    EXPECT_EQ(Text("Label A"), " Bus Busy : All");
    AnswerDialog<CPerformanceSetupDialog>([&] { Click("Setup"); },
                                          [&](CPerformanceSetupDialog& dialog) {
                                              Press(dialog, "Clear");
                                              Press(dialog, "OK");
                                          });
    EXPECT_EQ(Document().Results().Count(), 0);
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_EQ(Text("Label A"), "");
    ASSERT_TRUE(RunUntil([&] { return Text("Result Count") == "00000000"; }));
}

TEST_F(Measurement, ASetupThatIsGoneIsReported) {
    Connect();
    std::ofstream(dir.File("Gone.psu")) << "Item0=1\n";
    OpenMeasurement("Utilization");
    std::filesystem::remove(dir.File("Gone.psu"));
    AnswerDialog<CPerformanceSetupDialog>([&] { ChooseIn("Setup Box", "Gone"); },
                                          [](CPerformanceSetupDialog& dialog) { dialog.reject(); });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error loading performance setup Gone."));
}

TEST_F(Measurement, ClosingTheWindowStopsTheBoard) {
    Connect();
    OpenMeasurement("Transfer Rate");
    SetInterval(1);
    Click("Go");
    ASSERT_TRUE(HasResults(3));
    Press(View(), "Close");
    EXPECT_TRUE(RunUntil(
        [&] { return board->Functions().back().find("stop performance") != std::string::npos; }));
    EXPECT_TRUE(Windows().isEmpty());
    const auto functions = board->Functions().size();
    QTest::qWait(100);
    EXPECT_EQ(board->Functions().size(), functions);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(Measurement, ClosingTheProgramStopsTheBoard) {
    Connect();
    OpenMeasurement("Transfer Rate");
    SetInterval(1);
    Click("Go");
    ASSERT_TRUE(HasResults(3));
    program.reset();
    EXPECT_THAT(board->Functions().back(), HasSubstr("stop performance"));
}

TEST_F(Measurement, ABoardThatIsPulledOutIsReportedOnceAndStopEndsTheRun) {
    Connect();
    OpenMeasurement("Utilization");
    SetInterval(1);
    Click("Go");
    ASSERT_TRUE(HasResults(3));
    board->Unplug();
    ASSERT_TRUE(RunUntil([&] {
        const auto texts = prompts.Texts();
        return !texts.empty() && texts.back() == "Error reading performance data from analyzer.";
    }));
    const auto said = prompts.Texts().size();
    QTest::qWait(1500);
    EXPECT_EQ(prompts.Texts().size(), said);
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    Click("Stop");
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_EQ(prompts.Texts().back(), "Error sending stop performance command to analyzer.");
}

TEST_F(Measurement, LoadStopsARun) {
    Connect();
    OpenMeasurement("Utilization");
    SetInterval(5);
    Click("Go");
    ASSERT_TRUE(HasResults(3));
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [](QFileDialog& files) {
                                  EXPECT_EQ(files.nameFilters(), QStringList{"Performance(*.per)"});
                                  files.reject();
                              });
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
}

class MeasurementWithoutBoard : public Measurement {
protected:
    void SetUp() override { StartDemo(); }
};

TEST_F(MeasurementWithoutBoard, MovesInDemoMode) {
    OpenMeasurement("Statistics");
    SetInterval(1);
    Click("Go");
    ASSERT_TRUE(HasResults(100));
    Click("Stop");
    const auto& results = Document().Results();
    PerformanceResults last{};
    bool moved = false;
    for (std::int64_t i = 0; i < results.Count(); ++i) {
        const PerformanceResults next = results.At(i);
        for (std::size_t item = 0; item < next.size(); ++item) {
            EXPECT_GE(next[item], 0);
            EXPECT_LE(std::abs(next[item] - last[item]), 10);
            moved = moved || next[item] != last[item];
        }
        last = next;
    }
    EXPECT_TRUE(moved);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MeasurementWithoutBoard, AFileThatIsNoneIsRefused) {
    OpenMeasurement("Utilization");
    const std::string path = dir.Write("odd.per", "\"FileType\",\"Trace File\"\r\n");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid performance file type of 'Trace File'."));
}

TEST_F(MeasurementWithoutBoard, AFileIsOpenedThroughTheMenuToo) {
    OpenMeasurement("Statistics");
    ASSERT_TRUE(Document().OnSaveDocument(dir.File("empty.per")));
    frame->close();
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("empty.per")), nullptr);
    frame = dynamic_cast<CPerformanceChild*>(Frame().Area().activeSubWindow());
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->windowTitle(), "Performance - Statistics");
    EXPECT_EQ(Text("Label A"), " Cycle : Mem Rd");
}

} // namespace
} // namespace busquill::test
