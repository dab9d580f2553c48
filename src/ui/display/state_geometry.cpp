#include "ui/display/state_geometry.h"

#include "ui/patterns/column_geometry.h"

#include <algorithm>

namespace busquill {

int VisibleRows(int clientHeight) noexcept {
    return RowsThatFit(clientHeight, stateRowPitch);
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

} // namespace busquill
