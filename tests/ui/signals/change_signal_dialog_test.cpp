#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/modal_qt.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "ui/controls/color_button.h"
#include "ui/signals/change_signal_dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ChangeSignal : public testing::Test {
protected:
    explicit ChangeSignal(const std::string& model = "PCIKite-1")
        : board(model, BusPci, 0, dir.Path()) {
        list.BuildFromTables(32, ModeState);
    }

    /// Like a user who chose "ALL" the last time.
    void Open(CSignal* signal, std::uint32_t mode = ModeWaveform) {
        dialog =
            std::make_unique<CChangeSignalDialog>(nullptr, board.tables, nullptr, mode, prompts);
        SetType("ALL");
        dialog =
            std::make_unique<CChangeSignalDialog>(nullptr, board.tables, signal, mode, prompts);
        dialog->show();
    }
    CSignal& Signal(const std::string& rowName) {
        for (const auto& signal : list.All()) {
            if (signal->RowName() == rowName) {
                return *signal;
            }
        }
        throw std::runtime_error("no row " + rowName);
    }
    QComboBox& Box(const char* name) { return *dialog->findChild<QComboBox*>(name); }
    QSpinBox& High() { return *dialog->findChild<QSpinBox*>("High"); }
    QSpinBox& Low() { return *dialog->findChild<QSpinBox*>("Low"); }
    QCheckBox& ShowValues() { return *dialog->findChild<QCheckBox*>(); }
    void SetType(const QString& type) {
        const int index = Box("Type").findText(type);
        Box("Type").setCurrentIndex(index);
        emit Box("Type").activated(index);
    }
    void SetName(const QString& name) {
        const int index = Box("Name").findText(name);
        ASSERT_GE(index, 0) << name.toStdString();
        Box("Name").setCurrentIndex(index);
    }

    const TempDir dir;
    BoardTables board;
    RecordingPrompts prompts;
    CSignalList list{board.tables};
    std::unique_ptr<CChangeSignalDialog> dialog;
};

TEST_F(ChangeSignal, OffersDefinitionsByTheirKind) {
    Open(nullptr);
    EXPECT_EQ(dialog->windowTitle(), "Change Signal");
    const int all = Box("Name").count();
    SetType("BUS");
    const int buses = Box("Name").count();
    EXPECT_GE(Box("Name").findText("AD"), 0);
    EXPECT_LT(Box("Name").findText("COMMAND"), 0);
    SetType("DECODED");
    EXPECT_GE(Box("Name").findText("COMMAND"), 0);
    EXPECT_GE(Box("Name").findText("DELTA"), 0);
    EXPECT_LT(Box("Name").findText("AD"), 0);
    EXPECT_EQ(all, buses + Box("Name").count());
}

TEST_F(ChangeSignal, DefinedIsEmptyAndChangesNothing) {
    Open(&Signal("AD[63:0]"));
    SetType("DEFINED");
    EXPECT_EQ(Box("Name").count(), 0);
    dialog->accept();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(dialog->chosenDef, nullptr);
}

TEST_F(ChangeSignal, TheTypeIsRemembered) {
    Open(nullptr);
    SetType("DECODED");
    CChangeSignalDialog second(nullptr, board.tables, nullptr, ModeWaveform, prompts);
    EXPECT_EQ(second.findChild<QComboBox*>("Type")->currentText(), "DECODED");
}

TEST_F(ChangeSignal, BeginsWithTheCurrentSignal) {
    Open(&Signal("C/BE[7:0]"));
    EXPECT_EQ(Box("Name").currentText(), "C/BE");
    EXPECT_EQ(High().value(), 7);
    EXPECT_EQ(Low().value(), 0);
    Open(&Signal("COMMAND"));
    EXPECT_EQ(Box("Name").currentText(), "COMMAND");
    EXPECT_FALSE(High().isEnabled());
    EXPECT_EQ(High().text().trimmed(), "");
}

TEST_F(ChangeSignal, LinesHaveNoRangeAndShowNoValues) {
    Open(nullptr);
    SetName("AD");
    EXPECT_TRUE(High().isEnabled());
    EXPECT_EQ(High().value(), 63);
    EXPECT_TRUE(ShowValues().isChecked());
    SetName("FRAME");
    EXPECT_FALSE(High().isEnabled());
    EXPECT_FALSE(Low().isEnabled());
    EXPECT_FALSE(ShowValues().isChecked());
    SetName("COMMAND");
    EXPECT_FALSE(High().isEnabled());
    EXPECT_TRUE(ShowValues().isChecked());
}

TEST_F(ChangeSignal, TheArrowsStayWithinTheRange) {
    Open(nullptr);
    SetName("C/BE");
    High().stepUp();
    EXPECT_EQ(High().value(), 7);
    Low().stepDown();
    EXPECT_EQ(Low().value(), 0);
    Low().stepUp();
    EXPECT_EQ(Low().value(), 1);
}

TEST_F(ChangeSignal, AnInvalidRangeKeepsTheDialogOpen) {
    Open(nullptr);
    SetName("C/BE");
    Low().setValue(-1);
    dialog->accept();
    Low().setValue(3);
    High().setValue(8);
    dialog->accept();
    High().setValue(2);
    dialog->accept();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("LSB must be >= 0.", "MSB must be <= 7.", "MSB must be >= LSB."));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->chosenDef, nullptr);
    High().setValue(5);
    dialog->accept();
    ASSERT_NE(dialog->chosenDef, nullptr);
    EXPECT_EQ(dialog->firstBit, 3);
    EXPECT_EQ(dialog->lastBit, 5);
}

TEST_F(ChangeSignal, RangesAcceptAnyTypedNumber) {
    Open(nullptr);
    SetName("C/BE");
    const auto type = [](QSpinBox& field, const QString& text) {
        field.setFocus();
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClicks(&field, text);
    };
    type(High(), "123456");
    EXPECT_EQ(High().value(), 123456);
    Press(*dialog, "OK");
    EXPECT_THAT(prompts.Texts(), ElementsAre("MSB must be <= 7."));
    // An empty field is 0, not its previous number.
    type(High(), "5");
    type(Low(), "3");
    type(Low(), "");
    Press(*dialog, "OK");
    EXPECT_EQ(dialog->firstBit, 0);
    EXPECT_EQ(dialog->lastBit, 5);
    prompts.Forget();
    Open(nullptr);
    SetName("C/BE");
    type(Low(), "3");
    type(High(), "");
    Press(*dialog, "OK");
    EXPECT_THAT(prompts.Texts(), ElementsAre("MSB must be >= LSB."));
}

TEST_F(ChangeSignal, TheSameRangeKeepsTheRowButNotItsAppearance) {
    CSignal& bus = Signal("C/BE[7:0]");
    Open(&bus);
    Box("Radix").setCurrentText("Octal");
    dialog->findChild<ColorButton*>()->SetColor(0x123456);
    dialog->findChild<QCheckBox*>()->setChecked(false);
    dialog->accept();
    EXPECT_EQ(dialog->chosenDef, nullptr);
    EXPECT_EQ(bus.radix, Radix::Octal);
    EXPECT_FALSE(bus.showValue);
    EXPECT_EQ(bus.color, 0x123456U);
    EXPECT_EQ(board.tables.busSignals.FindByName("C/BE")->color, 0x123456U);
    EXPECT_NE(ReadWholeFile(dir.File("BusSignalColors.dat")).find("C/BE 123456"),
              std::string::npos);
}

TEST_F(ChangeSignal, ADecodedSignalsColourIsKeptUnderItsOwnName) {
    Open(&Signal("COMMAND"));
    dialog->findChild<ColorButton*>()->SetColor(0x00FF00);
    dialog->accept();
    EXPECT_EQ(dialog->chosenDef, nullptr) << "the same name";
    EXPECT_EQ(board.tables.decodedSignals.FindByName("COMMAND")->color, 0x00FF00U);
}

TEST_F(ChangeSignal, AnotherSignalIsChosen) {
    Open(&Signal("COMMAND"));
    SetName("FRAME");
    dialog->accept();
    ASSERT_NE(dialog->chosenDef, nullptr);
    EXPECT_EQ(dialog->chosenDef->name, "FRAME");
    Open(nullptr);
    SetName("COMMAND");
    dialog->accept();
    EXPECT_EQ(dialog->chosenDef->name, "COMMAND") << "a new row needs no comparison";
}

TEST_F(ChangeSignal, ATimeRadixBecomesHex) {
    CSignal& bus = Signal("C/BE[7:0]");
    bus.radix = Radix::Time;
    Open(&bus);
    EXPECT_EQ(Box("Radix").currentText(), "Hex");
    dialog->accept();
    EXPECT_EQ(bus.radix, Radix::Hex);
}

TEST_F(ChangeSignal, ARowWithoutAnEntryIsKept) {
    CSignal* blank = list.InsertBlank(&Signal("FRAME"));
    Open(blank);
    EXPECT_EQ(Box("Name").currentIndex(), 0);
    dialog->accept();
    EXPECT_EQ(dialog->chosenDef, nullptr);
    EXPECT_FALSE(blank->showValue);
    // The same holds for a row whose entry the type excludes.
    SetType("BUS");
    CChangeSignalDialog second(nullptr, board.tables, &Signal("COMMAND"), ModeWaveform, prompts);
    EXPECT_EQ(second.findChild<QComboBox*>("Name")->currentText(), "C/BE") << "its lines";
    second.accept();
    EXPECT_EQ(second.chosenDef, nullptr);
}

TEST_F(ChangeSignal, APartOfABusAndAGroupOfLinesAreKeptToo) {
    CSignal* part = list.AddSignal(&Signal("FRAME"), board.tables.busSignals.FindByName("AD"), 32,
                                   8, 15, 0, Radix::Hex, true);
    Signal("FRAME").selected = Signal("IRDY").selected = true;
    list.CollapseSelected();
    for (CSignal* row : {part, &Signal("FRAME,IRDY")}) {
        Open(row);
        dialog->accept();
        EXPECT_EQ(dialog->chosenDef, nullptr) << row->RowName();
    }
    Open(part);
    EXPECT_EQ(High().value(), 63);
    Low().setValue(32);
    dialog->accept();
    ASSERT_NE(dialog->chosenDef, nullptr);
    EXPECT_EQ(dialog->firstBit, 32);
    EXPECT_EQ(dialog->lastBit, 63);
}

TEST_F(ChangeSignal, AChosenEntryReplacesSuchARow) {
    CSignal* blank = list.InsertBlank(&Signal("FRAME"));
    Open(blank);
    High().setValue(7);
    dialog->accept();
    ASSERT_NE(dialog->chosenDef, nullptr);
    EXPECT_EQ(dialog->chosenDef->name, "AD");
    EXPECT_EQ(dialog->lastBit, 7);
    Open(blank);
    SetType("DECODED");
    dialog->accept();
    EXPECT_NE(dialog->chosenDef, nullptr);
}

TEST_F(ChangeSignal, ADecodedLineWithTheNameOfItsLineSelectsItself) {
    list.BuildFromTables(1, ModeEvents);
    CSignal& phase = Signal("ADR/DATA");
    ASSERT_FALSE(phase.grouped);
    Open(&phase, ModeEvents);
    EXPECT_EQ(Box("Name").currentText(), "ADR/DATA");
    dialog->accept();
    EXPECT_EQ(dialog->chosenDef, nullptr);
}

/// A line with a decoded signal.
class ChangeSignalOnLark : public ChangeSignal {
protected:
    ChangeSignalOnLark() : ChangeSignal("VMELark") {}
};

TEST_F(ChangeSignalOnLark, ADecodedLineSelectsItsLineAndOkKeepsTheRow) {
    CSignal& command = Signal("COMMAND");
    ASSERT_FALSE(command.grouped);
    Open(&command);
    EXPECT_EQ(Box("Name").currentText(), "WRITE");
    EXPECT_TRUE(ShowValues().isChecked()) << "as for the row";
    dialog->findChild<ColorButton*>()->SetColor(0x00FF00);
    dialog->accept();
    EXPECT_EQ(dialog->chosenDef, nullptr);
    EXPECT_TRUE(command.showValue);
    EXPECT_EQ(command.color, 0x00FF00U);
    EXPECT_EQ(board.tables.decodedSignals.FindByName("COMMAND")->color, 0x00FF00U);
}

TEST_F(ChangeSignalOnLark, TheLineOfADecodedRowCanBeChosen) {
    Open(&Signal("COMMAND"));
    emit Box("Name").activated(Box("Name").currentIndex()); // the current entry
    dialog->accept();
    ASSERT_NE(dialog->chosenDef, nullptr);
    EXPECT_EQ(dialog->chosenDef->name, "WRITE");
}

} // namespace
} // namespace busquill::test
