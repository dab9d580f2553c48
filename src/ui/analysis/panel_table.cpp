#include "ui/analysis/panel_table.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "ui/framework/wait_cursor.h"

#include <QClipboard>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QWheelEvent>

#include <algorithm>
#include <vector>

namespace busquill {

namespace {

/// More rows would be slow to paste.
constexpr int mostCopiedRows = 100'000;

} // namespace

PanelTable::PanelTable(const char* name) {
    setObjectName(name);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setAlternatingRowColors(true);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setStretchLastSection(true);
}

void PanelTable::CopyRows(Prompts& prompts) const {
    const QItemSelection selection = selectionModel()->selection();
    int count = 0;
    for (const QItemSelectionRange& range : selection) {
        count += range.height();
    }
    if (count > mostCopiedRows) {
        prompts.Message(Printf("%d rows are selected; at most %d can be copied at once.", count,
                               mostCopiedRows));
        return;
    }
    const WaitCursor wait;
    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(count));
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::ranges::sort(rows);
    std::vector<int> columns;
    for (int place = 0; place < model()->columnCount(); ++place) {
        const int column = horizontalHeader()->logicalIndex(place);
        if (!isColumnHidden(column)) {
            columns.push_back(column);
        }
    }
    QString text;
    const auto addLine = [&](const auto& cell) {
        for (const int column : columns) {
            text += cell(column).toString() + (column == columns.back() ? '\n' : '\t');
        }
    };
    addLine([this](int column) {
        return model()->headerData(column, Qt::Horizontal, Qt::DisplayRole);
    });
    for (const int row : rows) {
        addLine([this, row](int column) { return model()->index(row, column).data(); });
    }
    QGuiApplication::clipboard()->setText(text);
}

void PanelTable::keyPressEvent(QKeyEvent* event) {
    const int rows = model() == nullptr ? 0 : model()->rowCount();
    const bool isPlain = event->modifiers() == Qt::NoModifier;
    if (isPlain && (event->key() == Qt::Key_Home || event->key() == Qt::Key_End)) {
        if (rows > 0) {
            setCurrentIndex(model()->index(event->key() == Qt::Key_Home ? 0 : rows - 1, 0));
        }
        return;
    }
    const bool isLetter = event->key() != Qt::Key_Space && !event->text().isEmpty() &&
                          event->text().front().isPrint();
    if (!isLetter) {
        QTableView::keyPressEvent(event);
    }
}

void PanelTable::focusInEvent(QFocusEvent* event) {
    if (currentIndex().isValid()) {
        QTableView::focusInEvent(event);
    } else {
        viewport()->update();
    }
}

void PanelTable::wheelEvent(QWheelEvent* event) {
    QTableView::wheelEvent(event);
    event->accept();
}

void ShowEither(QStackedWidget& stack, PanelTable& table, QLabel& reason, bool hasRows) {
    QWidget& shown = hasRows ? static_cast<QWidget&>(table) : reason;
    QWidget& hidden = hasRows ? static_cast<QWidget&>(reason) : table;
    const bool hadKeyboard = hidden.hasFocus();
    reason.setFocusPolicy(Qt::StrongFocus);
    stack.setCurrentWidget(&shown);
    if (hadKeyboard) {
        shown.setFocus();
    }
}

} // namespace busquill
