#pragma once

#include "signals/signal_list.h"
#include "ui/patterns/pattern_grid.h"

#include <stdexcept>
#include <string>

namespace busquill::test {

/// The index in its list of the column with a title.
inline std::size_t ColumnPlace(const CSignalList& list, const std::string& title) {
    for (std::size_t i = 0; i < list.Size(); ++i) {
        if (list[i].VisibleWidth() > 0 && list[i].RowName() == title) {
            return i;
        }
    }
    throw std::runtime_error("no column " + title);
}

/// The rectangle of a cell in the grid of a list, as it is scrolled now.
inline QRect CellRect(const CPatternGrid& grid, const CSignalList& list, const std::string& title,
                      int row) {
    return grid.Geometry().CellRect({row, ColumnPlace(list, title)});
}

/// The middle of the first visible cell.
inline QPoint FirstCell(const CPatternGrid& grid) {
    const PatternGeometry geometry = grid.Geometry();
    const std::size_t column = geometry.columns.Visible().front().signal;
    return geometry.CellRect({geometry.topRow, column}).center();
}

} // namespace busquill::test
