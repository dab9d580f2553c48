#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

class QTableView;

namespace busquill {

/// What is selected and shown in a table, so that it is found again among other rows. A row is
/// known by a key that does not depend on the rows before it; keys are not negative.
class TablePlace {
public:
    /// Does nothing while the table has no rows. While it has no current row, what was selected and
    /// current before is kept: it may come back.
    void Remember(const QTableView& table, const std::function<std::int64_t(int row)>& keyOf);
    /// The current row stays where it is in the window, else the first one that shows, unless the
    /// list was at its beginning. `rowOf` is -1 for a key without a row.
    void Restore(QTableView& table, const std::function<int(std::int64_t key)>& rowOf) const;

private:
    /// Ends of runs of selected rows. Up to some number of rows, each is a run of its own, so that
    /// rows that are added between them are not selected.
    std::vector<std::pair<std::int64_t, std::int64_t>> selected_;
    std::int64_t current_ = -1;
    std::int64_t top_ = -1;    // the first row that shows; -1 at the beginning of the list
    int currentBelowTop_ = -1; // rows; -1 if it does not show
};

} // namespace busquill
