#pragma once

#include "signals/signal.h"

#include <QPoint>
#include <Qt>

#include <cstdint>
#include <vector>

namespace busquill {

class CSignalList;

/// Selects, resizes and moves the signals of a table window with the mouse on their names. Places
/// are in pixels from the window's edge, along the axis on which the signals are arranged.
///
///   |  fixed column  | signal | signal | ...      the signals scroll by `offset`
///   0             fixedEnd
///
/// Main thread; the list outlives the object.
class HeaderControl {
public:
    /// What has to be drawn again.
    enum class Redraw { Nothing, Header, All };

    struct Hit {
        CSignal* signal = nullptr;
        int start = 0;     // place where the signal begins
        bool edge = false; // the place is on the edge at its end
    };

    /// How a window arranges its signals.
    struct Layout {
        std::int32_t CSignal::*extent;                     // the size that resizing changes
        std::int32_t (CSignal::*visible)() const noexcept; // the size at which it shows
        int smallest;                                      // size that resizing allows
        int gap = 0;                                       // between two signals
        bool fixedResizes = true;                          // the fixed column can be resized
        bool anyClickDrags = true;                         // clicks with Ctrl or Shift too
        Qt::Orientation axis = Qt::Horizontal;             // along which they are arranged
    };

    explicit HeaderControl(const Layout& layout) : layout_(layout) {}

    void Attach(CSignalList& list);
    void SetFixedResizes(bool resizes) { layout_.fixedResizes = resizes; }

    /// The end of the fixed column; changed by resizing.
    int fixedEnd = 0;
    int offset = 0;

    /// The coordinate of a point along the axis.
    [[nodiscard]] int Along(const QPoint& point) const noexcept {
        return layout_.axis == Qt::Horizontal ? point.x() : point.y();
    }
    [[nodiscard]] Hit HitColumn(int place) const;
    /// The left button is pressed in the header.
    Redraw Press(int place, Qt::KeyboardModifiers keys);
    Redraw Move(int place);
    Redraw Release(int place);
    /// The right button is pressed in the header: selects the signal unless it is selected already.
    Redraw SelectForMenu(int place);
    /// Whether a resize or a drag is under way.
    [[nodiscard]] bool IsActive() const noexcept { return action_ != Action::None; }
    [[nodiscard]] Qt::CursorShape CursorAt(int place) const;

    /// Where a signal that shows stands among the names, from the first of them.
    struct Span {
        CSignal* signal = nullptr;
        int start = 0;
        int size = 0;
    };
    /// The signal that was selected last, if it still shows.
    [[nodiscard]] Span Current() const;
    /// Selects the signal after the current one, or before it; without one, the first.
    Redraw SelectNeighbour(bool forward);

    /// A signal has been replaced by another one in the list.
    void Replace(const CSignal* old, CSignal* by);
    /// Selects one signal alone.
    void SelectOnly(CSignal* signal);

private:
    enum class Action { None, ResizeFixed, Resize, Drag };

    [[nodiscard]] std::vector<Span> Spans() const;
    [[nodiscard]] bool OnFixedEdge(int place) const;
    void SelectByClick(CSignal* signal, Qt::KeyboardModifiers keys);
    void SelectSpan(const CSignal* from, const CSignal* to);

    Layout layout_;
    CSignalList* list_ = nullptr;
    CSignal* lastSelected_ = nullptr; // may have left the list
    Action action_ = Action::None;
    CSignal* target_ = nullptr; // the signal being resized or dragged
    int start_ = 0;             // where the resized signal begins
};

} // namespace busquill
