#include "ui/analysis/panel_table.h"
#include "ui/analysis/table_place.h"

#include <QScrollBar>
#include <QStringListModel>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

/// A table whose rows are numbers, each the key of its row.
class PlacesInATable : public testing::Test {
protected:
    PlacesInATable() { table.setModel(&model); }

    /// Fills the table with the numbers from 0 on that come before `end`.
    void Fill(int end, int from = 0) {
        place.Remember(table, [this](int row) { return model.stringList()[row].toLongLong(); });
        QStringList numbers;
        for (int number = from; number < end; ++number) {
            numbers << QString::number(number);
        }
        model.setStringList(numbers);
        place.Restore(table, [this](std::int64_t key) {
            return static_cast<int>(model.stringList().indexOf(QString::number(key)));
        });
    }
    void Select(int first, int last) {
        table.setCurrentIndex(model.index(last, 0));
        table.selectionModel()->select(QItemSelection(model.index(first, 0), model.index(last, 0)),
                                       QItemSelectionModel::ClearAndSelect);
    }
    [[nodiscard]] int Top() const { return table.indexAt({0, 0}).row(); }
    [[nodiscard]] int Current() const { return table.currentIndex().row(); }
    [[nodiscard]] qsizetype Selected() const {
        return table.selectionModel()->selectedRows().size();
    }

    QStringListModel model;
    PanelTable table{"Table"};
    TablePlace place;
};

TEST_F(PlacesInATable, RowsAreFoundAgainAmongOtherRows) {
    Fill(50, 10);
    Select(20, 22);
    Fill(60);
    EXPECT_EQ(Current(), 32);
    EXPECT_EQ(Selected(), 3);
}

TEST_F(PlacesInATable, AListAtItsBeginningBeginsWithNewRows) {
    table.resize(200, 200);
    table.show();
    Fill(50, 10);
    Fill(60);
    EXPECT_EQ(Top(), 0);
    Fill(50, 10);
    table.verticalScrollBar()->setValue(5);
    Fill(60);
    EXPECT_EQ(Top(), 15) << "the user has scrolled to it";
}

TEST_F(PlacesInATable, RowsThatComeBackLaterAreFoundThen) {
    Fill(50);
    Select(40, 42);
    Fill(0);
    Fill(10);
    EXPECT_EQ(Current(), -1);
    EXPECT_EQ(Selected(), 0);
    Fill(30);
    Fill(60);
    EXPECT_EQ(Current(), 42);
    EXPECT_EQ(Selected(), 3);
}

TEST_F(PlacesInATable, ARowThatTheUserChoosesMeanwhileTakesTheirPlace) {
    Fill(50);
    Select(40, 42);
    Fill(10);
    Select(5, 5);
    Fill(60);
    EXPECT_EQ(Current(), 5);
    EXPECT_EQ(Selected(), 1);
}

} // namespace
} // namespace busquill::test
