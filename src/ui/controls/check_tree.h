#pragma once

#include <QTreeWidget>

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace busquill {

/// A row of a check list: a group, a subgroup or a check, by its level from 0.
struct CheckRow {
    int level = 0;
    std::string text;
};

/// A tree of check boxes in the order of its rows. A group or a subgroup whose box the user changes
/// hands its state down to all below it; a check follows its own box. What stands above is left as
/// it is.
class CCheckTree final : public QTreeWidget {
    Q_OBJECT
public:
    explicit CCheckTree(QWidget* parent = nullptr);

    /// All rows, expanded and without a tick. A row that has no group above it is a root.
    void SetRows(std::span<const CheckRow> rows);
    [[nodiscard]] int RowCount() const noexcept { return static_cast<int>(items_.size()); }
    /// The item of a row; it belongs to the tree. Its text and colours may be changed.
    [[nodiscard]] QTreeWidgetItem& Item(int row) const {
        return *items_[static_cast<std::size_t>(row)];
    }

    [[nodiscard]] bool IsChecked(int row) const;
    /// Sets boxes without handing anything down and without a signal.
    void SetChecked(const std::function<bool(int row)>& isChecked);

signals:
    /// The user has changed boxes; all below have followed.
    void ChecksChanged();

private:
    void Changed(const QModelIndex& index);

    std::vector<QTreeWidgetItem*> items_; // by row
    bool setting_ = false;                // boxes change, but not by the user
};

} // namespace busquill
