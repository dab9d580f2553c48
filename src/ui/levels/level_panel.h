#pragma once

#include "tracesetup/trace_setup.h"

#include <QFont>
#include <QScrollArea>

#include <functional>
#include <vector>

class QGridLayout;
class QPushButton;

namespace busquill {

class Prompts;

/// A cell of a level.
struct LevelCell {
    std::function<std::string()> text;
    /// Lets the user edit the level; false when the user has cancelled.
    std::function<bool(QWidget* parent)> edit;
};

/// The cells of a level in which programs differ.
struct LevelCells {
    LevelCell condition;
    LevelCell output;
    LevelCell then;
    LevelCell otherwise;
};

/// What the levels of one kind of program look like.
struct LevelForm {
    int levels;
    const char* label;         // before the number of a level
    const char* output;        // the name of the cell below the condition
    std::uint32_t occurrences; // the highest count
    QFont font{};              // the application's unless set
    std::function<LevelCells(TraceLevel&)> cells;
};

/// The levels of a program, two lines each. A click on a cell edits it.
class CLevelPanel final : public QScrollArea {
    Q_OBJECT
public:
    /// Edits the levels of the setup, which outlives the panel.
    CLevelPanel(TraceSetup& setup, LevelForm form, Prompts& prompts);

    /// Shows the levels as they are now.
    void Refresh();

    /// As wide as all columns.
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] QSize sizeHint() const override;

signals:
    /// The user has changed a cell.
    void Modified();

private:
    struct Cell {
        QPushButton* button;
        LevelCell content;
    };

    void AddLevel(QGridLayout& grid, std::size_t number);
    void AddCell(QGridLayout& grid, int row, int column, const QString& name, LevelCell content);
    [[nodiscard]] LevelCell OccurrenceCell(std::int32_t& count);
    [[nodiscard]] int LevelHeight() const;

    TraceSetup& setup_;
    const LevelForm form_;
    Prompts& prompts_;
    std::vector<Cell> cells_;
};

} // namespace busquill
