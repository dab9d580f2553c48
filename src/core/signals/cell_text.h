/// The text of a cell of the listing: the same on the screen, in a file and on a terminal.
#pragma once

#include "link/board_identity.h"
#include "signals/signal.h"

#include <cstdint>
#include <string>

namespace busquill {

class CSignalList;

/// Content of a row's time columns that depends on other rows. Texts that no column shows may be
/// left empty.
struct RowTimes {
    bool rowsLeftOut = false; // TIME is then the time since the row above
    std::string sinceAbove;
    std::string sinceTrigger;
};

struct ListedSample {
    std::size_t index = 0;                // in the signals' data
    std::int64_t number = 0;              // as shown to the user
    const SampleRecord* record = nullptr; // null: unknown, decoded values are then empty
    RowTimes times;
};

/// The text of a cell, empty where it would be all blanks, and for DELTA, whose marks are drawn.
[[nodiscard]] std::string CellText(const BoardTraits& board, const CSignal& signal,
                                   const ListedSample& sample, bool zoom);

/// A time from the trigger to a sample. With `before`, `t` is not positive and the text begins with
/// "-", even for 0.
[[nodiscard]] std::string FormatTimeSince(std::int64_t t, bool before, bool zoom);

/// The time between two samples as text; empty where the list has no time.
[[nodiscard]] std::string TimeBetween(std::int64_t a, std::int64_t b, const CSignalList& list,
                                      bool zoom);

} // namespace busquill
