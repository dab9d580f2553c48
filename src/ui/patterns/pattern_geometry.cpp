#include "ui/patterns/pattern_geometry.h"

#include <algorithm>

namespace busquill {

int HeightOfPatterns(int rows) noexcept {
    return tableFirstRow + rows * patternRowPitch;
}

int PatternGeometry::VisibleRows() const noexcept {
    return RowsThatFit(clientHeight, patternRowPitch);
}

int PatternGeometry::TopRowLimit() const noexcept {
    return std::max(rows - VisibleRows(), 0);
}

int PatternGeometry::StepTopRow(int by) const noexcept {
    return std::clamp(topRow + by, 0, TopRowLimit());
}

std::optional<PatternCell> PatternGeometry::CellAt(const QPoint& place) const {
    const int row = topRow + (place.y() - tableFirstRow) / patternRowPitch;
    if (place.y() < tableFirstRow || row >= rows || place.x() <= columns.fixedColumn) {
        return std::nullopt;
    }
    for (const TableColumn& column : columns.Visible()) {
        if (place.x() >= column.left && place.x() < column.left + column.width) {
            return PatternCell{row, column.signal};
        }
    }
    return std::nullopt;
}

QRect PatternGeometry::CellRect(const PatternCell& cell) const {
    return columns.At(cell.column).Cell(RowTop(cell.row), patternRowPitch);
}

QRect PatternGeometry::LabelRect(int row) const noexcept {
    return {0, RowTop(row), columns.fixedColumn, patternRowPitch};
}

int PatternGeometry::RowTop(int row) const noexcept {
    return tableFirstRow + (row - topRow) * patternRowPitch;
}

} // namespace busquill
