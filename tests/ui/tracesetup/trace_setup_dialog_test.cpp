#include "platform/memory_settings.h"
#include "platform/working_directory.h"
#include "signals/value_text.h"
#include "support/board_tables.h"
#include "support/modal_qt.h"
#include "support/pattern_grid_qt.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "tracesetup/setup_file.h"
#include "ui/framework/painting.h"
#include "ui/levels/level_panel.h"
#include "ui/levels/occurrence_dialog.h"
#include "ui/patterns/pattern_cell.h"
#include "ui/tracesetup/condition_dialog.h"
#include "ui/tracesetup/expression_dialog.h"
#include "ui/tracesetup/setup_wizard_dialog.h"
#include "ui/tracesetup/trace_setup_dialog.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TraceSetupDialog : public testing::Test {
protected:
    void UseBoard(const std::string& model, std::int32_t mode = BusPci) {
        dialog.reset();
        board = std::make_unique<BoardTables>(model, mode);
        setup = TraceSetup(board->tables);
    }
    void Open(const std::string& path = "") {
        dialog = std::make_unique<CTraceSetupDialog>(
            nullptr, setup, path,
            CTraceSetupDialog::Parts{settings, prompts, directory, isLive,
                                     [this] { return isRunning; }, [this] { ++helpShown; },
                                     [this] { ++wizardHelpShown; }});
        dialog->show();
        QApplication::processEvents();
    }
    void Press(const char* button) { test::Press(*dialog, button); }
    bool Closed(QDialog::DialogCode result) {
        return !dialog->isVisible() && dialog->result() == result;
    }
    QString Cell(const char* name) { return ButtonOf(*dialog, name).text(); }
    QComboBox& List(const char* name) { return *dialog->findChild<QComboBox*>(name); }
    QLineEdit& Name() { return *dialog->findChild<QLineEdit*>("Name"); }
    QPlainTextEdit& Description() { return *dialog->findChild<QPlainTextEdit*>("Description"); }
    CPatternGrid& Grid() { return *dialog->findChild<CPatternGrid*>(); }
    /// As the user does it, with keys.
    void Choose(QComboBox& list, const QString& text) {
        for (int i = 0; i < list.count() && list.currentText() != text; ++i) {
            const bool down = list.currentIndex() < list.findText(text);
            QTest::keyClick(&list, down ? Qt::Key_Down : Qt::Key_Up);
        }
    }
    const CSignal* Column(const std::string& name) {
        for (const auto& signal : setup.events.All()) {
            if (signal->VisibleWidth() > 0 && signal->RowName() == name) {
                return signal.get();
            }
        }
        throw std::runtime_error("no column " + name);
    }
    void SetExpression(const char* cell, std::initializer_list<const char*> buttons) {
        AnswerDialog<CTraceExpressionDialog>([&] { Press(cell); },
                                             [&](CTraceExpressionDialog& expression) {
                                                 for (const char* button : buttons) {
                                                     test::Press(expression, button);
                                                 }
                                             });
    }
    /// Presses a button that opens a file dialog, and enters a name.
    void ChooseFile(
        const char* button, const std::string& name,
        const std::function<void(QFileDialog&)>& look = [](QFileDialog&) {}) {
        AnswerDialog<QFileDialog>([&] { Press(button); },
                                  [&](QFileDialog& files) {
                                      look(files);
                                      if (name.empty()) {
                                          files.reject();
                                          return;
                                      }
                                      GiveFileName(files, name);
                                      EXPECT_FALSE(files.isVisible());
                                  });
    }
    std::string SetupFile(const std::string& name, const TraceSetup& contents) {
        EXPECT_TRUE(SaveSetupFile(contents, dir.File(name), prompts));
        return dir.File(name);
    }
    /// A setup that differs from the default in every value.
    TraceSetup Other() {
        TraceSetup other(board->tables);
        other.name = "Other";
        other.description = "two\r\nlines";
        other.clock = 5;
        other.triggerPosition = 1;
        other.powerZoomClock = 8;
        other.levels[0].ifExpr = ParseExpression("E1+E2");
        other.levels[0].occurs = 12;
        other.levels[0].thenGoto = 3;
        other.levels[7].elseGoto = 7;
        other.levels[7].elseTrigger = true;
        other.levels[7].storeExpr = ParseExpression("~E8");
        return other;
    }

    const TempDir dir;
    const WorkingDirectory directory{dir.Path()};
    RecordingPrompts prompts;
    MemorySettings settings;
    std::unique_ptr<BoardTables> board = std::make_unique<BoardTables>("PCIKite-1");
    TraceSetup setup{board->tables};
    std::unique_ptr<CTraceSetupDialog> dialog;
    bool isLive = true;
    bool isRunning = false;
    int helpShown = 0;
    int wizardHelpShown = 0;
};

TEST_F(TraceSetupDialog, ShowsTheSetup) {
    setup.CopyFrom(Other());
    setup.description = "two\r\nlines";
    Open();
    EXPECT_EQ(dialog->windowTitle(), "Trace Setup");
    EXPECT_EQ(Name().text(), "Other");
    EXPECT_EQ(Description().toPlainText(), "two\nlines");
    EXPECT_EQ(List("Sample Clock").currentText(), "15 ns");
    EXPECT_EQ(List("Trigger Position").currentText(), "0%");
    EXPECT_EQ(List("Power Zoom Sample Clock").currentText(), "240 ns");
    EXPECT_EQ(Cell("If1"), "E1+E2");
    EXPECT_EQ(Cell("Occurs1"), "12");
    EXPECT_EQ(Cell("Then1"), "Goto L4, Trigger");
    EXPECT_EQ(Cell("Else1"), "Goto L1");
    EXPECT_EQ(Cell("Store1"), "All");
    EXPECT_EQ(Cell("If8"), "None");
    EXPECT_EQ(Cell("Store8"), "~E8");
    EXPECT_EQ(Cell("Else8"), "Goto L8, Trigger");
    EXPECT_FALSE(dialog->findChild<QCheckBox*>()->isChecked());
    Press("OK");
    EXPECT_TRUE(Closed(QDialog::Accepted));
    EXPECT_FALSE(dialog->IsModified());
    EXPECT_EQ(setup.description, "two\r\nlines");
}

TEST_F(TraceSetupDialog, HasItsLabelsAndButtons) {
    settings.WriteProfileInt("Display", "ShowTraceStatus", 1);
    Open();
    EXPECT_TRUE(dialog->findChild<QCheckBox*>()->isChecked());
    QStringList titles;
    for (const auto* group : dialog->findChildren<QGroupBox*>()) {
        titles << group->title();
    }
    EXPECT_EQ(titles, QStringList({"Setup", "Events", "Trace Control"}));
    QStringList labels;
    for (const auto* label : dialog->findChildren<QLabel*>()) {
        labels << label->text();
    }
    for (const char* label : {"Name", "Description", "Sample Clock", "Trigger Position",
                              "Power Zoom Sample Clock", "L1:", "L8:"}) {
        EXPECT_EQ(labels.count(label), 1) << label;
    }
    for (const char* label : {"IF", "OCCURS", "THEN", "STORE", "ELSE"}) {
        EXPECT_EQ(labels.count(label), 8) << label;
    }
    for (const char* button :
         {"Setup &Wizard", "&Open", "&Save", "&Delete", "OK", "Cancel", "&Help", "Trace Status"}) {
        EXPECT_EQ(ButtonOf(*dialog, QString(button).remove('&')).text().remove("&OK"),
                  QString(button).remove("&OK"));
    }
    EXPECT_FALSE(ButtonOf(*dialog, "Setup Wizard").icon().isNull());
    // Between the cells of the panel.
    auto& panel = *dialog->findChild<CLevelPanel*>();
    EXPECT_EQ(panel.grab().toImage().pixelColor(4, 4), QColor(0xD0, 0xD0, 0xD0));
}

TEST_F(TraceSetupDialog, OffersEveryClockAndPosition) {
    Open();
    for (const auto& [name, text] :
         {std::pair{"Sample Clock", &ClockText}, std::pair{"Trigger Position", &TriggerText},
          std::pair{"Power Zoom Sample Clock", &PowerZoomText}}) {
        const QComboBox& list = List(name);
        for (std::int32_t index = 1; !text(index).empty(); ++index) {
            EXPECT_EQ(list.itemText(index - 1).toStdString(), text(index)) << name;
        }
        EXPECT_TRUE(text(list.count() + 1).empty()) << name;
        EXPECT_TRUE(list.isEnabled()) << name;
        EXPECT_EQ(list.findText("Unknown"), -1);
    }
}

TEST_F(TraceSetupDialog, AnUnknownClockIsNotSelectedAndStays) {
    setup.clock = 0;
    Open();
    EXPECT_EQ(List("Sample Clock").currentIndex(), -1);
    Press("OK");
    EXPECT_EQ(setup.clock, 0);
}

TEST_F(TraceSetupDialog, AcceptsInput) {
    Open();
    QTest::keyClicks(&Name(), "Mine");
    QTest::keyClicks(&Description(), "one");
    QTest::keyClick(&Description(), Qt::Key_Return);
    QTest::keyClicks(&Description(), "two");
    EXPECT_FALSE(dialog->IsModified()); // the program is unchanged
    Choose(List("Sample Clock"), "30.72 us");
    Choose(List("Trigger Position"), "100%");
    Choose(List("Power Zoom Sample Clock"), "1.875 ns");
    Tick(*dialog, "Trace Status");
    EXPECT_EQ(settings.GetProfileInt("Display", "ShowTraceStatus", 5), 5);
    Press("OK");
    EXPECT_TRUE(Closed(QDialog::Accepted));
    EXPECT_TRUE(dialog->IsModified());
    EXPECT_EQ(setup.name, "Mine");
    EXPECT_EQ(setup.description, "one\r\ntwo");
    EXPECT_EQ(setup.clock, 16);
    EXPECT_EQ(setup.triggerPosition, 5);
    EXPECT_EQ(setup.powerZoomClock, 1);
    EXPECT_EQ(settings.GetProfileInt("Display", "ShowTraceStatus", 5), 1);
}

TEST_F(TraceSetupDialog, EachListMarksTheSetupAsModified) {
    for (const char* name : {"Sample Clock", "Trigger Position", "Power Zoom Sample Clock"}) {
        Open();
        EXPECT_FALSE(dialog->IsModified());
        QTest::keyClick(&List(name), Qt::Key_Up);
        EXPECT_TRUE(dialog->IsModified()) << name;
    }
}

TEST_F(TraceSetupDialog, EachCellOpensItsDialog) {
    Open();
    SetExpression("If1", {"E1", "OK"});
    EXPECT_EQ(Cell("If1"), "E1");
    EXPECT_TRUE(dialog->IsModified());
    SetExpression("Store1", {"NONE", "E2", "OK"});
    EXPECT_EQ(Cell("Store1"), "E2");
    AnswerDialog<COccurrenceCountDialog>([&] { Press("Occurs1"); },
                                         [](COccurrenceCountDialog& count) {
                                             QTest::keyClicks(count.findChild<QLineEdit*>(), "300");
                                             test::Press(count, "OK");
                                         });
    EXPECT_EQ(Cell("Occurs1"), "300");
    for (const char* cell : {"Then1", "Else1"}) {
        AnswerDialog<CTraceConditionDialog>([&] { Press(cell); },
                                            [](CTraceConditionDialog& condition) {
                                                QTest::keyClick(condition.findChild<QComboBox*>(),
                                                                Qt::Key_End);
                                                Tick(condition, "Trigger");
                                                test::Press(condition, "OK");
                                            });
    }
    EXPECT_EQ(Cell("Then1"), "Goto L8");
    EXPECT_EQ(Cell("Else1"), "Goto L8, Trigger");
    SetExpression("If8", {"E8", "OK"});
    const TraceLevel& first = setup.levels[0];
    EXPECT_EQ(FormatExpression(first.ifExpr), "E1");
    EXPECT_EQ(FormatExpression(first.storeExpr), "E2");
    EXPECT_EQ(first.occurs, 300);
    EXPECT_EQ(FormatTraceGoto(first.thenGoto, first.thenTrigger), "Goto L8");
    EXPECT_EQ(FormatTraceGoto(first.elseGoto, first.elseTrigger), "Goto L8, Trigger");
    EXPECT_EQ(FormatExpression(setup.levels[7].ifExpr), "E8");
}

TEST_F(TraceSetupDialog, ACancelledCellChangesNothing) {
    Open();
    SetExpression("If1", {"E1", "Cancel"});
    EXPECT_EQ(Cell("If1"), "All");
    AnswerDialog<COccurrenceCountDialog>([&] { Press("Occurs2"); },
                                         [](COccurrenceCountDialog& count) {
                                             QTest::keyClicks(count.findChild<QLineEdit*>(), "3");
                                             test::Press(count, "Cancel");
                                         });
    AnswerDialog<CTraceConditionDialog>([&] { Press("Then1"); },
                                        [](CTraceConditionDialog& condition) {
                                            Tick(condition, "Trigger");
                                            test::Press(condition, "Cancel");
                                        });
    EXPECT_EQ(Cell("Occurs2"), "1");
    EXPECT_EQ(Cell("Then1"), "Goto L1, Trigger");
    EXPECT_FALSE(dialog->IsModified());
}

TEST_F(TraceSetupDialog, AnEventIsEditedInTheTable) {
    Open();
    // A line in the row of E3.
    QTest::mouseClick(&Grid(), Qt::LeftButton, {},
                      CellRect(Grid(), setup.events, "PAR", 2).center());
    EXPECT_EQ(PatternText(*Column("PAR"), 2), "0");
    EXPECT_TRUE(dialog->IsModified());
    Press("Cancel");
    EXPECT_EQ(PatternText(*Column("PAR"), 2), "X");
}

TEST_F(TraceSetupDialog, AnOccurrenceCountHasTwoBytes) {
    Open();
    AnswerDialog<COccurrenceCountDialog>([&] { Press("Occurs1"); },
                                         [](COccurrenceCountDialog& count) {
                                             auto* edit = count.findChild<QLineEdit*>();
                                             QTest::keyClicks(edit, "65536");
                                             test::Press(count, "OK");
                                             EXPECT_TRUE(count.isVisible());
                                             QTest::keyClicks(edit, "65535");
                                             test::Press(count, "OK");
                                         });
    EXPECT_EQ(Cell("Occurs1"), "65535");
}

TEST_F(TraceSetupDialog, ALongExpressionDoesNotHideTheOtherCells) {
    Open();
    dialog->resize(dialog->minimumSizeHint());
    QApplication::processEvents();
    AnswerDialog<CTraceExpressionDialog>([&] { Press("If1"); },
                                         [&](CTraceExpressionDialog& expression) {
                                             test::Press(expression, "NONE");
                                             for (int i = 0; i < 16; ++i) {
                                                 test::Press(expression,
                                                             i % 2 == 0 ? "E1" : "x (XOR)");
                                             }
                                             test::Press(expression, "OK");
                                         });
    QApplication::processEvents();
    const auto& panel = *dialog->findChild<CLevelPanel*>();
    const auto& condition = ButtonOf(*dialog, "Then1");
    EXPECT_LE(condition.mapTo(&panel, QPoint(condition.width(), 0)).x(),
              panel.viewport()->width() + panel.frameWidth());
    EXPECT_GE(ButtonOf(*dialog, "If1").width(), ButtonOf(*dialog, "If1").minimumSizeHint().width());
}

TEST_F(TraceSetupDialog, ShowsAsManyEventsAsTheBoardHas) {
    Open();
    EXPECT_GE(Grid().Geometry().VisibleRows(), 8);
    UseBoard("VMELark", BusVme);
    Open();
    EXPECT_EQ(Grid().Geometry().VisibleRows(), 4);
}

TEST_F(TraceSetupDialog, TheLevelsScroll) {
    Open();
    auto& panel = *dialog->findChild<CLevelPanel*>();
    EXPECT_TRUE(panel.verticalScrollBar()->isVisible());
    panel.verticalScrollBar()->setValue(panel.verticalScrollBar()->maximum());
    const auto& last = ButtonOf(*dialog, "Else8");
    EXPECT_TRUE(panel.viewport()->rect().contains(
        QRect(last.mapTo(panel.viewport(), QPoint()), last.size())));
    // 42 dialog units between levels.
    const int pitch = ButtonOf(*dialog, "If2").y() - ButtonOf(*dialog, "If1").y();
    EXPECT_EQ(pitch, DialogUnits(panel, 0, 42).height());
    EXPECT_EQ(ButtonOf(*dialog, "Store1").y() - ButtonOf(*dialog, "If1").y(),
              DialogUnits(panel, 0, 14).height());
}

TEST_F(TraceSetupDialog, SmallBoardsCannotSampleAt133MHz) {
    UseBoard("PCIWren-2");
    Open();
    EXPECT_FALSE(List("Power Zoom Sample Clock").isEnabled());
    Choose(List("Sample Clock"), "Transfer");
    QTest::keyClick(&List("Sample Clock"), Qt::Key_Down);
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("PCIWren-2 model does not support 133 MHz sample clock."));
    EXPECT_EQ(List("Sample Clock").currentText(), "15 ns");
    prompts.Forget();
    TraceSetup fast(board->tables);
    fast.clock = 4;
    ChooseFile("Open", SetupFile("fast.tsp", fast));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("PCIWren-2 model does not support 133 MHz sample clock."));
    EXPECT_EQ(List("Sample Clock").currentText(), "15 ns");
    Press("OK");
    EXPECT_EQ(setup.clock, 5);
    EXPECT_FALSE(dialog->IsInFile()); // the file still has the other clock
}

TEST_F(TraceSetupDialog, ChoosingTheSameAgainIsNotAChange) {
    Open();
    auto& list = List("Trigger Position");
    list.showPopup();
    QTest::keyClick(list.view(), Qt::Key_Return);
    EXPECT_EQ(list.currentText(), "50%");
    EXPECT_FALSE(dialog->IsModified());
}

TEST_F(TraceSetupDialog, OtherBoardsCan) {
    Open();
    Choose(List("Sample Clock"), "7.5 ns");
    Press("OK");
    EXPECT_EQ(setup.clock, 4);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    UseBoard("VMELark", BusVme);
    Open();
    EXPECT_FALSE(List("Power Zoom Sample Clock").isEnabled());
    Choose(List("Sample Clock"), "7.5 ns");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

// Files

TEST_F(TraceSetupDialog, SavesUnderTheNameOfTheFile) {
    Open();
    QTest::keyClicks(&Name(), "Draft");
    SetExpression("If1", {"E1", "OK"});
    Choose(List("Trigger Position"), "25%");
    ChooseFile("Save", "Final", [&](QFileDialog& files) {
        EXPECT_EQ(files.windowTitle(), "Save Trace Setup");
        EXPECT_EQ(files.nameFilters(), QStringList("Setups (*.tsp)"));
        EXPECT_EQ(files.directory().path().toStdString(), dir.Path());
        EXPECT_EQ(files.findChild<QLineEdit*>("fileNameEdit")->text(), "Draft");
    });
    EXPECT_EQ(dialog->Path(), dir.File("Final.tsp"));
    EXPECT_TRUE(dialog->IsInFile());
    EXPECT_EQ(Name().text(), "Final");
    TraceSetup saved(board->tables);
    ASSERT_TRUE(LoadSetupFile(saved, dir.File("Final.tsp"), prompts));
    EXPECT_EQ(saved.name, "Final");
    EXPECT_EQ(FormatExpression(saved.levels[0].ifExpr), "E1");
    EXPECT_EQ(saved.triggerPosition, 2);
    ChooseFile("Save", "", [&](QFileDialog& files) {
        EXPECT_EQ(files.findChild<QLineEdit*>("fileNameEdit")->text(), "Final.tsp");
    });
    Choose(List("Trigger Position"), "50%");
    EXPECT_FALSE(dialog->IsInFile());
}

TEST_F(TraceSetupDialog, ANameMayContainCharactersThatAFileNameCannot) {
    Open();
    ChooseFile("Save", "", [&](QFileDialog& files) {
        EXPECT_EQ(files.findChild<QLineEdit*>("fileNameEdit")->text(), "");
        EXPECT_EQ(files.directory().path().toStdString(), dir.Path());
    });
    QTest::keyClicks(&Name(), "Read/Write 1.5");
    ChooseFile("Save", "Read-Write 1.5", [&](QFileDialog& files) {
        EXPECT_EQ(files.findChild<QLineEdit*>("fileNameEdit")->text(), "Read-Write 1.5");
        EXPECT_EQ(files.directory().path().toStdString(), dir.Path());
    });
    EXPECT_EQ(dialog->Path(), dir.File("Read-Write 1.5.tsp"));
    EXPECT_EQ(Name().text(), "Read-Write 1.5");
    EXPECT_TRUE(std::filesystem::exists(dialog->Path()));
    // After a dot the file dialog adds no extension, so it does not see that the file exists.
    prompts.AnswerNext(Answer::No);
    std::filesystem::remove(dialog->Path());
    dir.Write("other 2.0.tsp", "kept");
    ChooseFile("Save", "other 2.0");
    EXPECT_THAT(prompts.Texts(), ElementsAre("File already exists. Overwrite?"));
    EXPECT_EQ(std::filesystem::file_size(dir.File("other 2.0.tsp")), 4U);
}

TEST_F(TraceSetupDialog, AChangedNameOrDescriptionIsNotInTheFile) {
    const std::string path = SetupFile("other.tsp", Other());
    ASSERT_TRUE(LoadSetupFile(setup, path, prompts));
    Open(path);
    Press("OK");
    EXPECT_TRUE(dialog->IsInFile());
    Open(path);
    QTest::keyClicks(&Name(), "!");
    Press("OK");
    EXPECT_FALSE(dialog->IsInFile());
    Open(path);
    QTest::keyClicks(&Description(), "!");
    Press("OK");
    EXPECT_FALSE(dialog->IsInFile());
    EXPECT_FALSE(dialog->IsModified());
}

TEST_F(TraceSetupDialog, AFileThatCannotBeWrittenIsReported) {
    Open();
    const std::string path = dir.Path() + "/none/x.tsp";
    // The file dialog does not accept such a folder, but a folder may disappear meanwhile.
    std::filesystem::create_directory(dir.Path() + "/none");
    settings.WriteProfileString("Setup", "LastSetupDir", dir.Path() + "/none");
    ChooseFile("Save", "x", [&](QFileDialog& files) {
        QObject::connect(&files, &QFileDialog::accepted,
                         [&] { std::filesystem::remove(dir.Path() + "/none"); });
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error creating file " + path + "."));
    EXPECT_FALSE(dialog->IsInFile());
    EXPECT_EQ(dialog->Path(), "");
}

TEST_F(TraceSetupDialog, OpensAFile) {
    TraceSetup other = Other();
    other.events.ApplyDecodedValue(&other.events[0], 7, 8); // a memory write in E8
    const std::string path = SetupFile("other.tsp", other);
    Open();
    const QImage before = Grid().grab().toImage();
    ChooseFile("Open", path, [&](QFileDialog& files) {
        EXPECT_EQ(files.windowTitle(), "Open Trace Setup");
        EXPECT_EQ(files.nameFilters(), QStringList("Setups (*.tsp)"));
        EXPECT_EQ(files.directory().path().toStdString(), dir.Path());
    });
    EXPECT_TRUE(dialog->IsModified());
    EXPECT_TRUE(dialog->IsInFile());
    EXPECT_EQ(dialog->Path(), path);
    EXPECT_EQ(Name().text(), "Other");
    EXPECT_EQ(Description().toPlainText(), "two\nlines");
    EXPECT_EQ(List("Sample Clock").currentText(), "15 ns");
    EXPECT_EQ(List("Trigger Position").currentText(), "0%");
    EXPECT_EQ(List("Power Zoom Sample Clock").currentText(), "240 ns");
    EXPECT_EQ(Cell("If1"), "E1+E2");
    EXPECT_EQ(Cell("Else8"), "Goto L8, Trigger");
    EXPECT_NE(Grid().grab().toImage(), before);
    EXPECT_EQ(PatternText(*Column("COMMAND"), 7), "Mem Wr");
    Press("OK");
    EXPECT_EQ(setup.description, "two\r\nlines");
    EXPECT_EQ(setup.clock, 5);
}

TEST_F(TraceSetupDialog, CancelRestoresAllButTheDescription) {
    const std::string path = SetupFile("other.tsp", Other());
    setup.name = "Before";
    setup.description = "as it was";
    setup.levels[0].ifExpr = ParseExpression("E7");
    setup.events.ApplyDecodedValue(&setup.events[0], 2, 8);
    setup.triggerPosition = 4;
    setup.powerZoomClock = 3;
    Open();
    ChooseFile("Open", path);
    EXPECT_EQ(setup.name, "Other");
    Press("Cancel");
    EXPECT_TRUE(Closed(QDialog::Rejected));
    EXPECT_EQ(setup.name, "Before");
    EXPECT_EQ(setup.description, "Before");
    EXPECT_EQ(FormatExpression(setup.levels[0].ifExpr), "E7");
    EXPECT_EQ(setup.levels[0].occurs, 1);
    EXPECT_EQ(setup.clock, 2);
    EXPECT_EQ(setup.triggerPosition, 4);
    EXPECT_EQ(setup.powerZoomClock, 3);
    EXPECT_EQ(PatternText(*Column("COMMAND"), 2), "Mem Wr");
}

TEST_F(TraceSetupDialog, EscapeIsCancel) {
    setup.levels[0].occurs = 5;
    Open();
    SetExpression("If1", {"E1", "OK"});
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_TRUE(Closed(QDialog::Rejected));
    EXPECT_EQ(FormatExpression(setup.levels[0].ifExpr), "All");
    EXPECT_EQ(setup.levels[0].occurs, 5);
}

TEST_F(TraceSetupDialog, ARefusedFileHasAlreadyReplacedTheSetup) {
    const std::string path =
        dir.Write("wrong.tsp", "\"FileType\",\"Trace Setup File\"\n\"Version\",\"2.0\"\n"
                               "\"Name\",\"Later\"\n");
    Open("first.tsp");
    ChooseFile("Open", path);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error: File version of 1.0 not found."));
    EXPECT_EQ(Name().text(), "Later");
    EXPECT_EQ(dialog->Path(), "first.tsp");
    EXPECT_FALSE(dialog->IsInFile());
    EXPECT_TRUE(dialog->IsModified());
    Press("Cancel");
    EXPECT_FALSE(setup.events.Empty());
}

TEST_F(TraceSetupDialog, DeletesAFileAfterAConfirmation) {
    const std::string path = SetupFile("old.tsp", Other());
    settings.WriteProfileString("Setup", "LastSetupFile", path);
    Open();
    prompts.AnswerNext(Answer::No);
    ChooseFile("Delete", path, [](QFileDialog& files) {
        EXPECT_EQ(files.windowTitle(), "Delete Trace Setup");
        EXPECT_EQ(files.nameFilters(), QStringList("Setups (*.tsp)"));
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Delete setup file " + path + "?"));
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", ""), path);
    prompts.AnswerNext(Answer::Yes);
    ChooseFile("Delete", path);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", "?"), "");
    EXPECT_FALSE(dialog->IsModified());
}

TEST_F(TraceSetupDialog, DeletingAnotherFileKeepsTheLastOne) {
    const std::string path = SetupFile("old.tsp", Other());
    settings.WriteProfileString("Setup", "LastSetupFile", "/other.tsp");
    Open();
    prompts.AnswerNext(Answer::Yes);
    ChooseFile("Delete", path);
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", "?"), "/other.tsp");
}

TEST_F(TraceSetupDialog, AFileThatCannotBeDeletedIsReported) {
    const std::string path = SetupFile("old.tsp", Other());
    settings.WriteProfileString("Setup", "LastSetupFile", path);
    Open(path);
    ChooseFile("Delete", path, [&](QFileDialog& files) {
        // Deleted before the question is answered.
        QObject::connect(&files, &QFileDialog::accepted, [&] { std::filesystem::remove(path); });
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Delete setup file " + path + "?",
                                             "Error deleting file " + path + "."));
    EXPECT_EQ(settings.GetProfileString("Setup", "LastSetupFile", ""), path);
}

TEST_F(TraceSetupDialog, AfterItsFileIsDeletedTheSetupIsNotInAFile) {
    const std::string path = SetupFile("old.tsp", Other());
    Open(path);
    prompts.AnswerNext(Answer::Yes);
    ChooseFile("Delete", path);
    EXPECT_EQ(dialog->Path(), "");
    EXPECT_FALSE(dialog->IsInFile());
}

TEST_F(TraceSetupDialog, ACancelledFileDialogDoesNothing) {
    Open();
    for (const char* button : {"Open", "Save", "Delete"}) {
        ChooseFile(button, "");
    }
    EXPECT_FALSE(dialog->IsModified());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

// The wizard, and closing the dialog

TEST_F(TraceSetupDialog, TheWizardReplacesTheProgram) {
    setup.triggerPosition = 4;
    Open();
    QTest::keyClicks(&Name(), "Mine");
    const QImage before = Grid().grab().toImage();
    AnswerDialog<CSetupWizardDialog>([&] { Press("Setup Wizard"); },
                                     [&](CSetupWizardDialog& wizard) {
                                         test::Press(wizard, "Help");
                                         QTest::keyClicks(wizard.findChild<QLineEdit*>(),
                                                          "100 to 200");
                                         test::Press(wizard, "OK");
                                     });
    EXPECT_EQ(wizardHelpShown, 1);
    EXPECT_TRUE(dialog->IsModified());
    EXPECT_EQ(Cell("If1"), "E1.E2");
    EXPECT_EQ(Cell("Store1"), "E5");
    EXPECT_NE(Grid().grab().toImage(), before);
    EXPECT_EQ(Name().text(), "Mine");
    Press("OK");
    EXPECT_EQ(setup.name, "Mine");
    EXPECT_EQ(setup.triggerPosition, 4);
}

TEST_F(TraceSetupDialog, ACancelledWizardDoesNotReplaceTheProgram) {
    setup.levels[0].occurs = 9;
    Open();
    AnswerDialog<CSetupWizardDialog>(
        [&] { Press("Setup Wizard"); },
        [](CSetupWizardDialog& wizard) { test::Press(wizard, "Cancel"); });
    EXPECT_FALSE(dialog->IsModified());
    EXPECT_EQ(setup.levels[0].occurs, 9);
}

TEST_F(TraceSetupDialog, ARunningTraceKeepsItsSetup) {
    isRunning = true;
    Open();
    Tick(*dialog, "Trace Status");
    SetExpression("If1", {"E1", "OK"});
    Press("OK");
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Setup cannot be modified while trace is in progress."));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(settings.GetProfileInt("Display", "ShowTraceStatus", 5), 5);
    isRunning = false; // the run has ended
    Press("OK");
    EXPECT_TRUE(Closed(QDialog::Accepted));
    EXPECT_EQ(FormatExpression(setup.levels[0].ifExpr), "E1");
}

TEST_F(TraceSetupDialog, AnUnchangedSetupCanBeConfirmedDuringARun) {
    isRunning = true;
    Open();
    QTest::keyClicks(&Name(), "Mine");
    Press("OK");
    EXPECT_TRUE(Closed(QDialog::Accepted));
    EXPECT_EQ(setup.name, "Mine");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(TraceSetupDialog, ASavedTraceKeepsItsSetup) {
    isLive = false;
    Open();
    SetExpression("If1", {"E1", "OK"});
    for (int i = 0; i < 2; ++i) {
        Press("OK");
        EXPECT_TRUE(dialog->isVisible());
    }
    EXPECT_THAT(prompts.Texts(), ElementsAre("Setup of saved trace cannot be modified.",
                                             "Setup of saved trace cannot be modified."));
    Press("Cancel");
    EXPECT_TRUE(Closed(QDialog::Rejected));
    EXPECT_EQ(FormatExpression(setup.levels[0].ifExpr), "All");
}

TEST_F(TraceSetupDialog, TheSetupOfASavedTraceCanBeViewed) {
    isLive = false;
    Open();
    Press("Help");
    EXPECT_EQ(helpShown, 1);
    Press("OK");
    EXPECT_TRUE(Closed(QDialog::Accepted));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
