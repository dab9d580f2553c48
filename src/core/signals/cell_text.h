/// The text of a cell of the listing, which is the same on the screen, in a file and on a terminal.
#pragma once

#include "link/board_identity.h"
#include "signals/signal.h"

#include <cstdint>
#include <string>

namespace busquill {

class CSignalList;

/// What the time columns of a row show that hangs on other rows than its own. Texts that no column
/// shows may be left empty.
struct RowTimes {
    bool rowsLeftOut = false; // TIME then counts from the row above
    std::string sinceAbove;
    std::string sinceTrigger;
};

struct ListedSample {
    std::size_t index = 0;                // in the signals' data
    std::int64_t number = 0;              // as it is shown
    const SampleRecord* record = nullptr; // null: not known, decoded values are then empty
    RowTimes times;
};

/// The text of a cell, empty where it shows nothing but blanks; DELTA has none, its marks are
/// drawn.
[[nodiscard]] std::string CellText(const BoardTraits& board, const CSignal& signal,
                                   const ListedSample& sample, bool zoom);

/// A time from the trigger to a sample; with `before`, `t` is negative and the text begins with
/// "-", whether it is 0 or not.
[[nodiscard]] std::string FormatTimeSince(std::int64_t t, bool before, bool zoom);

/// The time between two samples as text, empty where the list does not know it.
[[nodiscard]] std::string TimeBetween(std::int64_t a, std::int64_t b, const CSignalList& list,
                                      bool zoom);

} // namespace busquill
