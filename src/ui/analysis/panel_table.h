#pragma once

#include <QTableView>

namespace busquill {

/// A table in a panel: whole rows of one line, its titles, no numbers of rows. Keys and turns of
/// the wheel that it does not use end here.
class PanelTable : public QTableView {
    Q_OBJECT
public:
    explicit PanelTable(const char* name);

protected:
    /// Home and End lead to the first and the last row. A letter would search the first column, and
    /// so work out one row after the other.
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    /// A table that gets the keyboard chooses no row by itself.
    void focusInEvent(QFocusEvent* event) override;
};

} // namespace busquill
