#include "ui/patterns/column_geometry.h"

#include <gtest/gtest.h>

namespace busquill {
namespace {

TEST(VisibleColumns, StandSideBySideRightOfTheSampleColumn) {
    const int widths[] = {40, 50, 60};
    const std::vector<TableColumn> expected = {{0, 57, 40}, {1, 97, 50}, {2, 147, 60}};
    EXPECT_EQ(VisibleColumns(widths, 56, 0, 800), expected);
    EXPECT_EQ(TotalWidth(widths), 150);
}

TEST(VisibleColumns, ThoseWithoutWidthTakeNoRoom) {
    const int widths[] = {0, 40, -3, 0, 50, 0};
    const std::vector<TableColumn> expected = {{1, 57, 40}, {4, 97, 50}};
    EXPECT_EQ(VisibleColumns(widths, 56, 0, 800), expected);
    EXPECT_EQ(TotalWidth(widths), 90);
}

TEST(VisibleColumns, ScrolledColumnsGoAtTheirLastPixel) {
    const int widths[] = {40, 50};
    const std::vector<TableColumn> both = {{0, 57 - 39, 40}, {1, 97 - 39, 50}};
    const std::vector<TableColumn> second = {{1, 57, 50}};
    EXPECT_EQ(VisibleColumns(widths, 56, 39, 800), both);
    EXPECT_EQ(VisibleColumns(widths, 56, 40, 800), second);
    EXPECT_TRUE(VisibleColumns(widths, 56, 90, 800).empty());
}

TEST(VisibleColumns, EndAtTheRightEdge) {
    const int widths[] = {40, 50};
    EXPECT_EQ(VisibleColumns(widths, 56, 0, 98).size(), 2U);
    EXPECT_EQ(VisibleColumns(widths, 56, 0, 97).size(), 1U);
    EXPECT_TRUE(VisibleColumns(widths, 56, 0, 57).empty());
    EXPECT_TRUE(VisibleColumns({}, 56, 0, 800).empty());
}

TEST(VisibleColumns, HugeWidthsDoNotOverflow) {
    const int most = 2'147'483'647;
    const int widths[] = {most, most, most};
    EXPECT_EQ(TotalWidth(widths), most);
    EXPECT_EQ(VisibleColumns(widths, 56, most, 800).size(), 1U);
}

TEST(HorizontalBar, PageAndLimit) {
    EXPECT_EQ(HorizontalPage(900, 56), 843);
    EXPECT_EQ(HorizontalPage(200, 56), 250);
    EXPECT_EQ(HorizontalLimit(2000, 900, 56), 2000 - 843);
    EXPECT_EQ(HorizontalLimit(500, 900, 56), 0);
    EXPECT_EQ(StepOffset(0, -1, 100), 0);
    EXPECT_EQ(StepOffset(99, 843, 100), 100);
    EXPECT_EQ(StepOffset(50, -60, 100), 0);
    EXPECT_EQ(StepOffset(50, 1, 100), 51);
}

} // namespace
} // namespace busquill
