#include "stimulus/stimulus_document.h"
#include "support/board_line_fixture_qt.h"
#include "support/pattern_grid_qt.h"
#include "support/recording_paint_device_qt.h"
#include "ui/levels/level_panel.h"
#include "ui/levels/occurrence_dialog.h"
#include "ui/patterns/pattern_cell.h"
#include "ui/patterns/pattern_grid.h"
#include "ui/patterns/pattern_table.h"
#include "ui/stimulus/stimulus_child.h"
#include "ui/stimulus/stimulus_condition_dialog.h"
#include "ui/stimulus/stimulus_view.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTextBrowser>
#include <QToolButton>
#include <QWheelEvent>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int startStimulus = 25;
constexpr int stopStimulus = 26;

const std::string fileHead = "\"FileType\",\"Stimulus File\"\n\"Version\",\"1.0\"\n";

class StimulusWindow : public BoardLineFixture {
protected:
    /// On a board of a model.
    void OpenOn(const std::string& model) {
        board.contents[0] = Bytes(model.begin(), model.end());
        StartOnLine();
        OpenNew();
    }
    void OpenNew() {
        Choose("File/New/Exerciser/Stimulus");
        frame = dynamic_cast<CStimulusChild*>(Frame().Area().activeSubWindow());
        ASSERT_NE(frame, nullptr);
        line->Do([this] { board.functions.clear(); });
    }
    CStimulusDoc& Document() { return static_cast<CStimulusDoc&>(frame->GetDocument()); }
    StimulusProgram& Program() { return Document().Program(); }
    TraceLevel& Level(int number) {
        return Program().control.levels[static_cast<std::size_t>(number) - 1];
    }
    CStimulusView& View() { return *dynamic_cast<CStimulusView*>(frame->GetActiveView()); }
    CPatternTable& Table(const char* name) { return *frame->findChild<CPatternTable*>(name); }
    CPatternGrid& Patterns() { return Table("Stimulus").Grid(); }
    CPatternGrid& Events() { return Table("Events").Grid(); }
    CLevelPanel& Levels() { return *frame->findChild<CLevelPanel*>("Control"); }
    QPushButton& Cell(const QString& name) { return *Levels().findChild<QPushButton*>(name); }
    QString Text(const QString& cell) { return Cell(cell).text(); }
    /// Clicks a cell of a level as a user does who has scrolled to it.
    void ClickCell(const QString& name) {
        Levels().ensureWidgetVisible(&Cell(name));
        QTest::mouseClick(&Cell(name), Qt::LeftButton);
    }
    QStringList Menu(const QString& cell, const QString& choice = {}) {
        return AnswerMenu([&] { ClickCell(cell); }, choice);
    }
    void Branch(const QString& cell, const std::function<void(CStimulusConditionDialog&)>& act) {
        AnswerDialog<CStimulusConditionDialog>([&] { ClickCell(cell); }, act);
    }
    void ClickBar(const char* name) {
        QTest::mouseClick(frame->findChild<QToolButton*>(name), Qt::LeftButton);
    }
    void Load(const std::string& path) {
        AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                                  [&](QFileDialog& files) { GiveFileName(files, path); });
    }
    std::string WriteFile(const std::string& lines, const std::string& head = fileHead) {
        return dir.Write("in.stm", head + lines);
    }
    /// What was sent to the board since the last call, without the functions that write.
    std::vector<int> Functions() {
        std::vector<int> functions;
        line->Do([&] { functions = std::exchange(board.functions, {}); });
        std::erase(functions, 2);
        return functions;
    }
    std::vector<WireBoard::Write> Writes() {
        std::vector<WireBoard::Write> writes;
        line->Do([&] { writes = std::exchange(board.writes, {}); });
        return writes;
    }
    void SetStatus(std::uint8_t status) {
        line->Do([&] { board.contents[929] = {status}; });
    }

    CStimulusChild* frame = nullptr;
};

TEST_F(StimulusWindow, OpensWithADefaultProgram) {
    OpenOn("PCIKite");
    EXPECT_EQ(frame->windowTitle(), "Stimulus");
    EXPECT_EQ(frame->size(), QSize(700, 500));
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    for (const char* text : {"&Load", "&Save", "&Options", "&Help", "&Close"}) {
        EXPECT_EQ(ButtonOf(View(), QString(text).remove('&')).text(), text);
    }
    EXPECT_EQ(Patterns().Geometry().rows, 15);
    EXPECT_EQ(Events().Geometry().rows, 8);
    EXPECT_EQ(Events().Geometry().VisibleRows(), 8); // at the usual size
    EXPECT_EQ(Text("If1"), "All");
    EXPECT_EQ(Text("Occurs1"), "1");
    EXPECT_EQ(Text("Then1"), "Goto SL1");
    EXPECT_EQ(Text("Stimulus1"), "S1");
    EXPECT_EQ(Text("Else1"), "Goto SL1");
    EXPECT_EQ(Text("If15"), "None");
    EXPECT_EQ(Text("Stimulus15"), "None");
    EXPECT_EQ(Levels().findChild<QPushButton*>("If16"), nullptr);
    QStringList labels;
    for (const auto* label : Levels().findChildren<QLabel*>()) {
        labels << label->text();
    }
    EXPECT_EQ(labels.mid(0, 6), (QStringList{"SL1:", "IF", "OCCURS", "THEN", "STIMULUS", "ELSE"}));
    EXPECT_EQ(labels.count("STIMULUS"), 15);
    EXPECT_TRUE(labels.contains("SL15:"));
    EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(StimulusWindow, TheLevelsHaveTheirPitchAndScroll) {
    OpenOn("PCIKite");
    const QFontMetrics metrics = Levels().fontMetrics();
    EXPECT_LE(metrics.ascent() + metrics.descent(), 14);
    const auto top = [&](const char* name) {
        return Cell(name).mapTo(Levels().widget(), QPoint()).y();
    };
    const int pitch = 42 * metrics.height() / 8;
    EXPECT_NEAR(top("If2") - top("If1"), pitch, 1);
    EXPECT_NEAR(top("If15") - top("If1"), 14 * pitch, 14);
    EXPECT_EQ(Cell("Stimulus1").mapTo(&Levels(), QPoint()).x(),
              Cell("If1").mapTo(&Levels(), QPoint()).x());
    EXPECT_EQ(Cell("Else1").mapTo(&Levels(), QPoint()).x(),
              Cell("Then1").mapTo(&Levels(), QPoint()).x());
    QScrollBar& bar = *Levels().verticalScrollBar();
    EXPECT_GT(bar.maximum(), 10 * pitch);
    EXPECT_TRUE(Cell("If15").visibleRegion().isEmpty());
    QTest::keyClick(&bar, Qt::Key_End);
    EXPECT_FALSE(Cell("If15").visibleRegion().isEmpty());
    // All columns can be reached in a narrow window.
    EXPECT_EQ(Levels().horizontalScrollBar()->maximum(), 0);
    frame->resize(300, 400);
    QApplication::processEvents();
    EXPECT_LT(Levels().width(), 300);
    EXPECT_GT(Levels().horizontalScrollBar()->maximum(), 0);
}

TEST_F(StimulusWindow, TheLinesOfALevelAreClose) {
    OpenOn("PCIKite");
    const QFontMetrics metrics = Levels().fontMetrics();
    EXPECT_EQ(Levels().font().weight(), QFont::Normal);
    EXPECT_EQ(Cell("If1").font().weight(), QFont::Normal);
    EXPECT_EQ(Cell("If1").fontMetrics().height(), metrics.height());
    const auto top = [&](const char* name) {
        return Cell(name).mapTo(Levels().widget(), QPoint()).y();
    };
    EXPECT_NEAR(top("Stimulus1") - top("If1"), 14 * metrics.height() / 8, 1);
    EXPECT_EQ(top("Stimulus1"), top("Else1"));
    EXPECT_EQ(top("If1"), top("Occurs1"));
    EXPECT_EQ(top("If1"), top("Then1"));
    const QImage panel = Levels().viewport()->grab().toImage();
    EXPECT_EQ(panel.pixelColor(2, 2), QColor(0xD0, 0xD0, 0xD0));
}

TEST_F(StimulusWindow, TheTablesHaveTheirHeadingAndRowLabels) {
    OpenOn("PCIKite");
    const auto labels = [](CPatternGrid& grid) {
        return grid.grab(QRect(0, 0, grid.Geometry().columns.fixedColumn, grid.height())).toImage();
    };
    const auto expected = [&](CPatternGrid& like, const char* heading, const char* row) {
        CPatternGrid grid(nullptr, prompts);
        grid.SetRowCount(like.Geometry().rows);
        grid.SetText(heading, row);
        grid.resize(like.size());
        grid.SetList(Program().control.events);
        return labels(grid);
    };
    EXPECT_EQ(labels(Patterns()), expected(Patterns(), "STIMULUS", "S%d:"));
    EXPECT_EQ(labels(Events()), expected(Events(), "EVENT", "E%d:"));
    EXPECT_NE(labels(Events()), expected(Events(), "EVENT", "S%d:"));
}

TEST_F(StimulusWindow, ItsGroupsAreNamed) {
    OpenOn("PCIKite");
    const std::unique_ptr<QStyle> style(QStyleFactory::create("windows")); // draws no pixmaps
    View().setStyle(style.get());
    RecordingPaintDevice device(View().size());
    View().render(&device, {}, {}, {});
    QStringList titles;
    for (const Recording::Text& text : device.Recorded().texts) {
        titles << text.text;
    }
    EXPECT_EQ(titles, (QStringList{"Stimulus", "Events", "Control"}));
    View().setStyle(nullptr);
}

TEST_F(StimulusWindow, MenusOpenAtTheCursor) {
    OpenOn("PCIKite");
    for (const char* cell : {"If1", "Stimulus1"}) {
        const QPoint cursor = Cell(cell).mapToGlobal(Cell(cell).rect().center());
        QCursor::setPos(cursor);
        QPoint corner;
        QTimer::singleShot(0, [&] {
            const QWidget* menu = QApplication::activePopupWidget();
            ASSERT_NE(menu, nullptr);
            corner = menu->pos();
        });
        Menu(cell);
        EXPECT_EQ(corner.x(), cursor.x()) << cell;
        EXPECT_LE(corner.y(), cursor.y()) << cell; // higher if the menu would leave the screen
    }
}

TEST_F(StimulusWindow, AConditionIsChosenFromAMenu) {
    OpenOn("PCIKite");
    EXPECT_EQ(Menu("If1", "E8"),
              (QStringList{"None", "E1", "E2", "E3", "E4", "E5", "E6", "E7", "E8", "* All"}));
    EXPECT_EQ(Text("If1"), "E8");
    EXPECT_EQ(Level(1).ifExpr, (Expression{0, 0, 0, 0, 0, 0, 0, 0x80}));
    Menu("If1", "None");
    EXPECT_EQ(Level(1).ifExpr, expressionNone);
    EXPECT_EQ(Text("If1"), "None");
    Menu("If15", "All");
    EXPECT_EQ(Level(15).ifExpr, expressionAll);
    Menu("If15"); // closed without a choice
    EXPECT_EQ(Text("If15"), "All");
}

TEST_F(StimulusWindow, TheSmallestBoardHasFourEventsAndAMenuOfEight) {
    OpenOn("VME Lark");
    EXPECT_EQ(Events().Geometry().rows, 4);
    EXPECT_EQ(Patterns().Geometry().rows, 15);
    EXPECT_THAT(Menu("If1", "E8"), SizeIs(10));
    EXPECT_EQ(Text("If1"), "E8");
}

TEST_F(StimulusWindow, APatternIsChosenFromAMenu) {
    OpenOn("PCIKite");
    const QStringList entries = Menu("Stimulus2", "S15");
    EXPECT_EQ(entries.size(), 16);
    EXPECT_EQ(entries.front(), "* None");
    EXPECT_EQ(entries[1], "S1");
    EXPECT_EQ(entries.back(), "S15");
    EXPECT_EQ(Level(2).stimulus, 15);
    EXPECT_EQ(Text("Stimulus2"), "S15");
    Menu("Stimulus2", "None");
    EXPECT_EQ(Level(2).stimulus, 0);
}

TEST_F(StimulusWindow, ALevelWaitsForUpTo256Occurrences) {
    OpenOn("PCIKite");
    const auto enter = [&](const char* text) {
        AnswerDialog<COccurrenceCountDialog>(
            [&] { ClickCell("Occurs1"); },
            [&](COccurrenceCountDialog& dialog) {
                EXPECT_EQ(dialog.findChild<QLabel*>()->text(), "Enter a value between 1 and 256:");
                QTest::keyClicks(dialog.findChild<QLineEdit*>(), text);
                Press(dialog, "OK");
            });
    };
    enter("256");
    EXPECT_EQ(Text("Occurs1"), "256");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    enter("257");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Occurence value must be between 1 and 256."));
    EXPECT_EQ(Text("Occurs1"), "256");
    Writes();
    ClickBar("Go");
    EXPECT_EQ(Writes().at(2).bytes.at(2), 0);
}

TEST_F(StimulusWindow, ABranchIsEditedInItsDialog) {
    OpenOn("PCIKite");
    const auto edit = [](CStimulusConditionDialog& dialog) {
        QTest::keyClick(dialog.findChild<QComboBox*>(), Qt::Key_End); // STOP
        for (const char* field : {"Duration", "Wait"}) {
            auto* input = dialog.findChild<QLineEdit*>(field);
            input->selectAll();
            QTest::keyClicks(input, *field == 'D' ? "5" : "7");
        }
        Press(dialog, "OK");
    };
    Level(1).thenTrigger = Level(1).elseTrigger = true;
    Branch("Then1", edit);
    EXPECT_EQ(Text("Then1"), "STOP, Dur 5, Wait 7");
    EXPECT_EQ(Level(1).thenGoto, stimulusStop);
    EXPECT_EQ(Level(1).thenDuration, 5);
    EXPECT_EQ(Level(1).thenWait, 7);
    EXPECT_FALSE(Level(1).thenTrigger);
    EXPECT_TRUE(Level(1).elseTrigger);
    EXPECT_EQ(Text("Else1"), "Goto SL1");
    Branch("Else15", edit);
    EXPECT_EQ(Text("Else15"), "STOP, Dur 5, Wait 7");
    EXPECT_EQ(Level(15).elseDuration, 5);
    EXPECT_EQ(Level(15).elseWait, 7);
    Branch("Then1", [](CStimulusConditionDialog& dialog) {
        QTest::keyClick(dialog.findChild<QComboBox*>(), Qt::Key_Home);
        Press(dialog, "Cancel");
    });
    EXPECT_EQ(Text("Then1"), "STOP, Dur 5, Wait 7");
    ClickBar("Go");
    const Bytes control = Writes().at(2).bytes;
    EXPECT_EQ(Bytes(control.begin(), control.begin() + 5), (Bytes{0x1F, 0x0F, 1, 5, 7}));
    EXPECT_EQ(Bytes(control.begin() + 70, control.begin() + 75), (Bytes{0x00, 0xF0, 1, 1, 1}));
}

TEST_F(StimulusWindow, EachTableEditsItsPatterns) {
    OpenOn("PCIKite");
    CSignalList& patterns = Program().patterns;
    CSignalList& events = Program().control.events;
    const auto column = [](CSignalList& list) -> const CSignal& {
        return list[ColumnPlace(list, "FRAME")];
    };
    const auto click = [](CPatternGrid& grid, CSignalList& list, int row) {
        QTest::mouseClick(&grid, Qt::LeftButton, {}, CellRect(grid, list, "FRAME", row).center());
    };
    const auto scrollTo = [](CPatternGrid& grid, CSignalList& list) {
        const QRect cell = CellRect(grid, list, "FRAME", 0);
        grid.MoveSignalsTo(grid.Offset() + cell.center().x() - grid.width() / 2);
    };
    scrollTo(Patterns(), patterns);
    scrollTo(Events(), events);
    click(Patterns(), patterns, 2);
    click(Events(), events, 1);
    click(Events(), events, 1);
    EXPECT_EQ(PatternText(column(patterns), 2), "0");
    EXPECT_EQ(PatternText(column(patterns), 1), "X");
    EXPECT_EQ(PatternText(column(events), 1), "1");
    EXPECT_EQ(PatternText(column(events), 2), "X");
    ClickBar("Go");
    const std::vector<WireBoard::Write> writes = Writes();
    EXPECT_EQ(writes.at(0).bytes.at(30 + 18), 0x01); // E2: bit 72
    EXPECT_EQ(writes.at(0).bytes.at(30 + 19), 0x01);
    EXPECT_EQ(writes.at(1).bytes.at(60 + 18), 0x00); // S3
    EXPECT_EQ(writes.at(1).bytes.at(60 + 19), 0x01);
}

TEST_F(StimulusWindow, OneCellIsSunkenInBothTables) {
    OpenOn("PCIKite");
    const auto picture = [](CPatternGrid& grid) { return grid.grab().toImage(); };
    const QImage patterns = picture(Patterns());
    const QImage events = picture(Events());
    QTest::mouseMove(&Patterns(), FirstCell(Patterns()));
    QApplication::processEvents();
    EXPECT_NE(picture(Patterns()), patterns);
    EXPECT_EQ(picture(Events()), events);
    QTest::mouseMove(&Events(), FirstCell(Events()));
    QApplication::processEvents();
    EXPECT_NE(picture(Events()), events);
    EXPECT_EQ(picture(Patterns()), patterns);
}

TEST_F(StimulusWindow, TheRowsOfATableScroll) {
    OpenOn("PCIKite");
    const int hidden = 15 - Patterns().Geometry().VisibleRows();
    ASSERT_GT(hidden, 0);
    QScrollBar* bar = nullptr;
    for (auto* each : Table("Stimulus").findChildren<QScrollBar*>()) {
        bar = each->orientation() == Qt::Vertical ? each : bar;
    }
    ASSERT_NE(bar, nullptr);
    EXPECT_TRUE(bar->isEnabled());
    EXPECT_EQ(bar->maximum(), hidden);
    QTest::keyClick(bar, Qt::Key_End);
    EXPECT_EQ(Patterns().Geometry().topRow, hidden);
    const PatternGeometry geometry = Patterns().Geometry();
    const std::size_t column = geometry.columns.Visible().front().signal;
    EXPECT_LE(geometry.CellRect({14, column}).bottom(), Patterns().height());
    const QPoint middle = FirstCell(Patterns());
    QWheelEvent wheel(middle, Patterns().mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&Patterns(), &wheel);
    EXPECT_LT(Patterns().Geometry().topRow, hidden);
    EXPECT_EQ(bar->value(), Patterns().Geometry().topRow);
    frame->resize(900, 900);
    QApplication::processEvents();
    EXPECT_EQ(Patterns().Geometry().topRow, 0);
    EXPECT_FALSE(bar->isEnabled());
}

TEST_F(StimulusWindow, SavesAndLoads) {
    OpenOn("PCIKite");
    Menu("If1", "E3");
    const std::string path = dir.File("saved.stm");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) {
                                  EXPECT_EQ(files.nameFilters(), QStringList("Stimulus(*.stm)"));
                                  EXPECT_EQ(files.acceptMode(), QFileDialog::AcceptSave);
                                  EXPECT_EQ(files.windowTitle(), "Save Stimulus");
                                  GiveFileName(files, dir.File("saved"));
                              });
    EXPECT_THAT(ReadWholeFile(path), testing::StartsWith(fileHead));
    Menu("If1", "All");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) {
                                  EXPECT_EQ(files.nameFilters(), QStringList("Stimulus(*.stm)"));
                                  EXPECT_EQ(files.acceptMode(), QFileDialog::AcceptOpen);
                                  EXPECT_EQ(files.windowTitle(), "Load Stimulus");
                                  GiveFileName(files, path);
                              });
    EXPECT_EQ(Text("If1"), "E3");
    EXPECT_EQ(frame->windowTitle(), "Stimulus");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); }, [](QFileDialog&) {}); // cancelled
    EXPECT_EQ(Text("If1"), "E3");
}

TEST_F(StimulusWindow, ALongConditionOfAFileIsShownAndCut) {
    OpenOn("PCIKite");
    Load(WriteFile("\"Control\",1,\"E2.E5\",300,\"Goto SL3, Dur 300\",\"Goto SL1, Dur 5\","
                   "\"S1\"\n"));
    EXPECT_EQ(Text("If1"), "E2.E5");
    EXPECT_EQ(Text("Occurs1"), "300");
    EXPECT_EQ(Text("Then1"), "Goto SL3, Dur 300");
    EXPECT_EQ(Text("Else1"), "Goto SL1, Dur 5");
    EXPECT_EQ(Patterns().Geometry().columns.Visible().size(), 0U); // the file has no signals
    ClickBar("Go");
    const Bytes control = Writes().at(2).bytes;
    EXPECT_EQ(Bytes(control.begin(), control.begin() + 5), (Bytes{0x12, 0x02, 0x2C, 0x2C, 1}));
    const QStringList entries = Menu("If1", "E1");
    EXPECT_THAT(entries.filter("*"), IsEmpty());
    EXPECT_EQ(Level(1).ifExpr, ParseExpression("E1"));
}

TEST_F(StimulusWindow, AFileOfAnotherTypeReplacesTheProgramWithoutAWord) {
    OpenOn("PCIKite");
    Menu("If1", "E3");
    const QImage patterns = Patterns().grab().toImage();
    const QImage events = Events().grab().toImage();
    Load(WriteFile("\"Signal\",\"ONLY\",\"ONLY\",\"\",\"\",\"\",-1,72,8\n\"Data\",0\n"
                   "\"Control\",2,\"E4\"\n",
                   "\"FileType\",\"Master File\"\n\"Version\",\"1.0\"\n"));
    EXPECT_THAT(prompts.Boxes(), IsEmpty());
    EXPECT_EQ(Text("If1"), "All");
    EXPECT_EQ(Text("If2"), "E4");
    EXPECT_EQ(Patterns().Geometry().columns.Visible().size(), 0U);
    EXPECT_EQ(Events().Geometry().columns.Visible().size(), 1U);
    EXPECT_NE(Patterns().grab().toImage(), patterns);
    EXPECT_NE(Events().grab().toImage(), events);
    // Cells of columns without samples can be clicked.
    QTest::mouseClick(&Events(), Qt::LeftButton, {}, FirstCell(Events()) + QPoint(0, 6 * 21));
}

TEST_F(StimulusWindow, AFileIsOpenedFromTheMenu) {
    StartOnLine();
    const std::string path = WriteFile("\"Control\",1,\"E6\"\n");
    ChooseDialog<QFileDialog>("File/Open...",
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    frame = dynamic_cast<CStimulusChild*>(Frame().Area().activeSubWindow());
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(Text("If1"), "E6");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) {
                                  EXPECT_EQ(files.selectedFiles(),
                                            QStringList(QString::fromStdString(path)));
                              });
}

TEST_F(StimulusWindow, AFileOfAnotherTypeOpensNoWindowFromTheMenu) {
    StartOnLine();
    const std::string path = WriteFile("", "\"FileType\",\"Master File\"\n\"Version\",\"1.0\"\n");
    ChooseDialog<QFileDialog>("File/Open...",
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_THAT(Windows(), IsEmpty());
    EXPECT_THAT(prompts.Boxes(), IsEmpty());
}

TEST_F(StimulusWindow, OptionsHelpAndClose) {
    OpenOn("PCIKite");
    Press(View(), "Options");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No options are available."));
    Press(View(), "Help");
    QApplication::processEvents();
    const auto windows = QApplication::topLevelWidgets();
    const bool helped = std::ranges::any_of(windows, [](const QWidget* window) {
        const auto* text = window->findChild<QTextBrowser*>();
        return window->isVisible() && text != nullptr &&
               text->source().toString().contains("stimulus.md");
    });
    EXPECT_TRUE(helped);
    Press(View(), "Close");
    EXPECT_TRUE(RunUntil([&] { return Windows().empty(); }));
    EXPECT_THAT(Functions(), IsEmpty());
}

TEST_F(StimulusWindow, RunsUntilTheBoardHasEnded) {
    OpenOn("PCIKite");
    SetStatus(0x80);
    ClickBar("Go");
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    EXPECT_THAT(Writes(), SizeIs(3));
    ASSERT_TRUE(RunUntil([&] { return Functions() == std::vector<int>{1}; })) << "no poll";
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    SetStatus(0x00);
    EXPECT_TRUE(RunUntil([&] { return frame->RunState() == RunPicture::Stopped; }));
    EXPECT_THAT(Functions(), testing::Not(Contains(stopStimulus)));
    EXPECT_THAT(prompts.Boxes(), IsEmpty());
}

TEST_F(StimulusWindow, StopIsSentInARunAndWithoutOne) {
    OpenOn("PCIKite");
    SetStatus(0x80);
    ClickBar("Go");
    ClickBar("Stop");
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_THAT(Functions(), ElementsAre(startStimulus, stopStimulus));
    ClickBar("Stop");
    EXPECT_THAT(Functions(), ElementsAre(stopStimulus));
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
}

TEST_F(StimulusWindow, AFailedStartLeavesThePicture) {
    OpenOn("PCIKite");
    const auto ignoreStart = [this] {
        line->SetAnswer([this](const Bytes& sent, int baud) {
            return sent == Bytes{2, startStimulus} ? Bytes{} : board.Answer(sent, baud);
        });
    };
    ignoreStart();
    ClickBar("Go");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error sending start stimulus command to analyzer."));
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_THAT(Writes(), SizeIs(3));
    UseBoard();
    SetStatus(0x80);
    ClickBar("Go");
    ignoreStart();
    ClickBar("Go"); // during a run
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
}

TEST_F(StimulusWindow, AStatusThatCannotBeReadStopsTheBoard) {
    OpenOn("PCIKite");
    SetStatus(0x80);
    ClickBar("Go");
    Functions();
    line->SetAnswer([this](const Bytes& sent, int baud) {
        return sent == Bytes{4, 0xA1} ? Bytes{} : board.Answer(sent, baud); // register 929
    });
    EXPECT_TRUE(RunUntil([&] { return frame->RunState() == RunPicture::Stopped; }));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error reading stimulus status from analyzer."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(Functions(), ElementsAre(stopStimulus));
    QTest::qWait(500);
    EXPECT_THAT(prompts.Texts(), SizeIs(1)); // no more polls
}

TEST_F(StimulusWindow, ARefusingBoardIsReportedAtEachStep) {
    OpenOn("PCIKite");
    UseRefusal();
    ClickBar("Go");
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error sending stimulus condition data to analyzer.",
                            "Error sending stimulus condition data to analyzer.",
                            "Error sending stimulus control setup data to analyzer.",
                            "Error sending start stimulus command to analyzer."));
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    prompts.Forget();
    ClickBar("Stop");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error sending stop stimulus command to analyzer."));
    for (const Box& box : prompts.Boxes()) {
        EXPECT_TRUE(box.topmost);
    }
}

TEST_F(StimulusWindow, AnEditTakesEffectWithTheNextGoOfARun) {
    OpenOn("PCIKite");
    SetStatus(0x80);
    ClickBar("Go");
    Writes();
    Menu("Stimulus1", "S7");
    EXPECT_THAT(Writes(), IsEmpty());
    ClickBar("Go");
    EXPECT_EQ(Writes().at(2).bytes.at(0), 0x7F);
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
}

TEST_F(StimulusWindow, ClosingLeavesTheBoardRunning) {
    OpenOn("PCIKite");
    SetStatus(0x80);
    ClickBar("Go");
    Functions();
    Press(View(), "Close");
    EXPECT_TRUE(RunUntil([&] { return Windows().empty(); }));
    QTest::qWait(500);
    EXPECT_THAT(Functions(), IsEmpty());
}

TEST_F(StimulusWindow, WithoutABoardARunTakesOneTick) {
    StartDemo();
    OpenNew();
    ClickBar("Go");
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(RunUntil([&] { return frame->RunState() == RunPicture::Stopped; }));
    EXPECT_GE(timer.elapsed(), 300); // one period of 400 ms
    EXPECT_THAT(prompts.Boxes(), IsEmpty());
}

} // namespace
} // namespace busquill::test
