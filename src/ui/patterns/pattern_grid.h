#pragma once

#include "ui/framework/wheel_turns.h"
#include "ui/patterns/pattern_geometry.h"
#include "ui/patterns/pattern_painter.h"
#include "ui/patterns/table_window.h"

#include <QPointer>

#include <functional>
#include <string>

namespace busquill {

class Prompts;

/// A table in which patterns over signals are entered: a column for each signal of a list, a row
/// for each pattern. Edits the list, which outlives it. Main thread.
class CPatternGrid final : public TableWindow {
    Q_OBJECT
public:
    CPatternGrid(QWidget* parent, Prompts& prompts);

    // Call these before the grid is shown.
    void SetRowCount(int count) { rowCount_ = count; }
    void ShowLabels(bool show);
    /// The title of the label column, and the format of a label, with one %d for the row's number
    /// from 1.
    void SetText(const char* heading, const char* rowFormat);
    /// Sets the list and fits the columns to their texts. `mode` selects the definitions that are
    /// offered.
    void SetList(CSignalList& list, std::uint32_t mode = ModeEvents);
    /// Sets a function that is called after a signal of the list has been changed.
    void SetOwner(std::function<void()> modified) { modified_ = std::move(modified); }

    /// Where its cells are.
    [[nodiscard]] PatternGeometry Geometry() const;
    void StepRows(int rows);
    /// The scroll bar along the rows, whose positions are rows.
    [[nodiscard]] BarState RowBar() const;
    /// Shows rows from this one on, limited to the range in which they can be scrolled.
    void MoveRowsTo(int row);

    [[nodiscard]] QSize sizeHint() const override { return {420, 60}; }

protected:
    void Draw(QPainter& painter) override;
    void RenderNames() override;
    void KeepOffset() override;
    void PressCell(const QPoint& place, Qt::MouseButton button) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

    [[nodiscard]] std::uint32_t OfferMode() const override { return mode_; }
    [[nodiscard]] std::uint32_t SampleCapacity() const override;
    void SignalsChanged() override;

private:
    struct Cell {
        int row = -1;
        const CSignal* signal = nullptr; // may have left the list
        friend bool operator==(const Cell&, const Cell&) = default;
    };
    /// Shared by all grids, since only one cell can be pressed at a time. A signal is in one list
    /// only, so each grid recognises its own cell.
    static Cell hot;
    static Cell pressed;
    static QPointer<CPatternGrid> hotGrid; // the one that shows the hot cell

    [[nodiscard]] PatternFrame Frame() const;
    [[nodiscard]] std::optional<PatternCell> PlaceOf(const Cell& cell) const;
    [[nodiscard]] Cell CellAt(const QPoint& place) const;
    void SetHot(const Cell& cell);
    void Edit(const PatternCell& cell);
    [[nodiscard]] bool EditCommand(CSignal& signal, int row);
    [[nodiscard]] bool EditLabel(CSignal& signal, int row);
    [[nodiscard]] bool EditNumber(CSignal& signal, int row);

    const PatternStyle style_;
    std::string heading_;
    std::string rowFormat_;
    std::function<void()> modified_;
    std::uint32_t mode_ = ModeEvents;
    int rowCount_ = 0;
    int topRow_ = 0;
    WheelTurns wheel_;
};

} // namespace busquill
