#pragma once

#include "signals/signal_tables.h"
#include "ui/framework/wheel_turns.h"

#include <QDialog>
#include <QFont>

#include <memory>
#include <span>
#include <string>
#include <vector>

class QScrollBar;

namespace busquill {

/// A column of the bit layout: the mnemonic's, then one for each bus definition.
struct LayoutColumn {
    std::string text;
    int left = 0;
    int width = 0;
    friend bool operator==(const LayoutColumn&, const LayoutColumn&) = default;
};

/// The columns for a given character width. A bit takes one character; in definitions of 16 bits or
/// more, four bits share one.
[[nodiscard]] std::vector<LayoutColumn>
LayoutColumns(std::span<const std::shared_ptr<CBusSignalDef>> defs, int characterWidth);

/// The bit layout of a board's bus as a table. There is nothing to edit yet: OK only closes it.
class CDefineSignalDialog final : public QDialog {
    Q_OBJECT
public:
    CDefineSignalDialog(QWidget* parent, const SignalTables& tables);

protected:
    /// Handles the wheel over the table.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QScrollBar* rows_;
    QScrollBar* columns_;
    WheelTurns wheel_;
};

/// The table: a header above rows numbered from 1.
class LayoutTable final : public QWidget {
    Q_OBJECT
public:
    explicit LayoutTable(const SignalTables& tables);
    /// The first row that shows, from 0.
    void SetTopRow(int row);
    [[nodiscard]] int TopRow() const noexcept { return topRow_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void DrawTitle(QPainter& painter, const LayoutColumn& column) const;

    QFont textFont_;
    QFont rowFont_;
    std::vector<LayoutColumn> columns_;
    int topRow_ = 0;
};

} // namespace busquill
