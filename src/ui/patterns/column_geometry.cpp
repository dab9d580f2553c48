#include "ui/patterns/column_geometry.h"

#include <algorithm>
#include <limits>

namespace busquill {

std::vector<TableColumn> VisibleColumns(std::span<const int> widths, int fixedColumn, int offset,
                                        int clientWidth) {
    std::vector<TableColumn> columns;
    std::int64_t left = std::int64_t{fixedColumn} + 1 - offset;
    for (std::size_t i = 0; i < widths.size() && left < clientWidth; ++i) {
        if (widths[i] < 1) {
            continue;
        }
        if (left + widths[i] > fixedColumn + 1) {
            columns.push_back({i, static_cast<int>(left), widths[i]});
        }
        left += widths[i];
    }
    return columns;
}

int TotalWidth(std::span<const int> widths) noexcept {
    std::int64_t total = 0;
    for (const int width : widths) {
        total += std::max(width, 0);
    }
    return static_cast<int>(std::min<std::int64_t>(total, std::numeric_limits<int>::max()));
}

int HorizontalPage(int clientWidth, int fixedColumn) noexcept {
    return std::max(clientWidth - fixedColumn - 1, minimumHorizontalPage);
}

int HorizontalLimit(int columnsWidth, int clientWidth, int fixedColumn) noexcept {
    return std::max(columnsWidth - (clientWidth - fixedColumn - 1), 0);
}

int StepOffset(int offset, int pixels, int limit) noexcept {
    return pixels < 0 ? std::max(offset + pixels, 0) : std::min(offset + pixels, limit);
}

} // namespace busquill
