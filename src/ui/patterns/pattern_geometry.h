/// Where the cells of a pattern grid are, without a device or widgets.
#pragma once

#include "ui/patterns/column_geometry.h"

#include <QPoint>
#include <QRect>

#include <cstddef>
#include <optional>

namespace busquill {

constexpr int patternRowPitch = 21;

/// The height that shows `rows` rows.
[[nodiscard]] int HeightOfPatterns(int rows) noexcept;

/// A cell: the row of a pattern, from 0, and the index of a signal in its list.
struct PatternCell {
    int row = 0;
    std::size_t column = 0;
    friend bool operator==(const PatternCell&, const PatternCell&) = default;
};

struct PatternGeometry {
    TableColumns columns;
    int rows = 0;
    int topRow = 0; // the first one that shows
    int clientHeight = 0;

    [[nodiscard]] int VisibleRows() const noexcept;
    /// The largest top row.
    [[nodiscard]] int TopRowLimit() const noexcept;
    /// The top row after a step, up when negative.
    [[nodiscard]] int StepTopRow(int by) const noexcept;

    /// The cell that a click means. A line belongs to the cell at its right.
    [[nodiscard]] std::optional<PatternCell> CellAt(const QPoint& place) const;
    /// The cell without the line at its left, even if it does not show.
    [[nodiscard]] QRect CellRect(const PatternCell& cell) const;
    /// The rectangle of a row's number in the fixed column.
    [[nodiscard]] QRect LabelRect(int row) const noexcept;
    [[nodiscard]] int RowTop(int row) const noexcept;
};

} // namespace busquill
