#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/modal_qt.h"
#include "support/pattern_grid_qt.h"
#include "support/recording_prompts.h"
#include "support/scroll_bar_qt.h"
#include "ui/framework/painting.h"
#include "ui/patterns/command_dialog.h"
#include "ui/patterns/pattern_cell.h"
#include "ui/patterns/pattern_dialogs.h"
#include "ui/patterns/pattern_edit.h"
#include "ui/patterns/value_dialog.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTimer>
#include <QtTest/QTest>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A grid of two rows over the signals of a pattern.
class PatternGrid : public testing::Test {
protected:
    PatternGrid() {
        list.BuildFromTables(2, ModeEvents);
        grid = std::make_unique<CPatternGrid>(nullptr, prompts);
        grid->SetRowCount(2);
        grid->SetText("EVENT", "E%d:");
        grid->SetList(list);
        grid->SetOwner([this] { ++changes; });
        grid->resize(4000, 80);
        grid->show();
        QApplication::processEvents();
    }
    CSignal& Column(const std::string& name) {
        for (const auto& signal : list.All()) {
            if (signal->VisibleWidth() > 0 && signal->RowName() == name) {
                return *signal;
            }
        }
        throw std::runtime_error("no column " + name);
    }
    /// The middle of a cell.
    QPoint Place(const std::string& name, int row) {
        return CellRect(*grid, list, name, row).center();
    }
    void Click(const std::string& name, int row) {
        QTest::mouseClick(grid.get(), Qt::LeftButton, {}, Place(name, row));
    }
    std::string Text(const std::string& name, int row) { return PatternText(Column(name), row); }
    /// Clicks a cell and calls `act` on the dialog that opens.
    template <class Dialog>
    void ClickAndAnswer(const std::string& name, int row,
                        const std::function<void(Dialog&)>& answer) {
        AnswerDialog<Dialog>([&] { Click(name, row); }, answer);
    }
    /// Clicks a cell and chooses an entry of the menu that opens.
    void ClickAndChoose(const std::string& name, int row, const QString& entry) {
        const QStringList entries = AnswerMenu([&] { Click(name, row); }, entry);
        EXPECT_EQ(entries.filter(entry).size(), 1);
    }

    BoardTables board{"PCIKite-1"};
    RecordingPrompts prompts;
    CSignalList list{board.tables};
    std::unique_ptr<CPatternGrid> grid;
    int changes = 0;
};

TEST_F(PatternGrid, BitsCycleFromAnyToZeroToOne) {
    EXPECT_EQ(Text("FRAME", 1), "X");
    Click("FRAME", 1);
    EXPECT_EQ(Text("FRAME", 1), "0");
    EXPECT_EQ(Text("FRAME", 0), "X") << "in that row";
    Click("FRAME", 1);
    EXPECT_EQ(Text("FRAME", 1), "1");
    Click("FRAME", 1);
    EXPECT_EQ(Text("FRAME", 1), "X");
    EXPECT_FALSE(Column("FRAME").Bit(1));
    EXPECT_EQ(changes, 3);
}

TEST_F(PatternGrid, ADoubleClickIsTwoClicks) {
    // As the system sends it: the second press arrives as a double click.
    const QPoint place = Place("IRDY", 0);
    Click("IRDY", 0);
    QMouseEvent twice(QEvent::MouseButtonDblClick, place, grid->mapToGlobal(place), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(grid.get(), &twice);
    QTest::mouseRelease(grid.get(), Qt::LeftButton, {}, place);
    EXPECT_EQ(Text("IRDY", 0), "1");
}

TEST_F(PatternGrid, EveryColumnWithABitFollows) {
    list.AddSignal(&list[0], board.tables.busSignals.FindByName("FRAME"), 2, 0, 0, 0, Radix::Hex,
                   true);
    grid->SetList(list);
    Click("FRAME", 0); // the new column, which is first
    int known = 0;
    for (const auto& signal : list.All()) {
        known += signal->name == "FRAME" && signal->MaskBit(0) ? 1 : 0;
    }
    EXPECT_EQ(known, 2);
}

TEST_F(PatternGrid, AReleaseWithoutAPressEditsNothing) {
    Click("FRAME", 0);
    QTest::mouseRelease(grid.get(), Qt::LeftButton, {}, Place("IRDY", 0));
    EXPECT_EQ(changes, 1);
}

TEST_F(PatternGrid, BusesOpenTheValueDialog) {
    ClickAndAnswer<CValueDlg>("C/BE[7:0]", 0, [](CValueDlg& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Value");
        auto& bits = *dialog.findChild<CBitEditWnd*>();
        QTest::keyClicks(&bits, "f7");
        QTest::keyClick(&bits, Qt::Key_Return);
    });
    EXPECT_EQ(Text("C/BE[7:0]", 0), "F7");
    EXPECT_EQ(Text("C/BE[7:0]", 1), "XX");
    EXPECT_EQ(changes, 1);
    for (const auto& signal : list.All()) {
        if (signal->dataIndex == 67) {
            EXPECT_FALSE(signal->Bit(0)) << "in each signal with the same bit";
            EXPECT_TRUE(signal->MaskBit(0));
        }
    }
}

TEST_F(PatternGrid, ACancelledValueChangesNothing) {
    ClickAndAnswer<CValueDlg>("C/BE[7:0]", 0, [](CValueDlg& dialog) {
        QTest::keyClicks(dialog.findChild<CBitEditWnd*>(), "12");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_EQ(Text("C/BE[7:0]", 0), "XX");
    EXPECT_EQ(changes, 0);
}

TEST_F(PatternGrid, CommandsOpenTheirDialog) {
    ClickAndAnswer<CCommandDialog>("COMMAND", 1, [](CCommandDialog& dialog) {
        auto& box = *dialog.findChild<QComboBox*>();
        EXPECT_LT(box.findText("DAC-Mem Rd"), 0);
        box.setCurrentText("Mem Rd");
        dialog.accept();
    });
    EXPECT_EQ(Text("COMMAND", 1), "Mem Rd");
    EXPECT_EQ(PatternText(Column("C/BE[7:0]"), 1).back(), '6');
    ClickAndAnswer<CCommandDialog>("COMMAND", 1, [](CCommandDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>()->currentText(), "Mem Rd");
        EXPECT_FALSE(dialog.findChild<QCheckBox*>()->isChecked());
        dialog.findChild<QCheckBox*>()->setChecked(true);
        dialog.accept();
    });
    EXPECT_EQ(Text("COMMAND", 1), "DAC-Mem Rd");
    EXPECT_EQ(Text("C/BE[7:0]", 1), "6D");
    ClickAndAnswer<CCommandDialog>("COMMAND", 1, [](CCommandDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>()->currentText(), "Mem Rd");
        EXPECT_TRUE(dialog.findChild<QCheckBox*>()->isChecked());
    });
    EXPECT_EQ(changes, 2);
}

TEST_F(PatternGrid, ACommandWithoutADualAddressFormOffersNone) {
    ClickAndAnswer<CCommandDialog>("COMMAND", 1, [](CCommandDialog& dialog) {
        auto& box = *dialog.findChild<QComboBox*>();
        auto& dac = *dialog.findChild<QCheckBox*>();
        EXPECT_FALSE(dac.isEnabled()) << "all commands are chosen";
        box.setCurrentText("Mem Wr");
        EXPECT_TRUE(dac.isEnabled());
        dac.setChecked(true);
        box.setCurrentText("Mem Rd Line");
        EXPECT_FALSE(dac.isEnabled());
        dialog.accept();
    });
    EXPECT_EQ(Text("COMMAND", 1), "Mem Rd Line");
}

TEST(CommandDialog, SelectsTheCodeIfTwoHaveOneName) {
    const BoardTables board("PCIKite-1", BusPciX);
    const auto def = board.tables.decodedSignals.FindByName("COMMAND(PCI-X)");
    std::vector<std::size_t> blocks;
    for (std::size_t i = 0; i < def->values.size(); ++i) {
        if (std::string(def->values[i].label) == "Mem Rd Blk") {
            blocks.push_back(i);
        }
    }
    ASSERT_EQ(blocks.size(), 2U);
    for (const std::size_t block : blocks) {
        EXPECT_EQ(CCommandDialog(nullptr, *def, block, true).Chosen(), block);
    }
}

TEST_F(PatternGrid, ACommandWithoutANameSelectsNoneAndOkKeepsIt) {
    ClickAndAnswer<CValueDlg>("C/BE[7:0]", 0, [](CValueDlg& dialog) {
        QTest::keyClicks(dialog.findChild<CBitEditWnd*>(), "12");
        dialog.accept();
    });
    ASSERT_EQ(Text("COMMAND", 0), "") << "a second command without a dual address form";
    ClickAndAnswer<CCommandDialog>("COMMAND", 0, [](CCommandDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>()->currentIndex(), -1);
        EXPECT_EQ(dialog.findChild<QComboBox*>()->currentText(), "");
        EXPECT_FALSE(dialog.findChild<QCheckBox*>()->isEnabled());
        dialog.accept();
    });
    EXPECT_EQ(Text("C/BE[7:0]", 0), "12");
    EXPECT_EQ(changes, 1);
    ClickAndAnswer<CCommandDialog>("COMMAND", 0, [](CCommandDialog& dialog) {
        dialog.findChild<QComboBox*>()->setCurrentText("Mem Rd");
        dialog.accept();
    });
    EXPECT_EQ(Text("COMMAND", 0), "Mem Rd");
}

TEST_F(PatternGrid, OtherDecodedCellsOpenAMenuOfTheirLabels) {
    const auto& values = Column("ADR/DATA").decoded->values;
    ASSERT_GE(values.size(), 2U);
    const char* const label = values[1].label;
    ClickAndChoose("ADR/DATA", 0, label);
    EXPECT_EQ(Text("ADR/DATA", 0), label);
    EXPECT_EQ(changes, 1);
    const QStringList entries = AnswerMenu([&] { Click("ADR/DATA", 0); });
    EXPECT_EQ(entries.filter("* "), QStringList{QString("* ") + label});
    EXPECT_EQ(changes, 1);
}

TEST_F(PatternGrid, TheCellUnderTheMouseIsSunken) {
    const QImage before = grid->grab().toImage();
    QTest::mouseMove(grid.get(), Place("FRAME", 0));
    const QImage hot = grid->grab().toImage();
    EXPECT_NE(hot, before);
    QTest::mouseMove(grid.get(), Place("FRAME", 0) + QPoint(1, 1));
    EXPECT_EQ(grid->grab().toImage(), hot);
    QTest::mouseMove(grid.get(), Place("IRDY", 1));
    EXPECT_NE(grid->grab().toImage(), hot);
}

TEST_F(PatternGrid, AGridSinksNoCellOfAnother) {
    CSignalList others(list.Tables());
    others.BuildFromTables(2, ModeEvents);
    CPatternGrid other(nullptr, prompts);
    other.SetRowCount(2);
    other.SetList(others);
    other.resize(grid->size());
    other.show();
    const QImage before = other.grab().toImage();
    const QImage cold = grid->grab().toImage();
    QTest::mouseMove(grid.get(), Place("FRAME", 1));
    other.Render();
    EXPECT_EQ(other.grab().toImage(), before);
    EXPECT_NE(grid->grab().toImage(), cold);
}

TEST_F(PatternGrid, BelowTheRowsAndInTheLabelsThereAreNoCells) {
    grid->resize(300, 80);
    QApplication::processEvents();
    Column("FRAME").width = 150;
    grid->MoveSignalsTo(CellRect(*grid, list, "FRAME", 0).left());
    const QPoint label = grid->Geometry().LabelRect(0).center();
    ASSERT_TRUE(CellRect(*grid, list, "FRAME", 0).contains(label)) << "extends under the labels";
    QTest::mouseClick(grid.get(), Qt::LeftButton, {}, label);
    QTest::mouseClick(grid.get(), Qt::LeftButton, {}, Place("FRAME", 2));
    QTest::mouseClick(grid.get(), Qt::LeftButton, {}, {Place("FRAME", 0).x(), tableHeaderLine});
    EXPECT_EQ(changes, 0);
}

TEST_F(PatternGrid, TheHeaderSelectsResizesAndOpensTheMenu) {
    const QPoint header = grid->Geometry().columns.At(ColumnPlace(list, "IRDY")).Title().center();
    QTest::mouseClick(grid.get(), Qt::LeftButton, {}, header);
    EXPECT_TRUE(Column("IRDY").selected);
    EXPECT_EQ(changes, 0);
    const QImage selected = grid->grab().toImage();
    grid->StepRows(0); // draws all of it
    EXPECT_EQ(grid->grab().toImage(), selected);
    QTimer::singleShot(0, [] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions()) {
            if (action->text() == "Delete Signal") {
                action->trigger();
            }
        }
        menu->close();
    });
    QTest::mouseClick(grid.get(), Qt::RightButton, {}, header);
    EXPECT_THROW(Column("IRDY"), std::runtime_error);
    EXPECT_EQ(changes, 1);
}

TEST_F(PatternGrid, ScrollsByPixelsAndByWindows) {
    grid->resize(300, 80);
    QApplication::processEvents();
    ASSERT_TRUE(grid->SignalBar().needed);
    grid->StepSignals(true);
    EXPECT_EQ(grid->Offset(), 1);
    grid->PageSignals(true);
    EXPECT_EQ(grid->Offset(), 1 + grid->Geometry().columns.Room());
    grid->MoveSignalsTo(1 << 20);
    EXPECT_EQ(grid->Offset(),
              grid->Geometry().columns.TotalWidth() - grid->Geometry().columns.Room());
    grid->PageSignals(false);
    grid->StepSignals(false);
    grid->MoveSignalsTo(-5);
    EXPECT_EQ(grid->Offset(), 0);
    grid->resize(300, HeightOfPatterns(1) + 5);
    QApplication::processEvents();
    EXPECT_EQ(grid->Geometry().VisibleRows(), 1);
    grid->StepRows(5);
    EXPECT_EQ(grid->Geometry().topRow, 1);
    Click("COMMAND", 5); // there is no such cell
    EXPECT_EQ(changes, 0);
    grid->resize(300, HeightOfPatterns(2));
    QApplication::processEvents();
    EXPECT_EQ(grid->Geometry().topRow, 0);
}

TEST_F(PatternGrid, NarrowedAndDeletedColumnsLeaveNoSpaceAfterThem) {
    grid->resize(300, 80);
    grid->MoveSignalsTo(1 << 20);
    const int end = grid->Offset();
    const TableColumn last = grid->Geometry().columns.Visible().back();
    const QPoint edge(grid->width() - 1, 9);
    list[last.signal].width += 40;
    grid->MoveSignalsTo(1 << 20);
    ASSERT_EQ(grid->Offset(), end + 40);
    QTest::mousePress(grid.get(), Qt::LeftButton, {}, edge);
    QTest::mouseMove(grid.get(), edge - QPoint(40, 0));
    QTest::mouseRelease(grid.get(), Qt::LeftButton, {}, edge - QPoint(40, 0));
    EXPECT_NEAR(grid->Offset(), end, 2);
    EXPECT_EQ(grid->Offset(), grid->Geometry().columns.Limit());
    const int narrowed = grid->Offset();
    QTimer::singleShot(0, [] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions()) {
            if (action->text() == "Delete Signal") {
                action->trigger();
            }
        }
        menu->close();
    });
    QTest::mouseClick(grid.get(), Qt::RightButton, {}, edge - QPoint(20, 0));
    EXPECT_LT(grid->Offset(), narrowed);
    EXPECT_EQ(grid->Offset(), grid->Geometry().columns.Limit());
}

TEST_F(PatternGrid, TheWheelMovesTheRowsAndWithShiftTheColumns) {
    grid->resize(300, HeightOfPatterns(1) + 5); // one row of two
    QApplication::processEvents();
    TurnWheel(*grid, {0, -120});
    EXPECT_EQ(grid->Geometry().topRow, 1);
    EXPECT_EQ(grid->Offset(), 0);
    TurnWheel(*grid, {0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(grid->Geometry().topRow, 1);
    const int notch = grid->Offset();
    EXPECT_GT(notch, 20);
    TurnWheel(*grid, {-60, 0}); // a high-resolution wheel, tilted
    TurnWheel(*grid, {-60, 0});
    EXPECT_EQ(grid->Offset(), 2 * notch);
    TurnWheel(*grid, {0, 240}, Qt::ShiftModifier);
    EXPECT_EQ(grid->Offset(), 0);
    TurnWheel(*grid, {0, 120});
    EXPECT_EQ(grid->Geometry().topRow, 0);
}

TEST_F(PatternGrid, PartlyKnownDigitsShowAsQuestionMarks) {
    CSignal& bus = Column("C/BE[7:0]");
    bus.groupMask[0] = 0x13;
    bus.groupData[0] = 0x01;
    EXPECT_EQ(Text("C/BE[7:0]", 0), "??");
    bus.groupData.clear();
    EXPECT_EQ(Text("C/BE[7:0]", 0), "");
    Click("C/BE[7:0]", 0); // a cell that does not exist cannot be edited
    EXPECT_EQ(changes, 0);
}

TEST(PatternGridOnPciX, DecodedNumbersAreEditedAsValues) {
    BoardTables board("PCIKite-1", BusPciX, 1);
    RecordingPrompts prompts;
    CSignalList list{board.tables};
    list.mode = ModeEvents;
    CSignal* tag = list.AddSignal(nullptr, board.tables.decodedSignals.FindByName("TAG(PCI-X)"), 1,
                                  0, 0, 0, Radix::Hex, true);
    ASSERT_NE(tag, nullptr);
    const std::int32_t lowest = tag->dataIndex;
    const auto lines = board.tables.busSignals.FindByName("AD");
    list.AddSignal(nullptr, lines, 1, 0, 63, 0, Radix::Hex, true);
    CPatternGrid grid(nullptr, prompts);
    grid.SetRowCount(1);
    grid.ShowLabels(false);
    grid.SetList(list);
    grid.resize(600, 60);
    grid.show();
    QApplication::processEvents();
    QTimer::singleShot(0, [] {
        auto* dialog = qobject_cast<CValueDlg*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        auto& bits = *dialog->findChild<CBitEditWnd*>();
        QTest::keyClick(&bits, Qt::Key_End);
        QTest::keyClick(&bits, Qt::Key_Left);
        QTest::keyClicks(&bits, "5");
        dialog->accept();
    });
    QTest::mouseClick(&grid, Qt::LeftButton, {}, FirstCell(grid));
    EXPECT_EQ(PatternText(*tag, 0).back(), '5');
    for (const auto& signal : list.All()) {
        if (signal.get() != tag && signal->dataIndex == lowest) {
            EXPECT_TRUE(signal->MaskBit(0)) << signal->name;
            EXPECT_TRUE(signal->Bit(0));
        }
    }
}

TEST(PatternGridOnVme, CommandsHaveNoDualAddress) {
    BoardTables board("VMEKite-1", BusVme, 0);
    RecordingPrompts prompts;
    CSignalList list{board.tables};
    list.mode = ModeEvents;
    ASSERT_NE(list.AddSignal(nullptr, board.tables.decodedSignals.FindByName("COMMAND"), 1, 0, 0, 0,
                             Radix::Hex, true),
              nullptr);
    CPatternGrid grid(nullptr, prompts);
    grid.SetRowCount(1);
    grid.ShowLabels(false);
    grid.SetList(list);
    grid.resize(300, 60);
    grid.show();
    QApplication::processEvents();
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<CCommandDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_FALSE(dialog->findChild<QCheckBox*>()->isVisible());
        EXPECT_EQ(dialog->findChild<QComboBox*>()->count(),
                  static_cast<int>(list[0].decoded->values.size()));
        dialog->reject();
    });
    QTest::mouseClick(&grid, Qt::LeftButton, {}, FirstCell(grid));
}

TEST(ValueDialog, WritesBackOnOkOnly) {
    Bytes value = {0x34, 0x12};
    Bytes mask = {0xFF, 0xFF};
    for (const bool ok : {false, true}) {
        CValueDlg dialog(nullptr, value, mask, 16, Radix::Hex);
        dialog.show();
        auto& bits = *dialog.findChild<CBitEditWnd*>();
        QTest::keyClicks(&bits, "aX");
        QTest::keyClick(&bits, Qt::Key_End);
        QTest::keyClick(&bits, Qt::Key_Backspace);
        QTest::keyClicks(&bits, "9");
        ok ? dialog.accept() : dialog.reject();
        EXPECT_EQ(value, ok ? (Bytes{0x39, 0xA0}) : (Bytes{0x34, 0x12}));
        EXPECT_EQ(mask, ok ? (Bytes{0xFF, 0xF0}) : (Bytes{0xFF, 0xFF}));
    }
}

TEST(ValueDialog, AClickPlacesTheCaretAndTheRadixCanBeChanged) {
    Bytes value = {0x00, 0x00};
    CValueDlg dialog(nullptr, value, {}, 16, Radix::Hex);
    dialog.show();
    auto& bits = *dialog.findChild<CBitEditWnd*>();
    const int digit =
        QFontMetrics(FontOfCellHeight(16, QFont::Normal, FontFace::Fixed)).horizontalAdvance('0');
    QTest::mouseClick(&bits, Qt::LeftButton, {}, {2 * digit + 2, 10});
    QTest::keyClicks(&bits, "5");
    for (auto* button : dialog.findChildren<QRadioButton*>()) {
        if (button->text() == "&Binary") {
            button->click();
        }
    }
    QTest::keyClicks(&bits, "1");
    dialog.accept();
    EXPECT_EQ(value, (Bytes{0x50, 0x80}));
}

TEST(ValueDialog, ClearEmptiesTheMask) {
    Bytes value = {0x34};
    Bytes mask = {0xFF};
    CValueDlg dialog(nullptr, value, mask, 8, Radix::Hex);
    for (auto* button : dialog.findChildren<QPushButton*>()) {
        if (button->text() == "C&lear") {
            button->click();
        }
    }
    dialog.accept();
    EXPECT_EQ(value, Bytes{0});
    EXPECT_EQ(mask, Bytes{0});
}

TEST(PatternEdit, ItsHintHasSpaceForAllDigits) {
    CPatternEdit edit;
    edit.SetValue(0xDDDDDDDDDDDDDDDD);
    EXPECT_GE(edit.sizeHint().width(), edit.fontMetrics().horizontalAdvance(edit.text()) + 4);
}

TEST(PatternEdit, APressOpensTheDialog) {
    CPatternEdit edit;
    EXPECT_EQ(edit.text(), "00000000 00000000");
    edit.SetWidth(12);
    edit.SetValue(0xABC);
    EXPECT_EQ(edit.text(), "ABC");
    edit.show();
    int opened = 0;
    const auto answer = [&](bool ok) {
        QTimer::singleShot(0, [&opened, ok] {
            auto* dialog = qobject_cast<CValueDlg*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            ++opened;
            QTest::keyClicks(dialog->findChild<CBitEditWnd*>(), "1X");
            ok ? dialog->accept() : dialog->reject();
        });
        QTest::mousePress(&edit, Qt::LeftButton);
    };
    answer(false);
    EXPECT_EQ(edit.Value(), 0xABCU);
    answer(true);
    EXPECT_EQ(edit.Value(), 0x10CU) << "an X clears its digit";
    EXPECT_EQ(edit.text(), "10C");
    QMouseEvent twice(QEvent::MouseButtonDblClick, QPointF(3, 3), edit.mapToGlobal(QPointF(3, 3)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&edit, &twice);
    EXPECT_EQ(opened, 2);
}

class PatternDialogs : public testing::Test {
protected:
    PatternDialogs() { list.BuildFromTables(1, ModeEvents); }
    CSignal& Frame() {
        for (const auto& signal : list.All()) {
            if (signal->name == "FRAME") {
                return *signal;
            }
        }
        throw std::runtime_error("no FRAME");
    }
    BoardTables board{"PCIKite-1"};
    RecordingPrompts prompts;
    CSignalList list{board.tables};
};

TEST_F(PatternDialogs, EditACopyThatOkApplies) {
    list.RemoveAllSignals();
    list.AddSignal(nullptr, board.tables.busSignals.FindByName("FRAME"), 1, 0, 0, 0, Radix::Hex,
                   true);
    for (const bool ok : {false, true}) {
        CSearchPatternDlg dialog(nullptr, list, prompts);
        EXPECT_EQ(dialog.windowTitle(), "Search Pattern");
        dialog.show();
        QApplication::processEvents();
        QTest::mouseClick(&dialog.Grid(), Qt::LeftButton, {}, FirstCell(dialog.Grid()));
        EXPECT_FALSE(Frame().MaskBit(0));
        ok ? dialog.accept() : dialog.reject();
        EXPECT_EQ(Frame().MaskBit(0), ok);
    }
    CFilterPatternDlg filter(nullptr, list, prompts);
    EXPECT_EQ(filter.windowTitle(), "Filter Pattern");
}

TEST_F(PatternDialogs, TheWheelMovesColumnsAndBarIfAllRowsAreVisible) {
    CSearchPatternDlg dialog(nullptr, list, prompts);
    dialog.show();
    QApplication::processEvents();
    auto& bar = *dialog.findChild<QScrollBar*>();
    TurnWheel(dialog.Grid(), {0, -120});
    const int notch = dialog.Grid().Offset();
    EXPECT_GT(notch, 20);
    EXPECT_EQ(bar.value(), notch);
    TurnWheel(dialog.Grid(), {0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(bar.value(), 2 * notch);
    TurnWheel(bar, {0, -120});
    EXPECT_EQ(dialog.Grid().Offset(), 3 * notch);
    EXPECT_EQ(bar.value(), 3 * notch);
    TurnWheel(bar, {0, -120'000});
    EXPECT_EQ(dialog.Grid().Offset(), bar.maximum());
}

TEST_F(PatternDialogs, ClicksOnTheArrowsOfTheBarMoveByAPixel) {
    CSearchPatternDlg dialog(nullptr, list, prompts);
    dialog.show();
    QApplication::processEvents();
    auto& bar = *dialog.findChild<QScrollBar*>();
    ClickArrow(bar, true);
    ClickArrow(bar, true);
    EXPECT_EQ(dialog.Grid().Offset(), 2);
    EXPECT_EQ(bar.value(), 2);
    ClickArrow(bar, false);
    EXPECT_EQ(dialog.Grid().Offset(), 1);
}

TEST_F(PatternDialogs, TheBarScrollsTheColumns) {
    CSearchPatternDlg dialog(nullptr, list, prompts);
    dialog.show();
    QApplication::processEvents();
    auto& bar = *dialog.findChild<QScrollBar*>();
    ASSERT_TRUE(bar.isEnabled());
    bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(dialog.Grid().Offset(), 1);
    bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(dialog.Grid().Offset(),
              std::min(1 + dialog.Grid().Geometry().columns.Room(), bar.maximum()));
    bar.triggerAction(QAbstractSlider::SliderToMaximum);
    EXPECT_EQ(dialog.Grid().Offset(), bar.maximum());
    dialog.resize(6000, 160);
    QApplication::processEvents();
    EXPECT_FALSE(bar.isEnabled());
    EXPECT_EQ(dialog.Grid().Offset(), 0);
}

} // namespace
} // namespace busquill::test
