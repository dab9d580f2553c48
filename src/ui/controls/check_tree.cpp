#include "ui/controls/check_tree.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include <algorithm>

namespace busquill {

namespace {

void HandDown(QTreeWidgetItem& item, Qt::CheckState state) {
    for (int i = 0; i < item.childCount(); ++i) {
        item.child(i)->setCheckState(0, state);
        HandDown(*item.child(i), state);
    }
}

} // namespace

CCheckTree::CCheckTree(QWidget* parent) : QTreeWidget(parent) {
    header()->hide();
    setColumnCount(1);
    setUniformRowHeights(true);
    connect(model(), &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& /*last*/, const QList<int>& roles) {
                if (!setting_ && roles.contains(Qt::CheckStateRole)) {
                    Changed(first);
                }
            });
}

void CCheckTree::SetRows(std::span<const CheckRow> rows) {
    const QScopedValueRollback setting(setting_, true);
    clear();
    items_.clear();
    std::vector<QTreeWidgetItem*> above; // the last item of each level
    for (const CheckRow& row : rows) {
        const auto level = std::min(static_cast<std::size_t>(row.level), above.size());
        above.resize(level);
        auto* item = level == 0 ? new QTreeWidgetItem(this) : new QTreeWidgetItem(above.back());
        item->setText(0, QString::fromStdString(row.text));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(0, Qt::Unchecked);
        above.push_back(item);
        items_.push_back(item);
    }
    expandAll();
    if (!items_.empty()) {
        scrollToItem(items_.front());
    }
}

bool CCheckTree::IsChecked(int row) const {
    return Item(row).checkState(0) == Qt::Checked;
}

void CCheckTree::SetChecked(const std::function<bool(int row)>& isChecked) {
    const QScopedValueRollback setting(setting_, true);
    for (int row = 0; row < RowCount(); ++row) {
        Item(row).setCheckState(0, isChecked(row) ? Qt::Checked : Qt::Unchecked);
    }
}

void CCheckTree::mouseReleaseEvent(QMouseEvent* event) {
    QTreeWidget::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton) {
        emit Used();
    }
}

void CCheckTree::keyPressEvent(QKeyEvent* event) {
    QTreeWidget::keyPressEvent(event);
    emit Used();
}

void CCheckTree::Changed(const QModelIndex& index) {
    {
        const QScopedValueRollback setting(setting_, true);
        QTreeWidgetItem& item = *itemFromIndex(index);
        HandDown(item, item.checkState(0));
    }
    emit ChecksChanged();
}

} // namespace busquill
