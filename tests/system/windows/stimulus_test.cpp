// A stimulus program through the program's windows, against the simulated board.

#include "stimulus/stimulus_document.h"
#include "support/board_program_fixture_qt.h"
#include "support/pattern_grid_qt.h"
#include "ui/levels/level_panel.h"
#include "ui/patterns/command_dialog.h"
#include "ui/patterns/pattern_table.h"
#include "ui/stimulus/stimulus_child.h"
#include "ui/stimulus/stimulus_condition_dialog.h"
#include "ui/stimulus/stimulus_view.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Stimulus : public BoardProgramFixture {
protected:
    void OpenStimulus() {
        Choose("File/New/Exerciser/Stimulus");
        frame = dynamic_cast<CStimulusChild*>(Frame().Area().activeSubWindow());
        ASSERT_NE(frame, nullptr);
    }
    StimulusProgram& Program() {
        return static_cast<CStimulusDoc&>(frame->GetDocument()).Program();
    }
    CView& View() { return *frame->GetActiveView(); }
    CPatternGrid& Grid(const char* name) { return frame->findChild<CPatternTable*>(name)->Grid(); }
    QPushButton& Cell(const QString& name) { return *frame->findChild<QPushButton*>(name); }
    void ChooseIn(const QString& cell, const QString& entry) {
        AnswerMenu([&] { QTest::mouseClick(&Cell(cell), Qt::LeftButton); }, entry);
    }
    void Click(const char* name) {
        QTest::mouseClick(frame->findChild<QToolButton*>(name), Qt::LeftButton);
    }
    /// Clicks a bit of a pattern.
    static void ClickBit(CPatternGrid& grid, const CSignalList& list, const char* name, int row) {
        const QRect cell = CellRect(grid, list, name, row);
        grid.MoveSignalsTo(grid.Offset() + cell.center().x() - grid.width() / 2);
        QTest::mouseClick(&grid, Qt::LeftButton, {}, CellRect(grid, list, name, row).center());
    }
    bool HasEnded() {
        return QTest::qWaitFor([&] { return frame->RunState() == RunPicture::Stopped; }, 20000);
    }
    /// The functions about the stimulus since the program has started.
    std::vector<std::string> Functions() {
        std::vector<std::string> functions;
        for (const std::string& line : board->Functions()) {
            for (const char* part : {"1600", " 930 ", "1410", " 929 ", "stimulus"}) {
                if (line.find(part) != std::string::npos) {
                    functions.push_back(line.substr(line.find("function")));
                    break;
                }
            }
        }
        return functions;
    }
    /// The bytes of the last payloads, as the log has them.
    std::vector<std::string> Payloads(std::size_t count) {
        std::vector<std::string> payloads;
        for (const std::string& line : board->Log()) {
            const auto end = line.find("payload for write memory");
            if (end != std::string::npos) {
                payloads.push_back(line.substr(6, end - 6)); // without "host  "
            }
        }
        return {payloads.end() - static_cast<std::ptrdiff_t>(std::min(count, payloads.size())),
                payloads.end()};
    }
    static std::string Zeros(int count) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += "00 ";
        }
        return text;
    }

    CStimulusChild* frame = nullptr;
};

TEST_F(Stimulus, FromAnEditedProgramToItsEndAndBackFromAFile) {
    Connect();
    OpenStimulus();
    ClickBit(Grid("Events"), Program().control.events, "FRAME", 0);
    ClickBit(Grid("Stimulus"), Program().patterns, "IRDY", 1);
    ClickBit(Grid("Stimulus"), Program().patterns, "IRDY", 1);
    ChooseIn("If1", "E1");
    ChooseIn("Stimulus1", "S2");
    AnswerDialog<CStimulusConditionDialog>(
        [&] { QTest::mouseClick(&Cell("Then1"), Qt::LeftButton); },
        [](CStimulusConditionDialog& dialog) {
            QTest::keyClick(dialog.findChild<QComboBox*>(), Qt::Key_End);
            auto* duration = dialog.findChild<QLineEdit*>("Duration");
            duration->selectAll();
            QTest::keyClicks(duration, "5");
            QTest::keyClick(duration, Qt::Key_Return);
        });
    EXPECT_EQ(Cell("Then1").text(), "STOP, Dur 5");
    Click("Go");
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    ASSERT_TRUE(HasEnded());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_THAT(Functions(), ElementsAre("function 2 write memory, address 1600 length 240",
                                         "function 2 write memory, address 930 length 480",
                                         "function 2 write memory, address 1410 length 80",
                                         HasSubstr("function 25 start stimulus"),
                                         "function 1 read memory, address 929 length 1"));
    std::string control = "21 0f 01 05 01 "; // S2 after E1; else SL1, then STOP; once, 5, 1
    for (int level = 2; level <= 15; ++level) {
        control += "00 00 01 01 01 ";
    }
    EXPECT_THAT(Payloads(3),
                ElementsAre(Zeros(18) + "00 01 " + Zeros(220),           // E1: bit 72 is 0
                            Zeros(30 + 18) + "04 04 " + Zeros(480 - 50), // S2: bit 74 is 1
                            control + Zeros(5)));

    const std::string path = dir.File("walk.stm");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    OpenStimulus();
    EXPECT_EQ(Cell("If1").text(), "All");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(Cell("Then1").text(), "STOP, Dur 5");
    const std::vector<std::string> before = Payloads(3);
    Click("Go");
    ASSERT_TRUE(HasEnded());
    EXPECT_EQ(Payloads(3), before);
    EXPECT_THAT(Functions(), Not(Contains(HasSubstr("stop"))));
}

TEST_F(Stimulus, TheFirstProgramOfTheManualEnds) {
    Connect();
    OpenStimulus();
    ClickBit(Grid("Stimulus"), Program().patterns, "FRAME", 0);
    AnswerDialog<CCommandDialog>(
        [&] {
            CPatternGrid& grid = Grid("Events");
            const QRect command = CellRect(grid, Program().control.events, "COMMAND", 0);
            QTest::mouseClick(&grid, Qt::LeftButton, {}, command.center());
        },
        [](CCommandDialog& dialog) {
            auto& list = *dialog.findChild<QComboBox*>();
            list.setCurrentIndex(list.findText("I/O Wr"));
            Press(dialog, "OK");
        });
    ChooseIn("If1", "E1");
    AnswerDialog<CStimulusConditionDialog>(
        [&] { QTest::mouseClick(&Cell("Then1"), Qt::LeftButton); },
        [](CStimulusConditionDialog& dialog) {
            QTest::keyClick(dialog.findChild<QComboBox*>(), Qt::Key_End);
            Press(dialog, "OK");
        });
    Click("Go");
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    ASSERT_TRUE(HasEnded());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    const std::vector<std::string> payloads = Payloads(3);
    EXPECT_NE(payloads.at(0).substr(0, 30 * 3), Zeros(30));
    EXPECT_EQ(payloads.at(1), Zeros(18) + "00 01 " + Zeros(460));
    EXPECT_EQ(payloads.at(2).substr(0, 5 * 3), "11 0f 01 01 01 ");
}

TEST_F(Stimulus, AProgramWithoutAnEndRunsUntilStop) {
    Connect();
    OpenStimulus();
    Click("Go");
    QTest::qWait(1500);
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    const std::string poll = "function 1 read memory, address 929 length 1";
    EXPECT_THAT(Functions(), Contains(poll).Times(testing::AllOf(testing::Ge(1), testing::Le(4))));
    Click("Stop");
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_THAT(Functions().back(), HasSubstr("function 26 stop stimulus"));
    const std::size_t polls = Functions().size();
    QTest::qWait(500);
    EXPECT_EQ(Functions().size(), polls);
}

TEST_F(Stimulus, TheSmallestBoardGetsFourEvents) {
    Connect({"--model", "VME Lark"});
    OpenStimulus();
    EXPECT_EQ(Grid("Events").Geometry().rows, 4);
    for (int row = 0; row < 4; ++row) {
        ClickBit(Grid("Events"), Program().control.events, "AS", row);
    }
    Click("Go");
    Click("Stop");
    const std::string events = Payloads(3).at(0);
    EXPECT_EQ(events.size(), 240U * 3);
    EXPECT_NE(events.substr(90 * 3, 30 * 3), Zeros(30)); // E4
    EXPECT_EQ(events.substr(120 * 3), Zeros(120));
}

} // namespace
} // namespace busquill::test
