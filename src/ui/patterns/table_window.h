#pragma once

#include "ui/framework/bar_state.h"
#include "ui/framework/painted_window.h"
#include "ui/patterns/columns.h"
#include "ui/patterns/header_control.h"
#include "ui/patterns/signal_menu.h"

namespace busquill {

/// The arrangement of signals as columns, whose edges can be dragged.
[[nodiscard]] HeaderControl::Layout ColumnLayout();

/// The base of the windows that show signals side by side: it has a bitmap, handles the mouse on
/// the signals' names, and opens the menu on them. The signals are columns that scroll by pixels,
/// unless a derived window overrides that. Without a list the mouse does nothing. Main thread.
class TableWindow : public PaintedWindow, protected SignalMenuHost {
    Q_OBJECT
public:
    /// Without prompts there is no menu.
    TableWindow(QWidget* parent, Prompts* prompts, const HeaderControl::Layout& layout);

    /// The pixels by which the signals are scrolled.
    [[nodiscard]] int Offset() const noexcept { return header_.offset; }

    /// The scroll bar along the signals, and what its steps, pages and thumb do.
    [[nodiscard]] virtual BarState SignalBar() const;
    virtual void StepSignals(bool forward);
    virtual void PageSignals(bool forward);
    /// Limited to the range in which they can be scrolled.
    virtual void MoveSignalsTo(int position);
    /// Scrolls along the signals by notches of the wheel.
    void TurnSignals(int notches);

    // By keys; the window has a list.

    /// Selects the signal after the one that was selected last, or before it, and scrolls to it.
    void SelectSignal(bool forward);
    /// Opens the menu on the signal that was selected last, or on the first one.
    void OpenSignalMenu();

signals:
    /// The size, order or position of signals has changed, or the position of rows.
    void LayoutChanged();

protected:
    /// The list outlives the window or is replaced before it is destroyed.
    void AttachList(CSignalList& list);
    /// Fits every column to its texts.
    void MeasureColumns();
    [[nodiscard]] TableColumns Columns() const;

    /// Whether a place is on the names; if so, the header control's offset is set for them.
    [[nodiscard]] virtual bool AimAtNames(const QPoint& place);
    /// The pixels of the names that are scrolled out.
    [[nodiscard]] virtual int NamesOffset() const { return Offset(); }
    /// The name of a signal that begins at `start` along the names, if it is cut.
    [[nodiscard]] virtual PlaceTip NameTip(const CSignal& signal, int start) const;
    /// The name under the pointer, if it is cut.
    [[nodiscard]] PlaceTip TipAt(const QPoint& place) override;
    /// The place of a name's menu, by its coordinate along the signals.
    [[nodiscard]] virtual QPoint NamePlace(int along) const;
    /// The left or right button is pressed outside the names.
    virtual void PressCell(const QPoint& place, Qt::MouseButton button) = 0;
    virtual void ShowCursor(const QPoint& place);
    /// Draws only the names.
    virtual void RenderNames() = 0;
    /// Limits the offset after columns were removed or the window was widened, so that no empty
    /// space shows after the last column.
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
    void ScrollToCurrent();
    void Show(HeaderControl::Redraw redraw);

    Prompts* prompts_;
};

} // namespace busquill
