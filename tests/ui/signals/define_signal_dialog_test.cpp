#include "support/board_tables.h"
#include "support/scroll_bar_qt.h"
#include "ui/signals/define_signal_dialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QListWidget>
#include <QScrollBar>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class DefineSignal : public testing::Test {
protected:
    BoardTables board{"PCIKite-1"};
};

TEST_F(DefineSignal, HasAColumnForEachBusDefinition) {
    const auto& defs = board.tables.busSignals.Defs();
    const auto columns = LayoutColumns(defs, 7);
    ASSERT_EQ(columns.size(), defs.size() + 1);
    EXPECT_EQ(columns[0], (LayoutColumn{"Mnemonic", 0, 64}));
    int left = 67;
    for (std::size_t i = 0; i < defs.size(); ++i) {
        EXPECT_EQ(columns[i + 1].left, left) << columns[i + 1].text;
        left += columns[i + 1].width + 3;
    }
    const auto of = [&](const std::string& text) {
        return *std::find_if(columns.begin(), columns.end(),
                             [&](const auto& column) { return column.text == text; });
    };
    EXPECT_EQ(of("AD[63:0]").width, 16 * 7) << "four bits per character";
    EXPECT_EQ(of("C/BE[7:0]").width, 8 * 7);
    EXPECT_EQ(of("FRAME").width, 7);
}

TEST_F(DefineSignal, FifteenBitsTakeFifteenCharactersAndSixteenTakeFour) {
    auto narrow = std::make_shared<CBusSignalDef>();
    narrow->name = "N";
    narrow->lastPosition = 14;
    auto wide = std::make_shared<CBusSignalDef>();
    wide->name = "W";
    wide->lastPosition = 15;
    const auto columns = LayoutColumns(std::array{narrow, wide}, 10);
    EXPECT_EQ(columns[1].width, 150);
    EXPECT_EQ(columns[2].width, 40);
    EXPECT_EQ(columns[2].text, "W[15:0]");
    wide->lastPosition = 17;
    EXPECT_EQ(LayoutColumns(std::array{wide}, 10)[1].width, 50) << "and the last one for two bits";
}

TEST_F(DefineSignal, ScrollsFromTheFirstToTheLastRow) {
    CDefineSignalDialog dialog(nullptr, board.tables);
    EXPECT_EQ(dialog.windowTitle(), "Define Signal");
    EXPECT_EQ(dialog.findChild<QListWidget*>()->count(), 1);
    EXPECT_EQ(dialog.findChild<QListWidget*>()->item(0)->text(), "<New Signal>");
    dialog.show();
    auto* table = dialog.findChild<LayoutTable*>();
    QScrollBar* bar = nullptr;
    for (auto* each : dialog.findChildren<QScrollBar*>()) {
        bar = each->pageStep() == 10 && each->maximum() == 127 ? each : bar;
    }
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->minimum(), 0);
    const QImage before = table->grab().toImage();
    bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(table->TopRow(), 11);
    EXPECT_NE(table->grab().toImage(), before);
    bar->setValue(127);
    EXPECT_EQ(table->TopRow(), 127);
}

TEST_F(DefineSignal, TheWheelMovesTheRowsAndWithShiftTheColumns) {
    CDefineSignalDialog dialog(nullptr, board.tables);
    dialog.resize(500, 380);
    dialog.show();
    auto& table = *dialog.findChild<LayoutTable*>();
    TurnWheel(table, {0, -240});
    EXPECT_EQ(table.TopRow(), 2);
    TurnWheel(table, {0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(table.TopRow(), 2);
    EXPECT_LT(table.x(), -20);
    TurnWheel(table, {0, 1200}, Qt::ShiftModifier);
    TurnWheel(table, {0, 1200});
    EXPECT_EQ(table.x(), 0);
    EXPECT_EQ(table.TopRow(), 0);
}

TEST_F(DefineSignal, OkOnlyClosesIt) {
    CDefineSignalDialog dialog(nullptr, board.tables);
    dialog.show();
    for (auto* button : dialog.findChildren<QAbstractButton*>()) {
        if (button->text().remove('&') == "Ok") {
            button->click();
        }
    }
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.isVisible());
}

} // namespace
} // namespace busquill::test
