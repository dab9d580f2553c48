#pragma once

#include "ui/framework/wheel_turns.h"
#include "ui/patterns/header_control.h"
#include "ui/patterns/signal_menu.h"

#include <QFont>
#include <QPixmap>
#include <QWidget>

#include <functional>
#include <string>

namespace busquill {

class Prompts;

/// A table in which patterns over signals are entered: a column for each signal of a list, a row
/// for each pattern. Edits the list, which outlives it. Paints into a bitmap. Main thread.
class CPatternGrid final : public QWidget, private SignalMenuHost {
    Q_OBJECT
public:
    CPatternGrid(QWidget* parent, Prompts& prompts);

    // Set before it is shown.
    void SetRowCount(int count) { rowCount_ = count; }
    void ShowLabels(bool show);
    /// The title of the label column, and a label with one %d for the row's number from 1.
    void SetText(const char* heading, const char* rowFormat);
    /// Gives every column the width that its texts need. `mode` says which definitions are offered.
    void SetList(CSignalList& list, std::uint32_t mode = ModeEvents);
    /// Called after a signal of the list has been changed.
    void SetOwner(std::function<void()> modified) { modified_ = std::move(modified); }

    /// The height that shows so many rows.
    [[nodiscard]] static int HeightOf(int rows);

    // Scrolling, by bars that belong to the owner.

    [[nodiscard]] int ContentWidth() const;
    [[nodiscard]] int VisibleWidth() const;
    [[nodiscard]] bool NeedsHScroll() const { return ContentWidth() > VisibleWidth(); }
    [[nodiscard]] int Offset() const noexcept { return header_.offset; }
    void StepColumn(bool right);
    void PageColumns(bool right);
    void SetOffset(int offset);
    [[nodiscard]] int VisibleRowCount() const;
    [[nodiscard]] int TopRow() const noexcept { return topRow_; }
    void StepRows(int rows);

    /// What a cell shows.
    [[nodiscard]] static std::string CellText(const CSignal& signal, int row);

    [[nodiscard]] QSize sizeHint() const override { return {420, 60}; }

signals:
    /// Columns have another width, order or place.
    void ColumnsChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    struct Cell {
        int row = -1;
        const CSignal* signal = nullptr;
        friend bool operator==(const Cell&, const Cell&) = default;
    };
    /// Of the whole program, since only one cell can be pressed at a time.
    static Cell hot;
    static Cell pressed;

    void Render();
    void RenderHeader();
    void DrawHeader(QPainter& painter) const;
    void DrawRow(QPainter& painter, int row, int y) const;
    void Show(HeaderControl::Redraw redraw);
    [[nodiscard]] Cell CellAt(const QPoint& place) const;
    void SetHot(const Cell& cell);
    void Edit(const Cell& cell);
    [[nodiscard]] bool EditCommand(CSignal& signal, int row);
    [[nodiscard]] bool EditLabel(CSignal& signal, int row);
    [[nodiscard]] bool EditValue(CSignal& signal, int row);
    [[nodiscard]] bool CycleBit(CSignal& signal, int row);

    [[nodiscard]] CSignalList& MenuList() override { return *list_; }
    [[nodiscard]] HeaderControl& MenuHeader() override { return header_; }
    [[nodiscard]] std::uint32_t OfferMode() const override { return mode_; }
    [[nodiscard]] std::uint32_t SampleRoom() const override;
    void SignalAdded(CSignal& signal) override { SignalReshaped(signal); }
    void SignalReshaped(CSignal& signal) override;
    void SignalsChanged() override;

    Prompts& prompts_;
    const QFont bodyFont_;
    const QFont headerFont_;
    const int digitWidth_;
    std::string heading_;
    std::string rowFormat_;
    std::function<void()> modified_;
    CSignalList* list_ = nullptr;
    std::uint32_t mode_ = ModeEvents;
    int rowCount_ = 0;
    int topRow_ = 0;
    bool showLabels_ = true;
    WheelTurns wheel_;
    HeaderControl header_;
    QPixmap bitmap_;
};

} // namespace busquill
