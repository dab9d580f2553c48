#include "ui/analysis/panel_table.h"

#include <QFocusEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QWheelEvent>

namespace busquill {

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
