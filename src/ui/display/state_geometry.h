/// Rows and scroll arithmetic of the listing, without pixels or widgets.
#pragma once

#include <cstdint>

namespace busquill {

constexpr int stateRowPitch = 15; // 14 of text and 1
constexpr std::int64_t scrollRange = 10000;

/// Whole rows that fit below the header.
[[nodiscard]] int VisibleRows(int clientHeight) noexcept;

/// Page and position of the vertical bar, whose range is 0 to 10000 for any capture.
[[nodiscard]] int VerticalPage(int visibleRows, std::int64_t rowCount) noexcept;
/// The last position of the bar. Every position up to it stands for a row of a capture that has
/// rows; 10000 itself would be the row past the last.
[[nodiscard]] int VerticalMaximum(int page) noexcept;
[[nodiscard]] int VerticalPosition(std::int64_t topRow, std::int64_t rowCount) noexcept;
[[nodiscard]] std::int64_t RowOfPosition(int position, std::int64_t rowCount) noexcept;

/// The top row that shows `row` as high up as the end of the capture allows.
[[nodiscard]] std::int64_t TopRowFor(std::int64_t row, int visibleRows,
                                     std::int64_t rowCount) noexcept;
/// The top row after a step of `rows` down (or up, when negative).
[[nodiscard]] std::int64_t StepTopRow(std::int64_t topRow, std::int64_t rows, int visibleRows,
                                      std::int64_t rowCount) noexcept;
/// The first sample of a view that has `sample` in its centre.
[[nodiscard]] std::int64_t FirstToCenter(std::int64_t sample, std::int64_t visible) noexcept;

} // namespace busquill
