#include "ui/analysis/table_place.h"

#include <QScrollBar>
#include <QTableView>

#include <algorithm>

namespace busquill {

namespace {

constexpr int mostSingleRows = 1000;

} // namespace

void TablePlace::Remember(const QTableView& table,
                          const std::function<std::int64_t(int row)>& keyOf) {
    if (table.model() == nullptr || table.model()->rowCount() == 0) {
        return;
    }
    const QModelIndex current = table.currentIndex();
    const QModelIndex top = table.indexAt({0, 0});
    // A list that was not scrolled begins with its first row, whichever that is.
    top_ = top.row() > 0 ? keyOf(top.row()) : -1;
    if (!current.isValid()) {
        return;
    }
    current_ = keyOf(current.row());
    const int below = current.row() - top.row();
    const bool isVisible =
        below >= 0 && table.visualRect(current).bottom() <= table.viewport()->height();
    currentBelowTop_ = isVisible ? below : -1;
    const QItemSelection selection = table.selectionModel()->selection();
    int rows = 0;
    for (const QItemSelectionRange& range : selection) {
        rows += range.height();
    }
    selected_.clear();
    for (const QItemSelectionRange& range : selection) {
        const int step = rows <= mostSingleRows ? 1 : range.height();
        for (int row = range.top(); row <= range.bottom(); row += step) {
            selected_.emplace_back(keyOf(row), keyOf(row + step - 1));
        }
    }
}

void TablePlace::Restore(QTableView& table,
                         const std::function<int(std::int64_t key)>& rowOf) const {
    const QAbstractItemModel* const model = table.model();
    if (model == nullptr || model->rowCount() == 0) {
        return;
    }
    const auto find = [&](std::int64_t key) { return key < 0 ? -1 : rowOf(key); };
    const int current = find(current_);
    if (current >= 0) {
        table.selectionModel()->setCurrentIndex(model->index(current, 0),
                                                QItemSelectionModel::NoUpdate);
    }
    QItemSelection selection;
    for (const auto& run : selected_) {
        const int first = find(run.first);
        const int last = run.second == run.first ? first : find(run.second);
        if (first >= 0 && last >= first) {
            selection.append(QItemSelectionRange(model->index(first, 0),
                                                 model->index(last, model->columnCount() - 1)));
        }
    }
    table.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    const int top = find(top_);
    if (current >= 0 && currentBelowTop_ >= 0) {
        table.verticalScrollBar()->setValue(current - currentBelowTop_);
    } else if (top >= 0 || top_ < 0) {
        table.verticalScrollBar()->setValue(std::max(top, 0));
    }
}

} // namespace busquill
