#include "ui/analysis/transaction_columns.h"

#include "analysis/bus_traffic.h"
#include "platform/settings.h"
#include "ui/analysis/panel_table.h"
#include "ui/analysis/transaction_model.h"

#include <QAction>
#include <QFontDatabase>
#include <QHeaderView>
#include <QMenu>
#include <QSignalBlocker>
#include <QStyle>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace busquill {

namespace {

constexpr const char* columnsKey = "Columns";
constexpr const char* hiddenKey = "HiddenColumns";

/// A text as long as most in a column.
QString SampleText(TransactionField field, bool hasClock) {
    switch (field) {
    case TransactionField::Command:
        return hasClock ? "DAC-Mem Wr & Inv" : "A32 NON PRVL DATA Wr";
    case TransactionField::Address:
        return "00000000FEBF0380";
    case TransactionField::End:
        return "disconnect-without-data";
    case TransactionField::Data:
        return "00000000 00000000 00000000 00000000 ...";
    case TransactionField::Bytes:
    case TransactionField::Wait:
    case TransactionField::Words:
    case TransactionField::Tag:
        return "00000";
    default:
        return "-0000000";
    }
}

int ColumnOf(TransactionField field) {
    const auto columns = FieldColumns();
    const auto found = std::ranges::find(columns, field, &FieldColumn::field);
    return static_cast<int>(found - columns.begin());
}

} // namespace

TransactionColumns::TransactionColumns(PanelTable& table, Settings& settings)
    : QObject(&table), table_(table), settings_(settings) {
    QHeaderView& header = *table.horizontalHeader();
    header.setSectionsMovable(true);
    header.setSectionsClickable(true);
    header.setSortIndicatorShown(true);
    header.setSortIndicatorClearable(true);
    header.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&header, &QHeaderView::sortIndicatorChanged, this, &TransactionColumns::SortBy);
    connect(&header, &QHeaderView::customContextMenuRequested, this,
            [this, &header](const QPoint& place) { Choose(header.mapToGlobal(place)); });
}

TransactionModel* TransactionColumns::Model() const {
    return static_cast<TransactionModel*>(table_.model());
}

void TransactionColumns::Show() {
    const TransactionModel& model = *Model();
    QHeaderView& header = *table_.horizontalHeader();
    const QSignalBlocker quiet(header);
    const std::string stored = settings_.GetProfileString(transactionSettings, columnsKey, "");
    const bool isRestored =
        header.restoreState(QByteArray::fromBase64(QByteArray::fromStdString(stored)));
    const QStringList hidden = Hidden();
    for (int column = 0; column < model.columnCount(); ++column) {
        const char* const title = FieldColumns()[static_cast<std::size_t>(column)].title;
        table_.setColumnHidden(column, !model.HasColumn(column) || hidden.contains(title));
        if (!isRestored) {
            table_.setColumnWidth(column, UsualWidth(column));
        }
    }
    const TransactionQuery& query = model.Query();
    const bool isInOrder = query.sortBy == TransactionField::Number && !query.descending;
    header.setSortIndicator(isInOrder ? -1 : ColumnOf(query.sortBy),
                            query.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

int TransactionColumns::UsualWidth(int column) const {
    constexpr int margin = 10;
    const int arrow = table_.style()->pixelMetric(QStyle::PM_HeaderMarkSize);
    const FieldColumn& shown = FieldColumns()[static_cast<std::size_t>(column)];
    const QFontMetrics text(shown.field == TransactionField::Address
                                ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                                : table_.font());
    return margin +
           std::max(
               text.horizontalAdvance(SampleText(shown.field, Model()->Traffic() == nullptr ||
                                                                  Model()->Traffic()->HasClock())),
               arrow + table_.horizontalHeader()->fontMetrics().horizontalAdvance(shown.title));
}

QStringList TransactionColumns::Hidden() const {
    const std::string stored = settings_.GetProfileString(transactionSettings, hiddenKey, "");
    return QString::fromStdString(stored).split(',', Qt::SkipEmptyParts);
}

void TransactionColumns::Store() {
    settings_.WriteProfileString(transactionSettings, columnsKey,
                                 table_.horizontalHeader()->saveState().toBase64().toStdString());
}

void TransactionColumns::Choose(const QPoint& place) {
    if (Model() == nullptr) {
        return;
    }
    QMenu menu(&table_);
    for (int column = 0; column < Model()->columnCount(); ++column) {
        if (!Model()->HasColumn(column)) {
            continue;
        }
        const QString title = FieldColumns()[static_cast<std::size_t>(column)].title;
        QAction* const action = menu.addAction(title);
        action->setCheckable(true);
        action->setChecked(!table_.isColumnHidden(column));
        connect(action, &QAction::toggled, this,
                [this, column, title](bool isShown) { ShowOne(column, title, isShown); });
    }
    menu.exec(place);
}

void TransactionColumns::ShowOne(int column, const QString& title, bool isShown) {
    QStringList hidden = Hidden();
    hidden.removeAll(title);
    if (!isShown) {
        hidden << title;
    }
    settings_.WriteProfileString(transactionSettings, hiddenKey, hidden.join(',').toStdString());
    table_.setColumnHidden(column, !isShown);
    if (isShown && table_.columnWidth(column) == 0) { // it was hidden when the widths were stored
        table_.setColumnWidth(column, UsualWidth(column));
    }
}

void TransactionColumns::SortBy(int column, Qt::SortOrder order) {
    if (TransactionModel* model = Model()) {
        TransactionQuery query = model->Query();
        query.sortBy = column < 0 ? TransactionField::Number
                                  : FieldColumns()[static_cast<std::size_t>(column)].field;
        query.descending = column >= 0 && order == Qt::DescendingOrder;
        model->SetQuery(std::move(query));
    }
}

} // namespace busquill
