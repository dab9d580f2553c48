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

/// A column of which something shows right of the fixed column.
struct TableColumn {
    std::size_t signal = 0; // place in the list of widths
    int left = 0;           // x of the line at its left edge; may lie left of what shows
    int width = 0;

    /// Where its title stands.
    [[nodiscard]] QRect Title() const noexcept;
    /// What is right of its line in a row.
    [[nodiscard]] QRect Cell(int top, int height) const noexcept;

    friend bool operator==(const TableColumn&, const TableColumn&) = default;
};

/// The columns of a table window, which scroll right of its fixed column.
///
///   |  fixed column  | column | column | ...
///   0           fixedColumn                clientWidth
struct TableColumns {
    std::vector<int> widths; // below 1 takes no room
    int fixedColumn = 0;     // 0 where there is none
    int offset = 0;
    int clientWidth = 0;

    /// Those that show, from the left.
    [[nodiscard]] std::vector<TableColumn> Visible() const;
    /// One by its place, also where it does not show.
    [[nodiscard]] TableColumn At(std::size_t place) const;
    /// Where the title of the fixed column stands.
    [[nodiscard]] QRect FixedTitle() const noexcept;

    /// Width of all columns together.
    [[nodiscard]] int TotalWidth() const noexcept;
    /// The width in which they show.
    [[nodiscard]] int Room() const noexcept { return clientWidth - fixedColumn - 1; }
    /// The largest offset.
    [[nodiscard]] int Limit() const noexcept;
    /// The bar that moves them.
    [[nodiscard]] BarState Bar() const noexcept;
    /// The offset after a step, to the left when negative.
    [[nodiscard]] int Stepped(int pixels) const noexcept;
};

} // namespace busquill
