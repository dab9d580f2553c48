// Trigger programs created in the windows, run on the simulated board.

#include "boardsim/traffic.h"
#include "support/live_frame_fixture_qt.h"
#include "tracesetup/setup_file.h"
#include "ui/capture/position_gauge.h"
#include "ui/tracesetup/condition_dialog.h"
#include "ui/tracesetup/expression_dialog.h"
#include "ui/tracesetup/setup_wizard_dialog.h"
#include "ui/tracesetup/trace_setup_dialog.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBrowser>
#include <QWheelEvent>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using boardsim::Family;
using boardsim::GetBit;
using boardsim::GetField;
using testing::ElementsAre;
using testing::IsEmpty;

class LiveSetup : public LiveFrameFixture {
protected:
    /// Opens the dialog by the bar's button and calls `act` on it.
    void EditSetup(const std::function<void(CTraceSetupDialog&)>& act) {
        AnswerDialog<CTraceSetupDialog>(
            [&] { QTest::mouseClick(&Bar().SetupButton(), Qt::LeftButton); }, act);
    }
    static void SetExpression(CTraceSetupDialog& dialog, const char* cell,
                              std::initializer_list<const char*> buttons) {
        AnswerDialog<CTraceExpressionDialog>([&] { Press(dialog, cell); },
                                             [&](CTraceExpressionDialog& expression) {
                                                 for (const char* button : buttons) {
                                                     Press(expression, button);
                                                 }
                                             });
    }
    static void ChooseFile(CTraceSetupDialog& dialog, const char* button, const std::string& name) {
        AnswerDialog<QFileDialog>([&] { Press(dialog, button); },
                                  [&](QFileDialog& files) { GiveFileName(files, name); });
    }
    /// Saves over an existing file.
    static void SaveOver(CTraceSetupDialog& dialog, const std::string& path) {
        AnswerDialog<QFileDialog>([&] { Press(dialog, "Save"); },
                                  [&](QFileDialog& files) { ReplaceFile(files, path); });
    }
    static void TurnWheel(QWidget& over) {
        const QPointF middle = QRectF(over.rect()).center();
        QWheelEvent event(middle, over.mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&over, &event);
    }
    /// The commands after a position in the board's log.
    std::vector<std::string> Sent(std::size_t since) {
        auto functions = board->Functions();
        functions.erase(functions.begin(), functions.begin() + static_cast<std::ptrdiff_t>(since));
        return functions;
    }
    QString Chosen() { return Bar().SetupBox().currentText(); }
    std::vector<boardsim::Record> Captured() {
        std::vector<boardsim::Record> records;
        for (std::int64_t i = 0; i < Trace().SampleCount(false); ++i) {
            records.push_back(Trace().GetSample(i, false)->bytes);
        }
        return records;
    }
};

TEST_F(LiveSetup, TheWizardsProgramTriggersOnTheChosenCycle) {
    Connect({"--buffer", "1", "--seed", "6"});
    OpenFrame("State");
    EditSetup([](CTraceSetupDialog& dialog) {
        AnswerDialog<CSetupWizardDialog>(
            [&] { Press(dialog, "Setup Wizard"); },
            [](CSetupWizardDialog& wizard) {
                const auto groups = wizard.findChildren<QGroupBox*>();
                Tick(*groups[0], "Memory");
                Tick(*groups[0], "Write");
                QTest::keyClicks(groups[0]->findChildren<QLineEdit*>()[0], "1F40000 to 1F40200");
                Tick(*groups[1], "Memory");
                Press(wizard, "OK");
            });
        Press(dialog, "OK");
    });
    EXPECT_EQ(Chosen(), "<New>");
    Go();
    ASSERT_TRUE(Complete());

    const auto traffic = boardsim::MakeRecords(Family::Pci32, 6, 200000);
    const auto isMemory = [](const auto& record) {
        return GetBit(record, 95) && GetField(record, 65, 3) == 3;
    };
    const auto isWanted = [&](const auto& record) {
        const auto address = GetField(record, 0, 32);
        return isMemory(record) && GetBit(record, 64) && address > 0x1F40000 && address < 0x1F40200;
    };
    const auto trigger = std::find_if(traffic.begin(), traffic.end(), isWanted);
    std::vector<std::uint64_t> addresses;
    std::int64_t before = 0;
    for (auto at = traffic.begin(); addresses.size() < 512 + static_cast<std::size_t>(before);
         ++at) {
        if (isMemory(*at)) {
            before += at < trigger ? 1 : 0;
            addresses.push_back(GetField(*at, 0, 32));
        }
    }
    ASSERT_LE(before, 512);
    EXPECT_EQ(Trace().Marker(0, false), before);
    std::vector<std::uint64_t> captured;
    for (const auto& record : Captured()) {
        captured.push_back(GetField(record, 0, 32));
    }
    EXPECT_EQ(captured, addresses);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(LiveSetup, TheWizardsProgramOnVme) {
    Connect({"--model", "VMEKite", "--buffer", "1", "--seed", "6"});
    OpenFrame("State");
    EditSetup([](CTraceSetupDialog& dialog) {
        AnswerDialog<CSetupWizardDialog>(
            [&] { Press(dialog, "Setup Wizard"); },
            [](CSetupWizardDialog& wizard) {
                const auto groups = wizard.findChildren<QGroupBox*>();
                Tick(*groups[0], "Write");
                QTest::keyClicks(groups[0]->findChildren<QLineEdit*>()[1], "4B495445");
                Press(wizard, "OK");
            });
        Press(dialog, "OK");
    });
    Go();
    ASSERT_TRUE(Complete());
    const auto captured = Captured();
    const auto trigger = static_cast<std::size_t>(Trace().Marker(0, false));
    for (std::size_t i = 0; i <= trigger; ++i) {
        const bool wanted = !GetBit(captured[i], 78) && GetBit(captured[i], 95) &&
                            GetField(captured[i], 32, 32) == 0x4B495445;
        EXPECT_EQ(wanted, i == trigger) << i;
    }
}

TEST_F(LiveSetup, AnEditedSetupGoesToTheBoardAtOnce) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    ChooseSetup("Memory write");
    Go();
    ASSERT_TRUE(Complete());
    ASSERT_GT(Trace().SampleCount(false), 0);
    const std::size_t sent = board->Functions().size();
    EditSetup([](CTraceSetupDialog& dialog) {
        SetExpression(dialog, "If1", {"ALL", "OK"});
        Press(dialog, "OK");
    });
    // Three payloads, and the capture of the old program is cleared.
    const auto now = Sent(sent);
    EXPECT_EQ(std::count_if(now.begin(), now.end(),
                            [](const std::string& line) {
                                return line.find("write memory") != std::string::npos;
                            }),
              3);
    EXPECT_EQ(Trace().SampleCount(false), 0);
    EXPECT_FALSE(Trace().HasData());
    EXPECT_EQ(Text("Before"), "0000000");
    EXPECT_EQ(Text("After"), "0000000");
    // The gauge is as empty as the trace.
    const QImage gauge = Bar().Gauge().grab().toImage();
    for (int x = 1; x < gauge.width() - 1; ++x) {
        ASSERT_EQ(gauge.pixelColor(x, gauge.height() / 2), QColor(0xC0, 0xC0, 0xC0)) << x;
    }
    EXPECT_TRUE(Trace().IsModified());
    // Go would read the file again, which is unchanged.
    EXPECT_EQ(Chosen(), "<New>");
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", ""), dir.File("MemoryWrite.tsp"));
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupDir", ""), dir.Path() + "/");
    Go();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(Trace().Marker(0, false), 0) << "everything is a trigger";
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].ifExpr), "All");
}

TEST_F(LiveSetup, ALevelThatIsNeverLeft) {
    Connect({"--buffer", "4", "--rate", "20000"});
    OpenFrame("State");
    EditSetup([](CTraceSetupDialog& dialog) {
        SetExpression(dialog, "If1", {"NONE", "OK"});
        AnswerDialog<CTraceConditionDialog>([&] { Press(dialog, "Then1"); },
                                            [](CTraceConditionDialog& condition) {
                                                QTest::keyClick(condition.findChild<QComboBox*>(),
                                                                Qt::Key_Down);
                                                Press(condition, "OK");
                                            });
        Press(dialog, "OK");
    });
    Go();
    ASSERT_TRUE(RunUntil([&] { return Text("Before").toInt() == 2048; }));
    QTest::qWait(500);
    EXPECT_TRUE(Running());
    EXPECT_EQ(Text("Level"), "L1");
    EXPECT_EQ(Text("After"), "0000000");
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(Trace().SampleCount(false), 2048 + 1);
}

TEST_F(LiveSetup, ASavedSetupIsInTheBoxOfEachFrame) {
    Connect();
    OpenFrame("State");
    CChildFrame* state = frame;
    OpenFrame("Waveform");
    std::filesystem::create_directory(dir.File("more"));
    EditSetup([&](CTraceSetupDialog& dialog) {
        SetExpression(dialog, "If1", {"E1", "OK"});
        ChooseFile(dialog, "Save", dir.File("more/Mine"));
        Press(dialog, "OK");
    });
    const std::string path = dir.File("more/Mine.tsp");
    EXPECT_EQ(Trace().setupPath, path);
    EXPECT_EQ(Trace().setupName, "Mine");
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", ""), path);
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupDir", ""), dir.File("more/"));
    for (CChildFrame* each : {frame, state}) {
        const QComboBox& box = each->Bar().SetupBox();
        EXPECT_EQ(box.currentText(), "Mine");
        EXPECT_EQ(box.currentData().toString().toStdString(), path);
        EXPECT_EQ(box.count(), 2); // and "<New>"
    }
    // The dialog opens with that file.
    EditSetup([&](CTraceSetupDialog& dialog) { EXPECT_EQ(dialog.Path(), path); });
    EXPECT_EQ(Chosen(), "Mine");
}

TEST_F(LiveSetup, ASetupSavedOverItsOwnFileStaysChosen) {
    for (const char* name : {"ConfigurationCycles.tsp", "TargetRetry.tsp"}) {
        std::filesystem::copy(SourceFile("data/" + std::string(name)), dir.File(name));
    }
    Connect();
    OpenFrame("Waveform");
    CChildFrame* waveform = frame;
    OpenFrame("State");
    const std::pair<const char*, const char*> shipped[] = {
        {"Configuration cycles", "ConfigurationCycles"},
        {"Memory write", "MemoryWrite"},
        {"Read after 100 writes", "ReadAfterWrites"},
        {"Target retry", "TargetRetry"}};
    for (const auto& [name, file] : shipped) {
        const std::string path = dir.File(file + std::string(".tsp"));
        ChooseSetup(name);
        EditSetup([&](CTraceSetupDialog& dialog) {
            SetExpression(dialog, "Store1", {"NONE", "E2", "OK"});
            SaveOver(dialog, path);
            Press(dialog, "OK");
        });
        EXPECT_EQ(Trace().setupPath, path);
        EXPECT_EQ(Trace().setupName, file) << "the current name in the file";
        EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", ""), path);
        for (const CChildFrame* each : {frame, waveform}) {
            EXPECT_EQ(each->Bar().SetupBox().currentText(), file);
            EXPECT_EQ(each->Bar().SetupBox().currentData().toString().toStdString(), path);
        }
        EditSetup([&](CTraceSetupDialog& dialog) { EXPECT_EQ(dialog.Path(), path); });
        EXPECT_EQ(Chosen(), file);
        EXPECT_EQ(FormatExpression(Trace().setup.levels[0].storeExpr), "E2");
    }
}

TEST_F(LiveSetup, ASetupSavedOverItsOwnFileAndCancelledStaysChosen) {
    Connect();
    OpenFrame("State");
    ChooseSetup("Memory write");
    EditSetup([&](CTraceSetupDialog& dialog) {
        SetExpression(dialog, "Store1", {"NONE", "E2", "OK"});
        SaveOver(dialog, dir.File("MemoryWrite.tsp"));
        Press(dialog, "Cancel");
    });
    EXPECT_EQ(Chosen(), "MemoryWrite");
    EXPECT_EQ(Trace().setupName, "MemoryWrite");
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].storeExpr), "All");
    Go(); // reads the current content of the file
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].storeExpr), "E2");
    Stop();
    ASSERT_TRUE(Complete());
}

TEST_F(LiveSetup, ADescriptionSavedOverItsOwnFileCountsAsSaved) {
    Connect();
    OpenFrame("State");
    ChooseSetup("Memory write");
    EditSetup([&](CTraceSetupDialog& dialog) {
        QTest::keyClicks(dialog.findChild<QPlainTextEdit*>(), "Mine: ");
        SaveOver(dialog, dir.File("MemoryWrite.tsp"));
        Press(dialog, "OK");
    });
    EXPECT_EQ(Chosen(), "MemoryWrite");
    EXPECT_TRUE(Trace().IsModified());
    Go();
    EXPECT_TRUE(Trace().setup.description.starts_with("Mine: "));
    Stop();
    ASSERT_TRUE(Complete());
}

TEST_F(LiveSetup, TheWheelOverTheSetupBoxChangesNothing) {
    Connect();
    OpenFrame("State");
    ChooseSetup("Memory write");
    const std::size_t sent = board->Functions().size();
    ASSERT_FALSE(Bar().SetupBox().hasFocus());
    TurnWheel(Bar().SetupBox());
    EXPECT_EQ(Chosen(), "Memory write");
    EXPECT_EQ(Trace().setupName, "Memory write");
    EXPECT_THAT(Sent(sent), IsEmpty());
    // After a click into the box the wheel works, since the user means it.
    Bar().SetupBox().setFocus();
    TurnWheel(Bar().SetupBox());
    EXPECT_EQ(Trace().setupName, "Read after 100 writes");
}

TEST_F(LiveSetup, ASetupFileInCapitalsIsInTheBox) {
    std::filesystem::copy(dir.File("MemoryWrite.tsp"), dir.File("UPPER.TSP"));
    std::filesystem::remove(dir.File("MemoryWrite.tsp"));
    Connect();
    OpenFrame("State");
    ChooseSetup("Memory write");
    EXPECT_EQ(Trace().setupPath, dir.File("UPPER.TSP"));
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].ifExpr), "E1");
}

TEST_F(LiveSetup, ACancelledDialogSendsNothing) {
    Connect();
    OpenFrame("State");
    ChooseSetup("Memory write");
    const std::size_t sent = board->Functions().size();
    EditSetup([&](CTraceSetupDialog& dialog) {
        EXPECT_EQ(dialog.Path(), dir.File("MemoryWrite.tsp"));
        SetExpression(dialog, "If1", {"ALL", "OK"});
        Press(dialog, "Cancel");
    });
    EXPECT_THAT(Sent(sent), IsEmpty());
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].ifExpr), "E1");
    EXPECT_EQ(Chosen(), "Memory write");
    EditSetup([](CTraceSetupDialog& dialog) { Press(dialog, "OK"); }); // nothing has changed
    EXPECT_THAT(Sent(sent), IsEmpty());
    EXPECT_EQ(Chosen(), "Memory write");
}

TEST_F(LiveSetup, AnUnsavedDescriptionIsNotOverwrittenByTheFile) {
    Connect();
    OpenFrame("State");
    ChooseSetup("Memory write");
    const std::size_t sent = board->Functions().size();
    EditSetup([](CTraceSetupDialog& dialog) {
        QTest::keyClicks(dialog.findChild<QPlainTextEdit*>(), "Mine: ");
        Press(dialog, "OK");
    });
    EXPECT_EQ(Chosen(), "<New>");
    EXPECT_THAT(Sent(sent), IsEmpty()) << "the program is unchanged";
    Go();
    EXPECT_TRUE(Trace().setup.description.starts_with("Mine: "));
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].ifExpr), "E1");
    Stop();
    ASSERT_TRUE(Complete());
}

TEST_F(LiveSetup, ADeletedFileIsNotSelectedAnyMore) {
    Connect();
    OpenFrame("State");
    ChooseSetup("Memory write");
    // Another file whose setup has the same name.
    std::filesystem::copy(dir.File("MemoryWrite.tsp"), dir.File("Copy.tsp"));
    EditSetup([&](CTraceSetupDialog& dialog) {
        ChooseFile(dialog, "Delete", dir.File("MemoryWrite.tsp"));
        Press(dialog, "Cancel");
    });
    EXPECT_FALSE(std::filesystem::exists(dir.File("MemoryWrite.tsp")));
    EXPECT_EQ(Chosen(), "<New>");
    EXPECT_EQ(Trace().setupPath, "");
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].ifExpr), "E1");
}

TEST_F(LiveSetup, ASaveWithoutAChangeKeepsTheCapture) {
    Connect({"--buffer", "1"});
    OpenFrame("State");
    EXPECT_FALSE(Trace().IsModified());
    EditSetup([&](CTraceSetupDialog& dialog) {
        ChooseFile(dialog, "Save", "First");
        Press(dialog, "OK");
    });
    EXPECT_TRUE(Trace().IsModified());
    EXPECT_EQ(Chosen(), "First");
    Go();
    ASSERT_TRUE(Complete());
    const std::int64_t count = Trace().SampleCount(false);
    ASSERT_GT(count, 0);
    EditSetup([&](CTraceSetupDialog& dialog) {
        ChooseFile(dialog, "Save", "Second");
        Press(dialog, "OK");
    });
    EXPECT_EQ(Chosen(), "Second");
    EXPECT_EQ(Trace().setupPath, dir.File("Second.tsp"));
    EXPECT_EQ(Trace().SampleCount(false), count);
}

TEST_F(LiveSetup, ASmallBoardGetsASupportedClock) {
    Connect({"--model", "PCIWren", "--buffer", "1"});
    OpenFrame("State");
    TraceSetup fast(program->Tables());
    fast.clock = 4;
    ASSERT_TRUE(SaveSetupFile(fast, dir.File("fast.tsp"), prompts));
    EditSetup([&](CTraceSetupDialog& dialog) {
        ChooseFile(dialog, "Open", dir.File("fast.tsp"));
        Press(dialog, "OK");
    });
    ASSERT_EQ(prompts.Texts().size(), 1U);
    EXPECT_EQ(Chosen(), "<New>") << "the file would set the other clock again";
    Go();
    EXPECT_EQ(Trace().setup.clock, 5);
    ASSERT_TRUE(Complete());
}

TEST_F(LiveSetup, NewResetsTheDialog) {
    Connect();
    OpenFrame("State");
    ChooseSetup("Memory write");
    AnswerDialog<CTraceSetupDialog>([&] { ChooseSetup("<New>"); },
                                    [](CTraceSetupDialog& dialog) {
                                        EXPECT_EQ(dialog.Path(), "");
                                        SetExpression(dialog, "Store1", {"NONE", "E2", "OK"});
                                        Press(dialog, "OK");
                                    });
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].ifExpr), "All");
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].storeExpr), "E2");
    EXPECT_EQ(Chosen(), "<New>");
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", "?"), "");
}

TEST_F(LiveSetup, TheSetupIsFixedDuringACapture) {
    Connect({"--buffer", "1024", "--rate", "1000"});
    OpenFrame("State");
    Go();
    ASSERT_TRUE(Running());
    const std::size_t sent = board->Functions().size();
    EditSetup([](CTraceSetupDialog& dialog) {
        SetExpression(dialog, "If1", {"E1", "OK"});
        Press(dialog, "OK");
        EXPECT_TRUE(dialog.isVisible());
        Press(dialog, "Cancel");
    });
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Setup cannot be modified while trace is in progress."));
    EXPECT_TRUE(Running());
    for (const std::string& line : Sent(sent)) {
        EXPECT_EQ(line.find("write memory"), std::string::npos) << line;
    }
    Stop();
    ASSERT_TRUE(Complete());
}

TEST_F(LiveSetup, ASetupChangedDuringTheUploadEndsIt) {
    Connect({"--buffer", "64", "--rate", "200000"});
    OpenFrame("State");
    StopALongRun();
    ASSERT_TRUE(RunUntil([&] { return Trace().IsUploading() && !Running(); }));
    EditSetup([](CTraceSetupDialog& dialog) {
        SetExpression(dialog, "Store1", {"E1", "OK"});
        Press(dialog, "OK");
    });
    EXPECT_FALSE(Trace().IsUploading());
    EXPECT_EQ(Trace().SampleCount(false), 0);
    board->Fault("normal");
    Go();
    ASSERT_TRUE(RunUntil([&] { return Text("After").toInt() > 1000; }));
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_GT(Trace().SampleCount(false), 1000);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(LiveSetup, TheTraceStatusWindowFollowsItsTick) {
    Connect({"--buffer", "64", "--rate", "2000"});
    OpenFrame("State");
    const auto statusShown = [] {
        const auto windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [](const QWidget* window) {
            return window->isVisible() && window->windowTitle() == "Trace Status";
        });
    };
    EditSetup([](CTraceSetupDialog& dialog) {
        Tick(dialog, "Trace Status");
        Press(dialog, "OK");
    });
    Go();
    EXPECT_TRUE(RunUntil(statusShown));
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_FALSE(statusShown());
}

TEST_F(LiveSetup, TheSetupOfAFileCanBeViewed) {
    Connect();
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger2.tra")), nullptr);
    frame = &dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    const QString name = Chosen();
    const std::size_t sent = board->Functions().size();
    EditSetup([](CTraceSetupDialog& dialog) {
        SetExpression(dialog, "If1", {"ALL", "OK"});
        Press(dialog, "OK");
        EXPECT_TRUE(dialog.isVisible());
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Setup of saved trace cannot be modified."));
    EXPECT_EQ(FormatExpression(Trace().setup.levels[0].ifExpr), "E1");
    EXPECT_EQ(Chosen(), name);
    EXPECT_GT(Trace().SampleCount(false), 0);
    EXPECT_THAT(Sent(sent), IsEmpty());
}

TEST_F(LiveSetup, HelpOpensItsPages) {
    Connect();
    OpenFrame("State");
    const auto help = [] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->windowTitle() == "Busquill! Help" && window->isVisible()) {
                return window;
            }
        }
        throw std::runtime_error("no help");
    };
    const auto text = [&] { return help()->findChild<QTextBrowser*>()->toPlainText(); };
    // A modal dialog allows input only in windows that belong to it.
    EditSetup([&](CTraceSetupDialog& dialog) {
        Press(dialog, "Help");
        EXPECT_TRUE(text().startsWith("Trace Setup"));
        EXPECT_EQ(help()->parentWidget(), &dialog);
        AnswerDialog<CSetupWizardDialog>([&] { Press(dialog, "Setup Wizard"); },
                                         [&](CSetupWizardDialog& wizard) {
                                             Press(wizard, "Help");
                                             EXPECT_TRUE(text().startsWith("Setup Wizard"));
                                             EXPECT_EQ(help()->parentWidget(), &wizard);
                                         });
        EXPECT_EQ(help()->parentWidget(), &dialog);
    });
    EXPECT_EQ(help()->parentWidget(), &Frame());
    EXPECT_TRUE(text().startsWith("Setup Wizard"));
}

} // namespace
} // namespace busquill::test
