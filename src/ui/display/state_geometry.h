/// Rows and scroll arithmetic of the listing, without pixels or widgets.
#pragma once

#include <cstdint>

namespace busquill {

constexpr int stateRowPitch = 15; // 14 for the text and 1 between rows
constexpr std::int64_t scrollRange = 10000;

/// Whole rows that fit below the header.
[[nodiscard]] int VisibleRows(int clientHeight) noexcept;

/// Page and position of the vertical bar, whose range is 0 to 10000 for any capture.
[[nodiscard]] int VerticalPage(int visibleRows, std::int64_t rowCount) noexcept;
/// The last position of the bar. In a capture that has rows, every position up to it means one of
/// them; 10000 would mean the row after the last.
[[nodiscard]] int VerticalMaximum(int page) noexcept;
[[nodiscard]] int VerticalPosition(std::int64_t topRow, std::int64_t rowCount) noexcept;
[[nodiscard]] std::int64_t RowOfPosition(int position, std::int64_t rowCount) noexcept;

/// The top row with which `row` shows as far up as the end of the capture allows.
[[nodiscard]] std::int64_t TopRowFor(std::int64_t row, int visibleRows,
                                     std::int64_t rowCount) noexcept;
/// The top row after a step of `rows` down, or up when negative.
[[nodiscard]] std::int64_t StepTopRow(std::int64_t topRow, std::int64_t rows, int visibleRows,
                                      std::int64_t rowCount) noexcept;
/// The first sample of a view with `sample` at its centre.
[[nodiscard]] std::int64_t FirstToCenter(std::int64_t sample, std::int64_t visible) noexcept;

} // namespace busquill
