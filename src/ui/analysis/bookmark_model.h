#pragma once

#include <QAbstractTableModel>
#include <QPointer>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace busquill {

class CTraceView;

/// The bookmarks of the capture that a view shows: a row each, with sample, time and note.
class BookmarkModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Sample, Time, Note, Columns };

    using QAbstractTableModel::QAbstractTableModel;

    /// Shows the bookmarks of a view's capture as they are now; null: none. The rows are reset only
    /// if they have changed.
    void Show(CTraceView* view);

    [[nodiscard]] std::int64_t NumberAt(int row) const;
    /// The row of a sample's bookmark, or of the next one, or the last row; -1 without rows.
    [[nodiscard]] int RowOf(std::int64_t number) const;
    /// The bookmarks whose samples the capture does not have.
    [[nodiscard]] int CountOutside() const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    [[nodiscard]] bool IsInside(int row) const;
    [[nodiscard]] QString TimeAt(int row) const;

    QPointer<CTraceView> view_; // is gone before its document is
    std::vector<std::pair<std::int64_t, std::string>> rows_;
};

} // namespace busquill
