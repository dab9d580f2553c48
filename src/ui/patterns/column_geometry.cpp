#include "ui/patterns/column_geometry.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <span>

namespace busquill {

namespace {

constexpr int smallestPage = 250;

std::int64_t Sum(std::span<const int> widths) noexcept {
    return std::accumulate(widths.begin(), widths.end(), std::int64_t{0},
                           [](std::int64_t sum, int width) { return sum + std::max(width, 0); });
}

} // namespace

int RowsThatFit(int clientHeight, int rowPitch) noexcept {
    return std::max(clientHeight - tableFirstRow, 0) / rowPitch;
}

QRect TableColumn::Title(int headerLine) const noexcept {
    return Cell(1, headerLine - 1);
}

QRect TableColumn::Cell(int top, int height) const noexcept {
    return {left + 1, top, width - 1, height};
}

std::vector<TableColumn> TableColumns::Visible() const {
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

TableColumn TableColumns::At(std::size_t place) const {
    const std::int64_t before = Sum(std::span(widths).first(place));
    return {place, static_cast<int>(fixedColumn + 1 - offset + before), widths[place]};
}

QRect TableColumns::FixedTitle(int headerLine) const noexcept {
    return {1, 1, fixedColumn - 1, headerLine - 1};
}

int TableColumns::TotalWidth() const noexcept {
    return static_cast<int>(std::min<std::int64_t>(Sum(widths), std::numeric_limits<int>::max()));
}

int TableColumns::Limit() const noexcept {
    return std::max(TotalWidth() - Room(), 0);
}

BarState TableColumns::Bar() const noexcept {
    const int limit = Limit();
    return {limit, std::max(Room(), smallestPage), std::min(offset, limit), limit > 0};
}

int TableColumns::Stepped(int pixels) const noexcept {
    return pixels < 0 ? std::max(offset + pixels, 0) : std::min(offset + pixels, Limit());
}

} // namespace busquill
