#include "ui/patterns/pattern_geometry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

namespace busquill {

static void PrintTo(const PatternCell& cell, std::ostream* out) {
    *out << "row " << cell.row << " column " << cell.column;
}

namespace {

/// Three columns of 40, 50 and 60 pixels after labels of 63, and four rows, all visible. The lines
/// are at 64, 104 and 154; the rows begin at 19, 40, 61 and 82.
PatternGeometry Labelled() {
    return {{{40, 0, 50, 60}, 63, 0, 300}, 4, 0, 120};
}

TEST(PatternGeometry, ACellIsHitFromItsFirstPixelToItsLast) {
    const PatternGeometry grid = Labelled();
    const QRect cell = grid.CellRect({2, 2});
    EXPECT_EQ(cell, QRect(QPoint(105, 61), QPoint(153, 81)));
    for (const QPoint corner :
         {cell.topLeft(), cell.topRight(), cell.bottomLeft(), cell.bottomRight()}) {
        EXPECT_EQ(grid.CellAt(corner), (PatternCell{2, 2})) << corner.x() << "," << corner.y();
    }
    EXPECT_EQ(grid.CellAt({104, 61}), (PatternCell{2, 2})) << "the line to its left belongs to it";
    EXPECT_EQ(grid.CellAt({103, 61}), (PatternCell{2, 0}));
    EXPECT_EQ(grid.CellAt({154, 81}), (PatternCell{2, 3}));
    EXPECT_EQ(grid.CellAt({120, 60}), (PatternCell{1, 2}));
    EXPECT_EQ(grid.CellAt({120, 82}), (PatternCell{3, 2}));
}

TEST(PatternGeometry, HeaderLabelsAndTheAreaAfterTheCellsHaveNoCell) {
    const PatternGeometry grid = Labelled();
    EXPECT_EQ(grid.CellAt({64, 19}), (PatternCell{0, 0})) << "the first pixel";
    EXPECT_EQ(grid.CellAt({64, 18}), std::nullopt) << "the line below the header";
    EXPECT_EQ(grid.CellAt({64, 0}), std::nullopt);
    EXPECT_EQ(grid.CellAt({64, -30}), std::nullopt);
    EXPECT_EQ(grid.CellAt({63, 19}), std::nullopt) << "the line after the labels";
    EXPECT_EQ(grid.CellAt({0, 19}), std::nullopt);
    EXPECT_EQ(grid.CellAt({213, 102}), (PatternCell{3, 3})) << "the last pixel";
    EXPECT_EQ(grid.CellAt({214, 102}), std::nullopt);
    EXPECT_EQ(grid.CellAt({213, 103}), std::nullopt);
}

TEST(PatternGeometry, WithoutLabelsTheCellsBeginAtTheEdge) {
    PatternGeometry grid = Labelled();
    grid.columns.fixedColumn = 0;
    EXPECT_EQ(grid.CellAt({1, 19}), (PatternCell{0, 0}));
    EXPECT_EQ(grid.CellAt({0, 19}), std::nullopt) << "the edge is not in a cell";
    EXPECT_EQ(grid.CellRect({0, 0}), QRect(QPoint(2, 19), QPoint(40, 39)));
    EXPECT_TRUE(grid.LabelRect(0).isEmpty());
}

TEST(PatternGeometry, LabelsAreInTheirRows) {
    PatternGeometry grid = Labelled();
    EXPECT_EQ(grid.LabelRect(0), QRect(QPoint(0, 19), QPoint(62, 39)));
    EXPECT_EQ(grid.LabelRect(3), QRect(QPoint(0, 82), QPoint(62, 102)));
    grid.topRow = 2;
    EXPECT_EQ(grid.LabelRect(3).top(), grid.CellRect({3, 0}).top());
}

TEST(PatternGeometry, ScrolledCellsMoveUnderHeaderAndLabels) {
    PatternGeometry grid = Labelled();
    grid.topRow = 2;
    grid.columns.offset = 45;
    EXPECT_EQ(grid.CellAt({64, 19}), (PatternCell{2, 2})) << "the first visible row and column";
    EXPECT_EQ(grid.CellRect({2, 2}).topLeft(), QPoint(60, 19)) << "partly under the labels";
    EXPECT_EQ(grid.CellAt({63, 19}), std::nullopt) << "the line of the labels hides the rest";
    EXPECT_EQ(grid.CellRect({1, 2}).bottom(), 18) << "under the header";
    EXPECT_EQ(grid.CellRect({0, 0}), QRect(QPoint(20, -23), QPoint(58, -3)));
    EXPECT_EQ(grid.CellAt({64, 60}), (PatternCell{3, 2}));
    EXPECT_EQ(grid.CellAt({64, 61}), std::nullopt) << "there is no fifth row";
}

TEST(PatternGeometry, NoRowsAndNoColumnsHaveNoCells) {
    PatternGeometry grid = Labelled();
    grid.rows = 0;
    EXPECT_EQ(grid.CellAt({64, 19}), std::nullopt);
    EXPECT_EQ(grid.TopRowLimit(), 0);
    EXPECT_EQ(grid.StepTopRow(1), 0);
    grid = Labelled();
    for (const std::vector<int>& none : {std::vector<int>(), std::vector<int>{0, -4}}) {
        grid.columns.widths = none;
        EXPECT_EQ(grid.CellAt({64, 19}), std::nullopt);
        EXPECT_EQ(grid.columns.Limit(), 0);
    }
    EXPECT_EQ(PatternGeometry().CellAt({1, 19}), std::nullopt);
}

TEST(PatternGeometry, RowsScrollUntilTheLastIsWhollyVisible) {
    PatternGeometry grid = Labelled();
    const std::pair<int, int> limits[] = {{0, 4},   {39, 4},  {40, 3}, {60, 3},
                                          {102, 1}, {103, 0}, {900, 0}};
    for (const auto& [height, limit] : limits) {
        grid.clientHeight = height;
        EXPECT_EQ(grid.TopRowLimit(), limit) << height;
    }
    grid.clientHeight = 61; // two rows
    EXPECT_EQ(grid.VisibleRows(), 2);
    EXPECT_EQ(grid.StepTopRow(1), 1);
    EXPECT_EQ(grid.StepTopRow(9), 2);
    EXPECT_EQ(grid.StepTopRow(-1), 0);
    grid.topRow = 2;
    EXPECT_EQ(grid.StepTopRow(-1), 1);
    EXPECT_EQ(grid.StepTopRow(1), 2);
}

TEST(PatternGeometry, TheHeightOfANumberOfRowsShowsThem) {
    for (const int rows : {0, 1, 4, 15}) {
        PatternGeometry grid = Labelled();
        grid.clientHeight = HeightOfPatterns(rows);
        EXPECT_EQ(grid.VisibleRows(), rows);
        --grid.clientHeight;
        EXPECT_EQ(grid.VisibleRows(), std::max(rows - 1, 0));
    }
}

TEST(PatternGeometry, APointIsInTheCellThatItHits) {
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto upTo = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    int hits = 0;
    for (int i = 0; i < 2000; ++i) {
        PatternGeometry grid{{{}, upTo(80), upTo(120), 100 + upTo(300)}, upTo(9), 0, upTo(200)};
        for (int column = upTo(6); column > 0; --column) {
            grid.columns.widths.push_back(upTo(90) - 10);
        }
        grid.topRow = upTo(grid.TopRowLimit());
        const QPoint place(upTo(grid.columns.clientWidth), upTo(grid.clientHeight));
        const auto cell = grid.CellAt(place);
        if (cell) {
            ++hits;
            EXPECT_TRUE(grid.CellRect(*cell).adjusted(-1, 0, 0, 0).contains(place));
            EXPECT_GE(cell->row, grid.topRow);
            EXPECT_LT(cell->row, grid.rows);
        }
        for (int row = 0; row < grid.rows && !cell; ++row) {
            for (const TableColumn& column : grid.columns.Visible()) {
                const QRect rect = grid.CellRect({row, column.signal});
                EXPECT_FALSE(rect.contains(place) && place.x() > grid.columns.fixedColumn &&
                             place.y() >= tableFirstRow);
            }
        }
    }
    EXPECT_GT(hits, 100);
}

} // namespace
} // namespace busquill
