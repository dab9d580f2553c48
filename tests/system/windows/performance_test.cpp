// A measurement through the program's windows, against the simulated board.

#include "performance/performance_document.h"
#include "performance/performance_setup_file.h"
#include "support/board_program_fixture_qt.h"
#include "ui/performance/graph_geometry.h"
#include "ui/performance/graph_painter.h"
#include "ui/performance/min_max_average_graph.h"
#include "ui/performance/performance_child.h"
#include "ui/performance/performance_setup_dialog.h"
#include "ui/performance/performance_view.h"
#include "ui/performance/time_graph.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTextBrowser>
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
    template <class Graph>
    Graph& GraphOf() {
        return *frame->findChild<Graph*>();
    }
    /// The pixels of the time graph in the colour of row B.
    int PixelsOfB() {
        const QImage image = GraphOf<CTimeGraph>().grab().toImage();
        int pixels = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                pixels += image.pixelColor(x, y) == QColor(Qt::red) ? 1 : 0;
            }
        }
        return pixels;
    }
    /// Whether the range of row B has a cap or its mark at a value.
    bool MarksB(int value) {
        auto& graph = GraphOf<CMinMaxAverageGraph>();
        const GraphGeometry geometry{graph.size(), ScreenGraphStyle().LabelWidth(),
                                     PerformanceTypeOf(Document().Setup().type).scale};
        const QPoint at(geometry.ItemX(1) + 3, geometry.ValueY(value));
        return graph.grab().toImage().pixelColor(at) == QColor(Qt::red);
    }
    /// The least and the greatest value of row B so far.
    std::pair<std::int32_t, std::int32_t> RangeOfB() {
        const auto& results = Document().Results();
        std::pair range(results.At(0)[1], results.At(0)[1]);
        for (std::int64_t i = 0; i < results.Count(); ++i) {
            range.first = std::min(range.first, results.At(i)[1]);
            range.second = std::max(range.second, results.At(i)[1]);
        }
        return range;
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

TEST_F(Measurement, IsDrawnAndANewOneBeginsAfresh) {
    Connect();
    OpenMeasurement("Utilization");
    EXPECT_EQ(PixelsOfB(), 0);
    SetInterval(5);
    Click("Go");
    ASSERT_TRUE(HasResults(20));
    Click("Stop");
    const auto count = Document().Results().Count();
    ASSERT_TRUE(RunUntil([&] { return Text("Result Count").toLongLong() == count; }));
    const auto [least, most] = RangeOfB();
    EXPECT_GT(PixelsOfB(), 0);
    EXPECT_TRUE(MarksB(least));
    EXPECT_TRUE(MarksB(most));
    SetInterval(600000);
    Click("Go");
    EXPECT_EQ(Document().Results().Count(), 0);
    EXPECT_EQ(Text("Value A"), "");
    EXPECT_EQ(PixelsOfB(), 0);
    EXPECT_FALSE(MarksB(least));
    ChooseIn("Value Display", "Max");
    EXPECT_EQ(Text("Value A"), "") << "the old measurement does not count";
    EXPECT_TRUE(RunUntil([&] { return Text("Result Count") == "00000000"; }));
}

TEST_F(Measurement, TheRowsNameTheCyclesOfTheBus) {
    Connect({"--model", "VSBKite"});
    OpenMeasurement("Statistics");
    EXPECT_EQ(Text("Label A"), " Cycle : Sys Rd");
    EXPECT_EQ(Text("Label E"), " Cycle : Alt Rd");
    AnswerDialog<CPerformanceSetupDialog>(
        [&] { Click("Setup"); },
        [](CPerformanceSetupDialog& dialog) {
            EXPECT_EQ(dialog.findChild<QComboBox*>("Cycle A")->currentText(), "Sys Rd");
        });
    Connect({"--model", "VMEKite"});
    OpenMeasurement("Statistics");
    EXPECT_EQ(Text("Label A"), " Cycle : Mem Rd");
    EXPECT_EQ(Text("Label C"), " Cycle") << "the bus has no such cycle";
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

TEST_F(MeasurementWithoutBoard, HasItsRowsAboveTheGraphs) {
    OpenMeasurement("Utilization");
    const auto place = [&](const char* name) {
        return frame->findChild<QLabel*>(name)->geometry();
    };
    EXPECT_EQ(place("Label A"), QRect(50, 5, 200, 20));
    EXPECT_EQ(place("Value A"), QRect(253, 5, 50, 20));
    EXPECT_EQ(place("Label D"), QRect(50, 74, 200, 20));
    EXPECT_EQ(place("Label E"), QRect(410, 5, 200, 20));
    EXPECT_EQ(place("Value H"), QRect(613, 74, 50, 20));
    frame->resize(801, 600);
    QApplication::processEvents();
    const QSize size = View().size();
    const int center = size.width() / 2;
    const int height = size.height() - 40 - 120;
    EXPECT_EQ(GraphOf<CTimeGraph>().geometry(), QRect(10, 120, center - 15 - 10, height));
    EXPECT_EQ(GraphOf<CMinMaxAverageGraph>().geometry(),
              QRect(center + 15, 120, size.width() - 10 - (center + 15), height));
    QStringList buttons;
    for (const int slot : {0, 1, 5, 6}) {
        const QPoint at(Form::SlotLeft(slot) + 5, size.height() - 20);
        const auto* button = qobject_cast<QPushButton*>(View().childAt(at));
        buttons += button != nullptr ? button->text() : QString();
    }
    EXPECT_EQ(buttons, QStringList({"&Load", "&Save", "&Help", "&Close"}));
}

TEST_F(MeasurementWithoutBoard, ALoadedOneIsDrawn) {
    OpenMeasurement("Latency");
    for (const std::int32_t value : {200, 700}) {
        Document().Results().Add({0, value, 0, 0, 0, 0, 0, 0});
    }
    const std::string path = dir.File("two.per");
    ASSERT_TRUE(Document().OnSaveDocument(path));
    OpenMeasurement("Utilization");
    SetInterval(1);
    Click("Go");
    ASSERT_TRUE(HasResults(10));
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(Text("Label A"), " Master : All");
    EXPECT_EQ(Text("Value A"), "");
    EXPECT_TRUE(MarksB(200));
    EXPECT_TRUE(MarksB(700));
    EXPECT_FALSE(MarksB(0)) << "nothing is left of what was there";
    ASSERT_TRUE(RunUntil([&] { return Text("Result Count") == "00000002"; }));
    EXPECT_GT(PixelsOfB(), 0);
}

TEST_F(MeasurementWithoutBoard, HelpOpensItsPage) {
    OpenMeasurement("Utilization");
    const auto expectHelp = [] {
        QWidget* help = nullptr;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->windowTitle() == "Busquill! Help" && window->isVisible()) {
                help = window;
            }
        }
        ASSERT_NE(help, nullptr);
        EXPECT_THAT(help->findChild<QTextBrowser*>()->toPlainText().toStdString(),
                    StartsWith("Bus performance\n"));
        help->hide();
    };
    Press(View(), "Help");
    expectHelp();
    AnswerDialog<CPerformanceSetupDialog>([&] { Click("Setup"); },
                                          [&](CPerformanceSetupDialog& dialog) {
                                              Press(dialog, "Help");
                                              expectHelp();
                                          });
}

TEST_F(MeasurementWithoutBoard, ASetupThatIsChosenAndCancelledChangesTheNameOnly) {
    std::ofstream(dir.File("Other.psu")) << "Version=1.00\nItem0=3\n";
    OpenMeasurement("Utilization");
    Document().Results().Add({});
    AnswerDialog<CPerformanceSetupDialog>([&] { ChooseIn("Setup Box", "Other"); },
                                          [](CPerformanceSetupDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(Document().Setup().setupName, "Other");
    EXPECT_EQ(Document().Setup().items[0].item, 1);
    EXPECT_EQ(Text("Label A"), " Bus Busy : All");
    EXPECT_EQ(Document().Results().Count(), 1);
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
