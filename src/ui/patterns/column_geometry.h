/// Header, rows and columns of a table window and their scrolling, without a device or widgets.
#pragma once

#include "ui/framework/bar_state.h"

#include <QRect>

#include <cstddef>
#include <vector>

namespace busquill {

constexpr int tableHeaderLine = 18; // y of the line below the header
constexpr int tableFirstRow = 19;   // y of the first row

/// Whole rows that fit below the header.
[[nodiscard]] int RowsThatFit(int clientHeight, int rowPitch) noexcept;

/// A column that shows at least partly, right of the fixed column.
struct TableColumn {
    std::size_t signal = 0; // index in the list of widths
    int left = 0;           // x of the line at its left edge; may lie left of the visible part
    int width = 0;

    /// The rectangle of its title.
    [[nodiscard]] QRect Title(int headerLine = tableHeaderLine) const noexcept;
    /// Its cell in a row, without the line at the left.
    [[nodiscard]] QRect Cell(int top, int height) const noexcept;

    friend bool operator==(const TableColumn&, const TableColumn&) = default;
};

/// The columns of a table window, which scroll right of its fixed column.
///
///   |  fixed column  | column | column | ...
///   0           fixedColumn                clientWidth
struct TableColumns {
    std::vector<int> widths; // a column narrower than 1 is not drawn
    int fixedColumn = 0;     // 0: none
    int offset = 0;
    int clientWidth = 0;

    /// The columns that show, from the left.
    [[nodiscard]] std::vector<TableColumn> Visible() const;
    /// The column at an index, even if it does not show.
    [[nodiscard]] TableColumn At(std::size_t place) const;
    /// The rectangle of the fixed column's title.
    [[nodiscard]] QRect FixedTitle(int headerLine = tableHeaderLine) const noexcept;

    /// Width of all columns together.
    [[nodiscard]] int TotalWidth() const noexcept;
    /// The width available to them.
    [[nodiscard]] int Room() const noexcept { return clientWidth - fixedColumn - 1; }
    /// The largest offset.
    [[nodiscard]] int Limit() const noexcept;
    /// The state of the bar that scrolls them.
    [[nodiscard]] BarState Bar() const noexcept;
    /// The offset after a step, to the left when negative.
    [[nodiscard]] int Stepped(int pixels) const noexcept;
};

} // namespace busquill
