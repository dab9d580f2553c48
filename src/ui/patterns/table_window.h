#pragma once

#include "ui/framework/bar_state.h"
#include "ui/framework/painted_window.h"
#include "ui/patterns/columns.h"
#include "ui/patterns/header_control.h"
#include "ui/patterns/signal_menu.h"

namespace busquill {

/// How signals lie that are columns, whose edges can be dragged.
[[nodiscard]] HeaderControl::Layout ColumnLayout();

/// What the windows have in common that show signals side by side: a bitmap, the signals' names
/// under the mouse, and the menu on them. The signals are columns that scroll by pixels, unless a
/// window says otherwise. Without a list there is nothing under the mouse. Main thread.
class TableWindow : public PaintedWindow, protected SignalMenuHost {
    Q_OBJECT
public:
    /// Without prompts there is no menu.
    TableWindow(QWidget* parent, Prompts* prompts, const HeaderControl::Layout& layout);

    /// The pixels by which the signals are scrolled.
    [[nodiscard]] int Offset() const noexcept { return header_.offset; }

    /// The bar along the signals, and what its lines, pages and thumb do.
    [[nodiscard]] virtual BarState SignalBar() const;
    virtual void StepSignals(bool forward);
    virtual void PageSignals(bool forward);
    /// As far as they go.
    virtual void MoveSignalsTo(int position);
    /// What the wheel does along the signals.
    void TurnSignals(int notches);

signals:
    /// Signals take another room, order or place.
    void LayoutChanged();

protected:
    /// The list outlives the window, or another one follows it.
    void AttachList(CSignalList& list);
    /// Gives every column the width that its texts need.
    void MeasureColumns();
    [[nodiscard]] TableColumns Columns() const;

    /// Whether a place is among the names, which the header control is then aimed at.
    [[nodiscard]] virtual bool AimAtNames(const QPoint& place);
    /// A button, left or right, goes down elsewhere.
    virtual void PressCell(const QPoint& place, Qt::MouseButton button) = 0;
    virtual void ShowCursor(const QPoint& place);
    /// Draws the names alone.
    virtual void RenderNames() = 0;
    /// Columns that have become fewer or a window that has become wider leave no room behind them.
    virtual void KeepOffset();

    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

    [[nodiscard]] CSignalList& MenuList() override { return *list_; }
    [[nodiscard]] HeaderControl& MenuHeader() override { return header_; }
    void SignalAdded(CSignal& signal) override { SignalReshaped(signal); }
    void SignalReshaped(CSignal& signal) override;

    const TableFonts fonts_;
    CSignalList* list_ = nullptr;
    HeaderControl header_;

private:
    void SetOffset(int offset);
    void Show(HeaderControl::Redraw redraw);

    Prompts* prompts_;
};

} // namespace busquill
