#include "ui/patterns/column_geometry.h"

#include <gtest/gtest.h>

namespace busquill {
namespace {

TEST(VisibleColumns, AreSideBySideRightOfTheSampleColumn) {
    const std::vector<int> widths = {40, 50, 60};
    const std::vector<TableColumn> expected = {{0, 57, 40}, {1, 97, 50}, {2, 147, 60}};
    EXPECT_EQ((TableColumns{widths, 56, 0, 800}.Visible()), expected);
    EXPECT_EQ((TableColumns{widths}.TotalWidth()), 150);
}

TEST(VisibleColumns, ColumnsWithoutWidthTakeNoSpace) {
    const std::vector<int> widths = {0, 40, -3, 0, 50, 0};
    const std::vector<TableColumn> expected = {{1, 57, 40}, {4, 97, 50}};
    EXPECT_EQ((TableColumns{widths, 56, 0, 800}.Visible()), expected);
    EXPECT_EQ((TableColumns{widths}.TotalWidth()), 90);
}

TEST(VisibleColumns, ScrolledColumnsDisappearAtTheirLastPixel) {
    const std::vector<int> widths = {40, 50};
    const std::vector<TableColumn> both = {{0, 57 - 39, 40}, {1, 97 - 39, 50}};
    const std::vector<TableColumn> second = {{1, 57, 50}};
    EXPECT_EQ((TableColumns{widths, 56, 39, 800}.Visible()), both);
    EXPECT_EQ((TableColumns{widths, 56, 40, 800}.Visible()), second);
    EXPECT_TRUE((TableColumns{widths, 56, 90, 800}.Visible().empty()));
}

TEST(VisibleColumns, EndAtTheRightEdge) {
    const std::vector<int> widths = {40, 50};
    EXPECT_EQ((TableColumns{widths, 56, 0, 98}.Visible().size()), 2U);
    EXPECT_EQ((TableColumns{widths, 56, 0, 97}.Visible().size()), 1U);
    EXPECT_TRUE((TableColumns{widths, 56, 0, 57}.Visible().empty()));
    EXPECT_TRUE((TableColumns{{}, 56, 0, 800}.Visible()).empty());
}

TEST(VisibleColumns, HugeWidthsDoNotOverflow) {
    const int most = 2'147'483'647;
    const std::vector<int> widths = {most, most, most};
    EXPECT_EQ((TableColumns{widths}.TotalWidth()), most);
    EXPECT_EQ((TableColumns{widths, 56, most, 800}.Visible().size()), 1U);
}

TEST(TableColumns, HavePositionsInAndOutOfSight) {
    const TableColumns columns{{40, 0, 50, 60}, 56, 45, 130};
    const std::vector<TableColumn> visible = columns.Visible();
    ASSERT_EQ(visible.size(), 2U);
    for (const TableColumn& column : visible) {
        EXPECT_EQ(columns.At(column.signal), column);
    }
    EXPECT_EQ(columns.At(0), (TableColumn{0, 57 - 45, 40}));
    EXPECT_EQ(columns.At(1), (TableColumn{1, 97 - 45, 0}));
}

TEST(TableColumns, TitlesAndCellsAreRightOfTheLine) {
    const TableColumns columns{{40, 50}, 56, 0, 800};
    EXPECT_EQ(columns.FixedTitle(), QRect(QPoint(1, 1), QPoint(55, 17)));
    EXPECT_EQ(columns.At(0).Title(), QRect(QPoint(58, 1), QPoint(96, 17)));
    EXPECT_EQ(columns.At(1).Title(), QRect(QPoint(98, 1), QPoint(146, 17)));
    EXPECT_EQ(columns.At(1).Cell(19, 21), QRect(QPoint(98, 19), QPoint(146, 39)));
    EXPECT_TRUE((TableColumns{{40}, 0, 0, 800}.FixedTitle().isEmpty()));
}

TEST(RowsThatFit, AreWholeRows) {
    const std::pair<int, int> rows[] = {{-5, 0}, {0, 0},  {19, 0}, {39, 0},
                                        {40, 1}, {60, 1}, {61, 2}};
    for (const auto& [height, count] : rows) {
        EXPECT_EQ(RowsThatFit(height, 21), count) << height;
    }
}

TEST(HorizontalBar, PageAndLimit) {
    EXPECT_EQ((TableColumns{{2000}, 56, 0, 900}.Bar()), (BarState{2000 - 843, 843, 0, true}));
    EXPECT_EQ((TableColumns{{2000}, 56, 7, 200}.Bar()), (BarState{2000 - 143, 250, 7, true}));
    EXPECT_EQ((TableColumns{{500}, 56, 0, 900}.Bar()), (BarState{0, 843, 0, false}));
    EXPECT_EQ((TableColumns{{843}, 56, 0, 900}.Bar().needed), false);
    EXPECT_EQ((TableColumns{{844}, 56, 0, 900}.Bar()), (BarState{1, 843, 0, true}));
    EXPECT_EQ((TableColumns{{844}, 56, 5, 900}.Bar().position), 1) << "as far as it goes";
}

TEST(HorizontalBar, StepsStopAtTheEnds) {
    const auto stepped = [](int offset, int pixels) {
        const TableColumns columns{{943}, 56, offset, 900};
        EXPECT_EQ(columns.Limit(), 100);
        return columns.Stepped(pixels);
    };
    EXPECT_EQ(stepped(0, -1), 0);
    EXPECT_EQ(stepped(99, 843), 100);
    EXPECT_EQ(stepped(50, -60), 0);
    EXPECT_EQ(stepped(50, 1), 51);
}

} // namespace
} // namespace busquill
