#pragma once

#include "signals/signal.h"

#include <QPoint>
#include <Qt>

#include <cstdint>

namespace busquill {

class CSignalList;

/// Selecting, resizing and moving the signals of a table window by the mouse where their names are.
/// Places are pixels along the axis in which the signals follow one another, from the window's
/// edge.
///
///   |  fixed column  | signal | signal | ...      the signals scroll by `offset`
///   0             fixedEnd
///
/// Main thread; the list outlives the object.
class HeaderControl {
public:
    /// What a step has changed.
    enum class Redraw { Nothing, Header, All };

    struct Hit {
        CSignal* signal = nullptr;
        int start = 0;     // where it begins
        bool edge = false; // the place is at its end
    };

    /// How the signals of a window lie.
    struct Layout {
        std::int32_t CSignal::*extent;                     // the size that resizing changes
        std::int32_t (CSignal::*visible)() const noexcept; // the room that a signal takes
        int smallest;                                      // that resizing leaves
        int gap = 0;                                       // between two signals
        bool fixedResizes = true;                          // the fixed column's edge too
        bool anyClickDrags = true;                         // not only one without a key
        Qt::Orientation axis = Qt::Horizontal;             // in which they follow one another
    };

    explicit HeaderControl(const Layout& layout) : layout_(layout) {}

    void Attach(CSignalList& list);
    void SetFixedResizes(bool resizes) { layout_.fixedResizes = resizes; }

    /// Where the fixed column ends, which resizing changes too.
    int fixedEnd = 0;
    int offset = 0;

    /// The part of a point that counts.
    [[nodiscard]] int Along(const QPoint& point) const noexcept {
        return layout_.axis == Qt::Horizontal ? point.x() : point.y();
    }
    [[nodiscard]] Hit HitColumn(int place) const;
    /// The left button goes down in the header.
    Redraw Press(int place, Qt::KeyboardModifiers keys);
    Redraw Move(int place);
    Redraw Release(int place);
    /// The right button goes down in the header: an unselected signal is selected.
    Redraw SelectForMenu(int place);
    /// Whether a press has begun something that the release ends.
    [[nodiscard]] bool IsActive() const noexcept { return action_ != Action::None; }
    [[nodiscard]] Qt::CursorShape CursorAt(int place) const;

    /// A signal has taken another's place in the list.
    void Replace(const CSignal* old, CSignal* by);
    /// Selects one signal alone.
    void SelectOnly(CSignal* signal);

private:
    enum class Action { None, ResizeFixed, Resize, Drag };

    [[nodiscard]] bool OnFixedEdge(int place) const;
    void SelectByClick(CSignal* signal, Qt::KeyboardModifiers keys);
    void SelectSpan(const CSignal* from, const CSignal* to);

    Layout layout_;
    CSignalList* list_ = nullptr;
    CSignal* lastSelected_ = nullptr; // may have left the list
    Action action_ = Action::None;
    CSignal* target_ = nullptr; // that is resized or dragged
    int start_ = 0;             // of the one that is resized
};

} // namespace busquill
