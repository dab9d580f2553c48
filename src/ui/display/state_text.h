/// Rows of a listing as text, for a spreadsheet.
#pragma once

#include <QString>

#include <cstdint>

namespace busquill {

struct StateFrame;

/// A line of titles and a line for each row, its cells separated by tabs and with the texts that
/// the listing shows: the number of the sample, then the selected columns, or all if none is
/// selected. Columns without texts are left out. The samples of the rows have arrived.
[[nodiscard]] QString RowsAsText(const StateFrame& frame, std::int64_t firstRow,
                                 std::int64_t lastRow);

} // namespace busquill
