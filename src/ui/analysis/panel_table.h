#pragma once

#include <QTableView>

class QLabel;
class QStackedWidget;

namespace busquill {

class Prompts;

/// A table in a panel: whole rows of one line, its titles, no numbers of rows. Letters and
/// turns of the wheel end here.
class PanelTable : public QTableView {
    Q_OBJECT
public:
    explicit PanelTable(const char* name);

    /// Copies a line of titles, then the selected rows, their cells separated by tabs: the columns
    /// that show, in their order. Too many rows are refused with a message.
    void CopyRows(Prompts& prompts) const;

protected:
    /// Home and End lead to the first and the last row. A letter would search the first column, and
    /// so work out one row after the other.
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    /// A table that gets the keyboard chooses no row by itself.
    void focusInEvent(QFocusEvent* event) override;
};

/// Shows the table, or in its place the reason why it has no rows. The keyboard goes along.
void ShowEither(QStackedWidget& stack, PanelTable& table, QLabel& reason, bool hasRows);

} // namespace busquill
