#include "ui/analysis/bookmark_model.h"

#include "capture/trace_document.h"
#include "ui/display/sample_tip.h"
#include "ui/display/trace_view.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <array>

namespace busquill {

namespace {

constexpr std::array columnTitles{"Sample", "Time", "Note"};
static_assert(columnTitles.size() == BookmarkModel::Columns);

} // namespace

void BookmarkModel::Show(CTraceView* view) {
    const bool isSame = view_ == view;
    view_ = view;
    const auto isRow = [](const auto& row, const auto& bookmark) {
        return row.first == bookmark.first && row.second == bookmark.second;
    };
    const Bookmarks none;
    const Bookmarks& all = view == nullptr ? none : view->Trace().GetBookmarks();
    if (!isSame || !std::ranges::equal(rows_, all, isRow)) {
        beginResetModel();
        rows_.assign(all.begin(), all.end());
        endResetModel();
    }
}

std::int64_t BookmarkModel::NumberAt(int row) const {
    return rows_[static_cast<std::size_t>(row)].first;
}

int BookmarkModel::RowOf(std::int64_t number) const {
    const auto found =
        std::ranges::lower_bound(rows_, number, {}, &std::pair<std::int64_t, std::string>::first);
    return std::min(static_cast<int>(found - rows_.begin()), rowCount() - 1);
}

bool BookmarkModel::IsInside(int row) const {
    return view_ != nullptr && view_->Trace().SampleNumbered(NumberAt(row)).has_value();
}

int BookmarkModel::CountOutside() const {
    int count = 0;
    for (int row = 0; row < rowCount(); ++row) {
        count += IsInside(row) ? 0 : 1;
    }
    return count;
}

int BookmarkModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int BookmarkModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Columns;
}

QString BookmarkModel::TimeAt(int row) const {
    if (view_ == nullptr) {
        return {};
    }
    const CTesselDoc& document = view_->Trace();
    const auto sample = document.SampleNumbered(NumberAt(row));
    return sample ? TimeSinceTrigger(document, document.stateList, *sample, false)
                  : "not in the capture";
}

QVariant BookmarkModel::data(const QModelIndex& index, int role) const {
    const QString note =
        QString::fromStdString(rows_[static_cast<std::size_t>(index.row())].second);
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == Sample ? QString::number(NumberAt(index.row()))
               : index.column() == Time ? TimeAt(index.row())
                                        : QString(note).replace('\n', ' ');
    case Qt::EditRole:
        return index.column() == Note ? note : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant((index.column() == Note ? Qt::AlignLeft : Qt::AlignRight) |
                        Qt::AlignVCenter);
    case Qt::ForegroundRole:
        return IsInside(index.row())
                   ? QVariant()
                   : QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
    default:
        return {};
    }
}

QVariant BookmarkModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return columnTitles[static_cast<std::size_t>(section)];
    case Qt::TextAlignmentRole: // as its cells
        return static_cast<int>((section == Note ? Qt::AlignLeft : Qt::AlignRight) |
                                Qt::AlignVCenter);
    default:
        return {};
    }
}

Qt::ItemFlags BookmarkModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == Note ? flags | Qt::ItemIsEditable : flags;
}

bool BookmarkModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || index.column() != Note || view_ == nullptr) {
        return false;
    }
    auto& [number, note] = rows_[static_cast<std::size_t>(index.row())];
    const std::string wanted = value.toString().toStdString();
    if (wanted == note || !view_->Trace().SetBookmark(number, wanted)) {
        return false;
    }
    note = wanted;
    emit dataChanged(index, index);
    return true;
}

} // namespace busquill
