// The steps of docs/manual/tutorial.md, in its order, with the simulated board that it uses.

#include "support/live_frame_fixture_qt.h"
#include "support/pattern_grid_qt.h"
#include "support/save_trace_qt.h"
#include "ui/capture/new_window_dialog.h"
#include "ui/display/state_geometry.h"
#include "ui/display/state_window.h"
#include "ui/patterns/command_dialog.h"
#include "ui/patterns/pattern_cell.h"
#include "ui/patterns/pattern_dialogs.h"
#include "ui/tracesetup/setup_wizard_dialog.h"
#include "ui/tracesetup/trace_setup_dialog.h"

#include <QFile>
#include <QGroupBox>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class Tutorial : public LiveFrameFixture {
protected:
    /// For use after a dialog has closed: on the platform of the tests no window is active then.
    void Activate() {
        Frame().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Frame()));
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        Frame().RefreshCommands(); // the program does so before it waits for the next key
        QTest::keyClick(&frame->TraceView(), key, modifiers);
        QApplication::processEvents();
    }
    std::int64_t Marker(int marker) { return Trace().Marker(marker, false); }
    /// The words of the tutorial, whose lines may be broken anywhere.
    static QString Manual() {
        QFile file(":/manual/tutorial.md");
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).simplified()
                                              : QString();
    }
};

TEST_F(Tutorial, LeadsWhereItSays) {
    const QString text = Manual();
    ASSERT_FALSE(text.isEmpty());

    // 1. Start.
    Connect({"--buffer", "64", "--rate", "8000"}); // as ./run starts it
    EXPECT_TRUE(text.contains('"' + Frame().PaneText(1) + '"'))
        << Frame().PaneText(1).toStdString();
    EXPECT_EQ(Frame().PaneText(2), "PCI");
    EXPECT_EQ(Frame().PaneText(3), "33 MHz");

    // 2. A window for the capture.
    QTest::keyClick(&Frame(), Qt::Key_N, Qt::ControlModifier);
    QApplication::processEvents();
    frame = dynamic_cast<CChildFrame*>(Frame().Area().activeSubWindow());
    ASSERT_NE(frame, nullptr);
    EXPECT_TRUE(frame->IsStateFrame());
    EXPECT_EQ(Trace().SampleCount(false), 0);

    // 3. What to wait for.
    const QString range = "1F40000 to 1F40200";
    ASSERT_TRUE(text.contains('`' + range + '`'));
    AnswerDialog<CTraceSetupDialog>(
        [&] { QTest::mouseClick(&Bar().SetupButton(), Qt::LeftButton); },
        [&](CTraceSetupDialog& dialog) {
            AnswerDialog<CSetupWizardDialog>(
                [&] { Press(dialog, "Setup Wizard"); },
                [&](CSetupWizardDialog& wizard) {
                    const auto questions = wizard.findChildren<QGroupBox*>();
                    for (const QGroupBox* question : questions) {
                        EXPECT_TRUE(text.contains('*' + question->title() + '*'));
                    }
                    Tick(*questions[0], "Memory");
                    Tick(*questions[0], "Write");
                    QTest::keyClicks(questions[0]->findChildren<QLineEdit*>()[0], range);
                    Press(wizard, "OK");
                });
            Press(dialog, "OK");
        });

    // 4. Capture.
    Go();
    ASSERT_TRUE(RunUntil([&] { return Text("After").toInt() > 3000; }));
    Stop();
    ASSERT_TRUE(Complete());
    Activate();
    Key(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(frame->TraceView().TopSample(), 0);
    Key(Qt::Key_T, Qt::ControlModifier);
    EXPECT_GT(frame->TraceView().TopSample(), 0);
    const std::int64_t trigger = Marker(0);
    EXPECT_GT(trigger, 0) << "there is something before the trigger";

    // 5. Search.
    AnswerDialog<CSearchPatternDlg>(
        [&] { Key(Qt::Key_F, Qt::ControlModifier); },
        [&](CSearchPatternDlg& dialog) {
            CPatternGrid& grid = dialog.Grid();
            AnswerDialog<CCommandDialog>(
                [&] {
                    QTest::mouseClick(&grid, Qt::LeftButton, {},
                                      CellRect(grid, dialog.Edited(), "COMMAND", 0).center());
                },
                [&](CCommandDialog& command) {
                    auto& values = *command.findChild<QComboBox*>();
                    ASSERT_TRUE(text.contains("*I/O Rd*"));
                    for (int i = 0; i < values.count() && values.currentText() != "I/O Rd"; ++i) {
                        QTest::keyClick(&values, Qt::Key_Down);
                    }
                    EXPECT_EQ(values.currentText(), "I/O Rd");
                    Press(command, "OK");
                });
            Press(dialog, "OK");
        });
    Activate();
    Key(Qt::Key_F3);
    const std::int64_t read = Marker(1);
    ASSERT_GT(read, trigger);
    Key(Qt::Key_F3);
    EXPECT_GT(Marker(1), read);
    Key(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(Marker(1), read);

    // 6. Measure. The simulated bus has a clock of 30 ns.
    const auto microseconds = [](std::int64_t samples) {
        return QString::number(static_cast<double>(std::abs(samples)) * 0.03, 'f', 3) + "us";
    };
    EXPECT_EQ(Text("time-marker1"), microseconds(read - trigger));
    CStateWnd& listing = *frame->findChild<CStateWnd*>();
    Key(Qt::Key_T, Qt::ControlModifier);
    QTest::mouseClick(&listing, Qt::RightButton, {}, {100, listing.height() - 3 * stateRowPitch});
    const std::int64_t second = Marker(2);
    ASSERT_GT(second, trigger);
    ASSERT_NE(second, read);
    EXPECT_EQ(Text("time-markers").remove('-'), microseconds(second - read));
    CChildFrame* const listingFrame = frame;
    AnswerDialog<CNewWindowDialog>(
        [&] { QTest::mouseClick(&Bar().DisplayButton(), Qt::LeftButton); },
        [&](CNewWindowDialog& question) {
            Tick(question, "Open new window");
            Press(question, "OK");
        });
    frame = dynamic_cast<CChildFrame*>(Frame().Area().activeSubWindow());
    ASSERT_NE(frame, listingFrame);
    EXPECT_FALSE(frame->IsStateFrame());
    EXPECT_EQ(Text("time-markers"), listingFrame->Bar().findChild<QLabel*>("time-markers")->text());
    const auto isShown = [](const CTraceView& view, std::int64_t sample) {
        return view.TopSample() <= sample && sample <= 2 * view.CenterSample() - view.TopSample();
    };
    Activate();
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_FALSE(isShown(frame->TraceView(), read));
    Key(Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(isShown(frame->TraceView(), read));
    EXPECT_TRUE(isShown(listingFrame->TraceView(), read)) << "both windows move";
    const auto shown = [&] {
        return frame->TraceView().CenterSample() - frame->TraceView().TopSample();
    };
    const std::int64_t before = shown();
    Key(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_GT(shown(), before);

    // 7. Keep it, and pass it on.
    Frame().Area().setActiveSubWindow(listingFrame);
    frame = listingFrame;
    SaveTraceUnder(dir.File("first.tra"), [&] { Choose("File/Save"); });
    ASSERT_TRUE(
        RunUntil([&] { return QFile::exists(QString::fromStdString(dir.File("first.tra"))); }));
    const auto export_as = [&](const char* type, const char* name) {
        EXPECT_TRUE(text.contains(type));
        SaveTraceUnder(dir.File(name), [&] { Choose("File/Save As..."); });
        return RunUntil([&] { return QFile::exists(QString::fromStdString(dir.File(name))); });
    };
    ASSERT_TRUE(export_as("Comma Separated Values", "first.csv"));
    ASSERT_TRUE(export_as("Value Change Dump", "first.vcd"));
    EXPECT_THAT(ReadWholeFile(dir.File("first.vcd")), HasSubstr("$enddefinitions"));
    const std::string table = ReadWholeFile(dir.File("first.csv"));
    const auto row = table.find("\n0,");
    ASSERT_NE(row, std::string::npos);
    EXPECT_THAT(table.substr(row, 60), HasSubstr("Mem Wr,01F40"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
