#include "ui/display/state_geometry.h"

#include <algorithm>
#include <limits>

namespace busquill {

int VisibleRows(int clientHeight) noexcept {
    return std::max(0, (clientHeight - stateFirstRow) / stateRowPitch);
}

std::vector<StateColumn> VisibleColumns(std::span<const int> widths, int sampleColumn, int offset,
                                        int clientWidth) {
    std::vector<StateColumn> columns;
    std::int64_t left = std::int64_t{sampleColumn} + 1 - offset;
    for (std::size_t i = 0; i < widths.size() && left < clientWidth; ++i) {
        if (widths[i] < 1) {
            continue;
        }
        if (left + widths[i] > sampleColumn + 1) {
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

int VerticalPage(int visibleRows, std::int64_t rowCount) noexcept {
    return rowCount == 0 ? 0 : static_cast<int>(visibleRows * scrollRange / rowCount);
}

int VerticalMaximum(int page) noexcept {
    return static_cast<int>(std::max<std::int64_t>(scrollRange - std::max(page, 1), 0));
}

int VerticalPosition(std::int64_t topRow, std::int64_t rowCount) noexcept {
    return rowCount == 0 ? 0 : static_cast<int>(topRow * scrollRange / rowCount);
}

std::int64_t RowOfPosition(int position, std::int64_t rowCount) noexcept {
    return position * rowCount / scrollRange;
}

std::int64_t TopRowFor(std::int64_t row, int visibleRows, std::int64_t rowCount) noexcept {
    if (row + visibleRows > rowCount) {
        return std::max<std::int64_t>(rowCount - visibleRows, 0);
    }
    return std::max<std::int64_t>(row, 0);
}

std::int64_t StepTopRow(std::int64_t topRow, std::int64_t rows, int visibleRows,
                        std::int64_t rowCount) noexcept {
    const std::int64_t stepped = topRow + rows;
    return rows < 0 ? std::max<std::int64_t>(stepped, 0)
                    : TopRowFor(stepped, visibleRows, rowCount);
}

std::int64_t FirstToCenter(std::int64_t sample, std::int64_t visible) noexcept {
    const std::int64_t half = visible / 2;
    return sample <= half ? 0 : sample - half;
}

int HorizontalPage(int clientWidth, int sampleColumn) noexcept {
    return std::max(clientWidth - sampleColumn - 1, minimumHorizontalPage);
}

int HorizontalLimit(int columnsWidth, int clientWidth, int sampleColumn) noexcept {
    return std::max(columnsWidth - (clientWidth - sampleColumn - 1), 0);
}

int StepOffset(int offset, int pixels, int limit) noexcept {
    return pixels < 0 ? std::max(offset + pixels, 0) : std::min(offset + pixels, limit);
}

} // namespace busquill
