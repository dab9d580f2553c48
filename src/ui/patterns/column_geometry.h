/// Columns of a table window and their scrolling, without pixels or widgets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

constexpr int minimumHorizontalPage = 250;

/// A column of which something shows right of the fixed column.
struct TableColumn {
    std::size_t signal = 0; // place in the list of widths
    int left = 0;           // x of the line at its left edge; may lie left of what shows
    int width = 0;

    friend bool operator==(const TableColumn&, const TableColumn&) = default;
};

/// The columns that show, from the left. Widths below 1 take no room.
[[nodiscard]] std::vector<TableColumn> VisibleColumns(std::span<const int> widths, int fixedColumn,
                                                      int offset, int clientWidth);
/// Width of all columns together.
[[nodiscard]] int TotalWidth(std::span<const int> widths) noexcept;

/// Page of the horizontal bar, and the largest offset of the columns.
[[nodiscard]] int HorizontalPage(int clientWidth, int fixedColumn) noexcept;
[[nodiscard]] int HorizontalLimit(int columnsWidth, int clientWidth, int fixedColumn) noexcept;
[[nodiscard]] int StepOffset(int offset, int pixels, int limit) noexcept;

} // namespace busquill
