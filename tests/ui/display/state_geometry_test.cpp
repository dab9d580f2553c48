#include "ui/display/state_geometry.h"

#include <gtest/gtest.h>

namespace busquill {
namespace {

TEST(VisibleRows, WholeRowsBelowTheHeader) {
    const std::pair<int, int> rows[] = {{0, 0},  {19, 0}, {33, 0},  {34, 1},
                                        {48, 1}, {49, 2}, {600, 38}};
    for (const auto& [height, count] : rows) {
        EXPECT_EQ(VisibleRows(height), count) << height;
    }
}

TEST(VerticalBar, EveryPositionIsARow) {
    EXPECT_EQ(VerticalMaximum(380000), 0);
    EXPECT_EQ(VerticalMaximum(10000), 0);
    EXPECT_EQ(VerticalMaximum(5000), 5000);
    EXPECT_EQ(VerticalMaximum(1), 9999);
    EXPECT_EQ(VerticalMaximum(0), 9999);
    for (const std::int64_t rows : {1LL, 2LL, 39LL, 1'000'000LL, 30'000'000'000LL}) {
        EXPECT_LT(RowOfPosition(VerticalMaximum(VerticalPage(38, rows)), rows), rows);
    }
}

TEST(VerticalBar, PageIsTheVisibleShareOfTenThousand) {
    EXPECT_EQ(VerticalPage(38, 0), 0);
    EXPECT_EQ(VerticalPage(38, 38), 10000);
    EXPECT_EQ(VerticalPage(38, 1'000'000), 0);
    EXPECT_EQ(VerticalPage(50, 100), 5000);
    EXPECT_EQ(VerticalPage(38, 1), 380000);
    EXPECT_EQ(VerticalPage(300'000, 30'000'000'000), 0);
}

TEST(VerticalBar, PositionsAreValidForAnyCapture) {
    const std::int64_t many = 30'000'000'000;
    EXPECT_EQ(VerticalPosition(0, 0), 0);
    EXPECT_EQ(VerticalPosition(many / 2, many), 5000);
    EXPECT_EQ(RowOfPosition(5000, many), many / 2);
    EXPECT_EQ(RowOfPosition(9999, 1'000'000), 999'900);
    EXPECT_EQ(VerticalPosition(999'999, 1'000'000), 9999);
    EXPECT_EQ(RowOfPosition(10000, 0), 0);
}

TEST(VerticalBar, EveryPositionSurvivesARoundTrip) {
    for (const std::int64_t rows : {10'000, 12'345, 1'000'000, 33'554'432}) {
        for (int position = 0; position < 10000; position += 7) {
            const int back = VerticalPosition(RowOfPosition(position, rows), rows);
            EXPECT_GE(back, position - 1) << rows;
            EXPECT_LE(back, position) << rows;
        }
    }
}

TEST(TopRowFor, StopsWhereTheLastRowIsAtTheBottom) {
    EXPECT_EQ(TopRowFor(50, 10, 100), 50);
    EXPECT_EQ(TopRowFor(95, 10, 100), 90);
    EXPECT_EQ(TopRowFor(90, 10, 100), 90);
    EXPECT_EQ(TopRowFor(3, 10, 5), 0);
    EXPECT_EQ(TopRowFor(0, 10, 0), 0);
    EXPECT_EQ(TopRowFor(0, 10, 1), 0);
    EXPECT_EQ(TopRowFor(0, 0, 1), 0);
    EXPECT_EQ(TopRowFor(-1, 10, 100), 0);
    EXPECT_EQ(TopRowFor(29'999'999'999, 38, 30'000'000'000), 29'999'999'962);
}

TEST(StepTopRow, StopsAtBothEnds) {
    EXPECT_EQ(StepTopRow(0, -1, 10, 100), 0);
    EXPECT_EQ(StepTopRow(3, -10, 10, 100), 0);
    EXPECT_EQ(StepTopRow(5, 1, 10, 100), 6);
    EXPECT_EQ(StepTopRow(89, 10, 10, 100), 90);
    EXPECT_EQ(StepTopRow(0, 1, 10, 5), 0);
    EXPECT_EQ(StepTopRow(0, 1, 10, 10), 0);
}

TEST(FirstToCenter, StopsAtTheStart) {
    EXPECT_EQ(FirstToCenter(0, 11), 0);
    EXPECT_EQ(FirstToCenter(5, 11), 0);
    EXPECT_EQ(FirstToCenter(6, 11), 1);
    EXPECT_EQ(FirstToCenter(100, 10), 95);
}

} // namespace
} // namespace busquill
