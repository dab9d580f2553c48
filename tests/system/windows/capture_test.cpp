// A live capture through the program's windows, against the simulated board.

#include "support/live_frame_fixture_qt.h"
#include "support/save_trace_qt.h"
#include "tracesetup/setup_file.h"
#include "ui/capture/position_gauge.h"
#include "ui/capture/save_trace_dialog.h"
#include "ui/tracesetup/trace_setup_dialog.h"

#include <QPushButton>
#include <QRadioButton>
#include <gmock/gmock.h>

#include <set>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

class LiveCapture : public LiveFrameFixture {
protected:
    void OpenState() { OpenFrame("State"); }
    void Close() {
        frame->close();
        QTest::qWait(10); // until it is closed
    }
    std::vector<std::string> Functions() { return board->Functions(); }
    /// The names of the functions that the board was asked for, without the polls of its status.
    std::vector<std::string> Run() {
        std::vector<std::string> names;
        for (const std::string& line : Functions()) {
            if (line.find("read memory, address 425") == std::string::npos) {
                names.push_back(line.substr(line.find(' ', 9) + 1));
            }
        }
        return names;
    }
    QDialog* StatusDialog() {
        for (QWidget* each : QApplication::topLevelWidgets()) {
            if (each->windowTitle() == "Trace Status" && each->isVisible()) {
                return qobject_cast<QDialog*>(each);
            }
        }
        return nullptr;
    }
};

TEST_F(LiveCapture, FromGoToASavedFile) {
    Connect({"--buffer", "4", "--rate", "4000"});
    settings.WriteProfileInt("Display", "ShowTraceStatus", 1);
    OpenState();
    EXPECT_EQ(Bar().SetupBox().currentText(), "<New>");
    ChooseSetup("Read after 100 writes");
    EXPECT_EQ(Trace().setupName, "Read after 100 writes");
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", ""),
              dir.File("ReadAfterWrites.tsp"));
    Go();
    ASSERT_TRUE(Running());
    const GaugeState& gauge = Bar().Gauge().State();
    EXPECT_EQ(gauge.total, 4096);
    EXPECT_EQ(gauge.trigger, 3072);
    ASSERT_TRUE(RunUntil([&] { return StatusDialog() != nullptr; }));
    ASSERT_TRUE(RunUntil([&] {
        QDialog* dialog = StatusDialog();
        return dialog == nullptr || dialog->findChild<QLabel*>("Active Level")->text() == "2";
    }));
    ASSERT_TRUE(Running());
    EXPECT_EQ(StatusDialog()->findChild<QLabel*>("If Event")->text(), "E2");
    EXPECT_EQ(Text("Level"), "L2");
    EXPECT_GT(gauge.before, 0);
    ASSERT_TRUE(Complete()); // the run ends with a full buffer
    EXPECT_EQ(StatusDialog(), nullptr);

    const CSampleStore& store = Trace().GetStore();
    EXPECT_EQ(store.SamplesAfter(), 1023);
    EXPECT_GT(store.SamplesBefore(), 100);
    EXPECT_EQ(Text("After"), "0001023");
    EXPECT_EQ(Trace().SampleCount(false), store.SamplesBefore() + 1024);
    EXPECT_EQ(gauge.total, Trace().SampleCount(false));
    EXPECT_EQ(gauge.trigger, store.SamplesBefore());
    EXPECT_EQ(gauge.before, -1);
    EXPECT_GE(gauge.windowFirst, 0);
    for (std::int64_t i = 0; i < Trace().SampleCount(false); ++i) {
        ASSERT_TRUE(Trace().IsValidSample(i, false)) << i;
    }
    // The trigger is the first read after the hundredth write: command 6 in an address phase.
    const SampleRecord trigger = *Trace().GetSample(Trace().Marker(0, false), false);
    EXPECT_EQ(trigger.bytes[8] & 0x0F, 6);
    EXPECT_TRUE(trigger.Bit(95));

    const auto run = Run();
    const auto start = std::find(run.begin(), run.end(), "start trace, address 260 length 160");
    ASSERT_NE(start, run.end());
    ASSERT_GE(start - run.begin(), 3);
    EXPECT_EQ(*(start - 3), "write memory, address 420 length 3");
    EXPECT_EQ(*(start - 2), "write memory, address 20 length 240");
    EXPECT_EQ(*(start - 1), "write memory, address 260 length 160");
    const std::vector<std::string> after(start + 1, run.end());
    ASSERT_GE(after.size(), 4U);
    EXPECT_THAT(after[0], testing::StartsWith("stop trace"));
    EXPECT_EQ(after[1], "read zoom samples before the trigger, address 255 length 255");
    EXPECT_EQ(after[2], "read zoom samples after the trigger, address 0 length 256");
    const auto blocks = static_cast<std::size_t>((Trace().SampleCount(false) + 31) / 32);
    const std::set<std::string> read(after.begin() + 3, after.end());
    EXPECT_EQ(read.size(), blocks);
    EXPECT_LE(after.size(), 3 + blocks + 10)
        << "except for those that the view requested, once each";

    // The file.
    Trace().SetPathName(dir.File("saved.tra"));
    EXPECT_TRUE(Trace().IsModified());
    ChooseDialog<CSaveTraceDialog>("File/Save", [&](CSaveTraceDialog& dialog) {
        for (auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->text().remove('&') == "OK") {
                QTest::mouseClick(button, Qt::LeftButton);
            }
        }
        EXPECT_TRUE(RunUntil([&] { return !dialog.isVisible(); }));
    });
    EXPECT_FALSE(Trace().IsModified());
    // Under another name, since an open file would be raised.
    std::filesystem::copy(dir.File("saved.tra"), dir.File("copy.tra"));
    auto* loaded = dynamic_cast<CTesselDoc*>(program->App().OpenDocumentFile(dir.File("copy.tra")));
    ASSERT_NE(loaded, nullptr);
    ASSERT_FALSE(loaded->IsRealTime());
    ASSERT_EQ(loaded->SampleCount(false), Trace().SampleCount(false));
    for (std::int64_t i = 0; i < loaded->SampleCount(false); ++i) {
        ASSERT_EQ(loaded->GetSample(i, false), Trace().GetSample(i, false)) << i;
    }
    for (std::int64_t i = 0; i < 511; ++i) {
        ASSERT_EQ(loaded->GetSample(i, true), Trace().GetSample(i, true)) << i;
    }
    EXPECT_EQ(loaded->setup.levels, Trace().setup.levels);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(LiveCapture, StopEndsItAndTheSamplesOfAViewAreReadFirst) {
    Connect({"--buffer", "1024", "--rate", "100000"});
    OpenState();
    StopALongRun();
    EXPECT_FALSE(Running());
    ASSERT_GT(Trace().SampleCount(false), 20000);
    ASSERT_TRUE(Trace().IsUploading());
    const std::int64_t far = Trace().SampleCount(false) - 5000;
    EXPECT_FALSE(Trace().IsValidSample(far, false));
    frame->TraceView().ShowSample(far);
    ASSERT_TRUE(RunUntil([&] { return Trace().IsValidSample(far, false); }));
    EXPECT_TRUE(Trace().IsUploading()) << "long before its turn";
    board->Fault("normal");
    ASSERT_TRUE(Complete());
}

TEST_F(LiveCapture, ATableIsSavedWhileSamplesStillCome) {
    Connect({"--buffer", "1024", "--rate", "100000"});
    OpenState();
    StopALongRun();
    ASSERT_TRUE(Trace().IsUploading());
    const std::int64_t last = Trace().SampleCount(false) + Trace().FirstSampleNumber(false) - 1;
    ASSERT_FALSE(Trace().IsValidSample(Trace().SampleCount(false) - 1, false));
    const QString title = frame->windowTitle();
    SaveTraceUnder(
        dir.File("live.csv"), [&] { Choose("File/Save As..."); },
        [&](CSaveTraceDialog& dialog) {
            SetSaveRange(dialog, QString::number(last - 99), QString::number(last));
        });
    EXPECT_TRUE(Trace().IsUploading()) << "the samples that are wanted have come first";
    const std::string table = ReadWholeFile(dir.File("live.csv"));
    EXPECT_EQ(std::ranges::count(table, '\n'), 1 + 100);
    EXPECT_THAT(table, testing::HasSubstr("\n" + std::to_string(last) + ","));
    EXPECT_TRUE(Trace().IsModified()) << "the capture itself has not been saved";
    EXPECT_EQ(Trace().GetPathName(), "");
    EXPECT_EQ(frame->windowTitle(), title);
    board->Fault("normal");
    ASSERT_TRUE(Complete());
}

TEST_F(LiveCapture, F5StartsARunAndShiftF5StopsIt) {
    Connect({"--buffer", "64", "--rate", "4000"});
    OpenState();
    Frame().show();
    const auto press = [&](Qt::KeyboardModifiers modifiers) {
        QApplication::setActiveWindow(&Frame());
        Frame().RefreshCommands(); // the program does so before it waits for the next key
        QTest::keyClick(frame->GetActiveView(), Qt::Key_F5, modifiers);
    };
    press({});
    ASSERT_TRUE(RunUntil([&] { return Text("After").toInt() > 20; }));
    EXPECT_TRUE(Running());
    press(Qt::ShiftModifier);
    EXPECT_TRUE(Complete());
    EXPECT_GT(Trace().SampleCount(false), 20);
}

TEST_F(LiveCapture, ASecondGoDuringTheUploadCancelsIt) {
    Connect({"--buffer", "1024", "--rate", "100000"});
    OpenState();
    StopALongRun();
    ASSERT_TRUE(Trace().IsUploading());
    board->Fault("normal");
    Go();
    EXPECT_TRUE(Running());
    EXPECT_FALSE(Trace().IsUploading());
    EXPECT_EQ(Trace().SampleCount(false), 0);
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(LiveCapture, TwoFramesAndAZoomFrameShowOneCapture) {
    Connect({"--buffer", "2"});
    OpenState();
    Choose("File/New/Capture/Waveform");
    auto& waveform = dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    ASSERT_NE(&waveform, frame);
    EXPECT_EQ(&waveform.Trace(), &Trace());
    Go();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(Bar().Gauge().State().total, 1024);
    EXPECT_EQ(waveform.Bar().Gauge().State().total, 1024);
    QTest::mouseClick(&Bar().ZoomButton(), Qt::LeftButton);
    auto& zoom = dynamic_cast<CChildFrame&>(*Windows().last());
    EXPECT_TRUE(zoom.IsZoomFrame());
    EXPECT_EQ(Frame().Area().activeSubWindow(), frame);
    EXPECT_TRUE(frame->TraceView().hasFocus());
    EXPECT_EQ(Frame().Area().subWindowList(QMdiArea::StackingOrder).last(), &zoom)
        << "otherwise nobody would see it";
    EXPECT_EQ(zoom.windowTitle(), "Power Zoom - New");
    EXPECT_FALSE(zoom.Bar().GoButton().isVisible());
    EXPECT_FALSE(zoom.Bar().SetupBox().isVisible());
    EXPECT_EQ(zoom.Bar().findChild<QLabel*>("Before")->text(), "0000255");
    EXPECT_EQ(zoom.Bar().findChild<QLabel*>("After")->text(), "0000255");
    // A frame that closes during a run does not affect the others.
    Go();
    EXPECT_EQ(zoom.Bar().findChild<QLabel*>("Before")->text(), "0000255");
    EXPECT_EQ(zoom.Bar().findChild<QLabel*>("After")->text(), "0000255");
    waveform.close();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(Trace().SampleCount(false), 1024);
    EXPECT_EQ(zoom.Bar().findChild<QLabel*>("Before")->text(), "0000255");
    EXPECT_EQ(zoom.Bar().findChild<QLabel*>("After")->text(), "0000255");
}

TEST_F(LiveCapture, APowerZoomFrameOfAnEmptyTraceCounts255) {
    Connect();
    OpenState();
    QTest::mouseClick(&Bar().ZoomButton(), Qt::LeftButton);
    auto& zoom = dynamic_cast<CChildFrame&>(*Windows().last());
    EXPECT_EQ(zoom.Bar().findChild<QLabel*>("Before")->text(), "0000255");
    EXPECT_EQ(zoom.Bar().findChild<QLabel*>("After")->text(), "0000255");
}

TEST_F(LiveCapture, ADisplaySwitchedDuringTheRunKeepsTheGauge) {
    Connect({"--buffer", "64", "--rate", "20000"});
    OpenState();
    Go();
    ASSERT_TRUE(RunUntil([&] { return Bar().Gauge().State().after > 1000; }));
    const GaugeState before = Bar().Gauge().State();
    const auto expectFilling = [&](CChildFrame& filling) {
        const GaugeState& now = filling.Bar().Gauge().State();
        EXPECT_EQ(now.total, 64 * 1024);
        EXPECT_EQ(now.trigger, before.trigger);
        EXPECT_GE(now.before, before.before);
        EXPECT_GE(now.after, before.after);
        EXPECT_EQ(now.windowFirst, -1);
        EXPECT_GE(filling.Bar().findChild<QLabel*>("After")->text().toInt(), before.after);
    };
    AnswerDialog<QDialog>([&] { QTest::mouseClick(&Bar().DisplayButton(), Qt::LeftButton); },
                          [](QDialog& dialog) { dialog.accept(); });
    ASSERT_FALSE(frame->IsStateFrame());
    expectFilling(*frame);
    Choose("File/New/Capture/State"); // and a second window shows the same
    auto& second = dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    ASSERT_NE(&second, frame);
    expectFilling(second);
    ASSERT_TRUE(Running());
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(Bar().Gauge().State().total, Trace().SampleCount(false));
    EXPECT_EQ(second.Bar().Gauge().State().total, Trace().SampleCount(false));
    EXPECT_EQ(second.Bar().Gauge().State().after, -1);
}

TEST_F(LiveCapture, ANewRunForgetsTheFileOfThePreviousOne) {
    Connect({"--buffer", "1"});
    OpenState();
    Go();
    ASSERT_TRUE(Complete());
    const std::string path = dir.File("first.tra");
    EXPECT_EQ(SaveTraceUnder(path, [&] { Choose("File/Save"); }), "Trace.tra");
    EXPECT_NE(FindEntry(*Frame().menuBar(), "File/1 first.tra"), nullptr)
        << "among the recent files";
    EXPECT_EQ(Trace().GetPathName(), path);
    // Saving again needs no name.
    AnswerDialog<CSaveTraceDialog>([&] { Choose("File/Save"); }, [](CSaveTraceDialog&) {});

    Go();
    ASSERT_TRUE(Complete());
    const std::string saved = ReadWholeFile(path);
    const std::string second = dir.File("second.tra");
    EXPECT_EQ(SaveTraceUnder(second, [&] { Choose("File/Save"); }), "Trace.tra");
    EXPECT_TRUE(ReadWholeFile(path) == saved) << "the first run is replaced";
    EXPECT_TRUE(std::filesystem::exists(second));
    // The same holds for a setup that empties the trace.
    AnswerDialog<CTraceSetupDialog>(
        [&] { QTest::mouseClick(&Bar().SetupButton(), Qt::LeftButton); },
        [](CTraceSetupDialog& dialog) {
            dialog.findChild<QComboBox*>("Trigger Position")->setCurrentIndex(0);
            Press(dialog, "OK");
        });
    ASSERT_EQ(Trace().SampleCount(false), 0);
    EXPECT_EQ(Trace().GetPathName(), "");
    prompts.AnswerNext(Answer::No);
    Close();
    EXPECT_THAT(prompts.Texts(), testing::ElementsAre("Save changes to Trace?"));
}

TEST_F(LiveCapture, ASavedCaptureIsOpenedBesideTheLiveOne) {
    Connect({"--buffer", "1"});
    OpenState();
    Go();
    ASSERT_TRUE(Complete());
    const std::string path = dir.File("saved.tra");
    SaveTraceUnder(path, [&] { Choose("File/Save As..."); });
    auto* opened = dynamic_cast<CTesselDoc*>(program->App().OpenDocumentFile(path));
    ASSERT_NE(opened, nullptr);
    EXPECT_NE(opened, &Trace());
    EXPECT_FALSE(opened->IsRealTime());
    EXPECT_EQ(opened->SampleCount(false), Trace().SampleCount(false));
}

TEST_F(LiveCapture, ADocumentClosedDuringRunAndUploadDoesNoHarm) {
    Connect({"--buffer", "64", "--rate", "20000"});
    prompts.AnswerNext(Answer::No); // changes are not saved
    OpenState();
    Go();
    QTest::qWait(300);
    Close();
    EXPECT_TRUE(Windows().isEmpty());
    OpenState();
    Go();
    ASSERT_TRUE(RunUntil([&] { return Text("After").toInt() > 3000; }));
    Stop();
    prompts.AnswerNext(Answer::No);
    Close();
    EXPECT_TRUE(Windows().isEmpty());
    EXPECT_EQ(Frame().PaneText(1), "PCIKite-3");
}

TEST_F(LiveCapture, GoOnAFileStartsALiveTraceWithItsListsAndSetup) {
    Connect();
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger2.tra")), nullptr);
    frame = &dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    EXPECT_EQ(Bar().SetupBox().count(), 1);
    EXPECT_EQ(Bar().SetupBox().currentText(), "First memory write");
    const std::size_t signalsOfFile = Trace().stateList.Size();
    CChildFrame* file = frame;
    Go();
    ASSERT_EQ(Windows().size(), 2);
    frame = &dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    ASSERT_NE(frame, file);
    EXPECT_TRUE(Trace().IsRealTime());
    EXPECT_TRUE(frame->IsStateFrame());
    EXPECT_EQ(Trace().stateList.Size(), signalsOfFile);
    EXPECT_EQ(Trace().setup.name, "First memory write");
    EXPECT_FALSE(Running()) << "the user presses Go again";

    frame = file;
    Go();
    EXPECT_THAT(prompts.Texts(),
                testing::ElementsAre("A real-time view already exists. Close the real-time view "
                                     "before creating a new one."));
    EXPECT_EQ(Windows().size(), 2);
    EXPECT_THAT(Run(), testing::Not(Contains(HasSubstr("start trace"))));
    // The document that is opened next is not a clone.
    Choose("Window/2 " + Windows()[1]->windowTitle());
    Choose("File/Close");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    OpenFrame("State");
    EXPECT_TRUE(Trace().IsRealTime());
    EXPECT_NE(Trace().setup.name, "First memory write");
}

TEST_F(LiveCapture, TheDisplayButtonSwitchesOpensOrActivates) {
    Connect();
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger2.tra")), nullptr);
    frame = &dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    frame->TraceView().ShowSample(1000);
    const auto center = frame->TraceView().CenterSample();
    const auto press = [&](int choice) {
        QTimer::singleShot(0, [choice] {
            auto* dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->windowTitle(), "New Trace Window");
            dialog->findChildren<QRadioButton*>()[choice]->click();
            qobject_cast<QDialog*>(dialog)->accept();
        });
        QTest::mouseClick(&Bar().DisplayButton(), Qt::LeftButton);
    };
    press(0);
    EXPECT_FALSE(frame->IsStateFrame());
    EXPECT_EQ(Windows().size(), 1);
    EXPECT_EQ(frame->TraceView().CenterSample(), center);
    press(1);
    ASSERT_EQ(Windows().size(), 2);
    auto& second = dynamic_cast<CChildFrame&>(*Windows().last());
    EXPECT_TRUE(second.IsStateFrame());
    Frame().Area().setActiveSubWindow(frame);
    QTest::mouseClick(&Bar().DisplayButton(),
                      Qt::LeftButton); // no dialog, since there is already a window
    EXPECT_EQ(Frame().Area().activeSubWindow(), &second);
    EXPECT_EQ(Windows().size(), 2);
}

TEST_F(LiveCapture, NewResetsTheSetupOfTheTrace) {
    Connect();
    OpenState();
    ChooseSetup("Memory write");
    EXPECT_EQ(Trace().setup.name, "Memory write");
    AnswerDialog<CTraceSetupDialog>([&] { ChooseSetup("<New>"); },
                                    [](CTraceSetupDialog& dialog) { Press(dialog, "Cancel"); });
    EXPECT_EQ(Trace().setup.name, "");
    EXPECT_EQ(Trace().setupPath, "");
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].ifExpr), "All");
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", "?"), "");
}

TEST_F(LiveCapture, BoardsWithoutPowerZoomHaveNoButtonForIt) {
    Connect({"--model", "PCIWren"});
    OpenState();
    EXPECT_FALSE(Bar().ZoomButton().isVisible());
    EXPECT_TRUE(Bar().GoButton().isVisible());
}

TEST_F(LiveCapture, ABoardThatDisappearsDuringTheRunEndsItWithoutSamples) {
    Connect({"--buffer", "64", "--rate", "1000"});
    OpenState();
    Go();
    QTest::qWait(500);
    board->Fault("silence");
    ASSERT_TRUE(RunUntil([&] { return !Running(); }));
    EXPECT_EQ(Trace().SampleCount(false), 0);
    EXPECT_THAT(Run(), testing::Not(Contains(HasSubstr("stop trace"))));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(LiveCapture, ABoardThatDisappearsDuringTheUploadKeepsTheSamplesThatArrived) {
    Connect({"--buffer", "1024", "--rate", "100000"});
    OpenState();
    StopALongRun();
    ASSERT_TRUE(RunUntil([&] { return Trace().IsValidSample(200, false); }));
    // From the first frame of the next block on, so that the block fails.
    board->Fault("silence");
    QTest::qWait(500);
    EXPECT_TRUE(Trace().IsValidSample(200, false));
    EXPECT_FALSE(Trace().IsValidSample(Trace().SampleCount(false) - 1, false));
    frame->TraceView().ShowSample(0);
}

TEST_F(LiveCapture, GoOnALostBoardEndsAtTheFirstCommand) {
    Connect({"--buffer", "2"});
    OpenState();
    Go();
    ASSERT_TRUE(Complete());
    const std::int64_t samples = Trace().SampleCount(false);
    prompts.Forget();
    board->Fault("go-away");
    Go();
    auto texts = prompts.Texts();
    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(texts.back(), "Error sending trace parameter data to analyzer.");
    texts.pop_back();
    EXPECT_THAT(texts, testing::Each(testing::StartsWith("Error writing to COM1, err ")));
    EXPECT_LE(texts.size(), 5U) << "the tries of one command";
    EXPECT_FALSE(Running());
    EXPECT_EQ(Trace().SampleCount(false), samples) << "no samples replace them";
    QTest::qWait(500);
    EXPECT_EQ(prompts.Texts().size(), texts.size() + 1);
}

TEST_F(LiveCapture, InDemoModeWithoutStoredCapturesGoEndsAtOnce) {
    StartDemo();
    std::filesystem::remove(dir.File("Trigger2.tra"));
    OpenState();
    EXPECT_TRUE(Trace().IsRealTime());
    prompts.Forget();
    Go();
    ASSERT_TRUE(RunUntil([&] { return !Running(); }));
    EXPECT_EQ(Trace().SampleCount(false), 0);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
