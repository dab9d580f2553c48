#pragma once

#include "tracesetup/trace_setup.h"

#include <QScrollArea>

#include <functional>
#include <vector>

class QGridLayout;
class QPushButton;

namespace busquill {

class Prompts;

/// The levels of a trace program, two lines each. A click on a cell opens the dialog that edits it.
class CLevelPanel final : public QScrollArea {
    Q_OBJECT
public:
    /// Edits the levels of the setup, which outlives the panel.
    CLevelPanel(TraceSetup& setup, Prompts& prompts);

    /// Shows the levels as they are now.
    void Refresh();

    [[nodiscard]] QSize sizeHint() const override;

signals:
    /// The user has changed a cell.
    void Modified();

private:
    struct Cell {
        QPushButton* button = nullptr;
        std::function<std::string()> text;
        std::function<bool()> edit; // false when the user has cancelled
    };

    void AddLevel(QGridLayout& grid, std::size_t number);
    void AddCell(QGridLayout& grid, int row, int column, const QString& name, Cell cell);
    [[nodiscard]] Cell ExpressionCell(Expression& expression);
    [[nodiscard]] Cell OccurrenceCell(std::int32_t& count);
    [[nodiscard]] Cell ConditionCell(std::int32_t& level, bool& trigger);
    void ShowCell(const Cell& cell);
    void FitWidth();

    TraceSetup& setup_;
    Prompts& prompts_;
    std::vector<Cell> cells_;
};

} // namespace busquill
