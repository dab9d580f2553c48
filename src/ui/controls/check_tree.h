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

/// A tree of check boxes in the order of its rows. When the user changes the box of a group or a
/// subgroup, all boxes below it take its state; boxes above stay as they are.
class CCheckTree final : public QTreeWidget {
    Q_OBJECT
public:
    explicit CCheckTree(QWidget* parent = nullptr);

    /// Sets all rows, expanded and unticked. A row without a group above it is a root.
    void SetRows(std::span<const CheckRow> rows);
    [[nodiscard]] int RowCount() const noexcept { return static_cast<int>(items_.size()); }
    /// The item of a row; it belongs to the tree. Its text and colours may be changed.
    [[nodiscard]] QTreeWidgetItem& Item(int row) const {
        return *items_[static_cast<std::size_t>(row)];
    }

    [[nodiscard]] bool IsChecked(int row) const;
    /// Sets each row's box alone, and emits no signal.
    void SetChecked(const std::function<bool(int row)>& isChecked);

signals:
    /// The user has changed a box; the boxes below it have been changed too.
    void ChecksChanged();
    /// The user has clicked or pressed a key, whether or not a box has changed by that.
    void Used();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Changed(const QModelIndex& index);

    std::vector<QTreeWidgetItem*> items_; // by row
    bool setting_ = false;                // boxes are being changed by the program
};

} // namespace busquill
