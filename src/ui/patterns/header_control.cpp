#include "ui/patterns/header_control.h"

#include "signals/signal_list.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace busquill {

namespace {

constexpr int edgeReach = 2; // pixels on both sides

} // namespace

void HeaderControl::Attach(CSignalList& list) {
    list_ = &list;
    lastSelected_ = nullptr;
    target_ = nullptr;
    action_ = Action::None;
}

bool HeaderControl::OnFixedEdge(int place) const {
    return layout_.fixedResizes && std::abs(place - fixedEnd) <= edgeReach;
}

HeaderControl::Hit HeaderControl::HitColumn(int place) const {
    if (list_ == nullptr || place < fixedEnd) {
        return {};
    }
    int start = fixedEnd + 1 - offset;
    for (const auto& signal : list_->All()) {
        const int extent = (signal.get()->*layout_.visible)();
        if (extent < 1) {
            continue;
        }
        const int end = start + extent;
        const bool edge = std::abs(place - end) <= edgeReach;
        if (edge || place < end) {
            return {signal.get(), start, edge};
        }
        start = end + layout_.gap;
    }
    return {};
}

std::vector<HeaderControl::Span> HeaderControl::Spans() const {
    std::vector<Span> spans;
    if (list_ == nullptr) {
        return spans;
    }
    spans.reserve(list_->Size());
    int start = 0;
    for (const auto& signal : list_->All()) {
        const int size = (signal.get()->*layout_.visible)();
        if (size >= 1) {
            spans.push_back({signal.get(), start, size});
            start += size + layout_.gap;
        }
    }
    return spans;
}

HeaderControl::Span HeaderControl::Current() const {
    const std::vector<Span> spans = Spans();
    const auto found = std::find_if(spans.begin(), spans.end(), [this](const Span& span) {
        return span.signal == lastSelected_;
    });
    return found != spans.end() ? *found : Span();
}

HeaderControl::Redraw HeaderControl::SelectNeighbour(bool forward) {
    const std::vector<Span> spans = Spans();
    if (spans.empty()) {
        return Redraw::Nothing;
    }
    auto at = std::find_if(spans.begin(), spans.end(),
                           [this](const Span& span) { return span.signal == lastSelected_; });
    if (at == spans.end()) {
        at = spans.begin();
    } else if (forward ? at + 1 != spans.end() : at != spans.begin()) {
        at += forward ? 1 : -1;
    }
    SelectOnly(at->signal);
    return Redraw::Header;
}

HeaderControl::Redraw HeaderControl::Press(int place, Qt::KeyboardModifiers keys) {
    if (OnFixedEdge(place)) {
        action_ = Action::ResizeFixed;
        return Redraw::Nothing;
    }
    const Hit hit = HitColumn(place);
    if (hit.signal == nullptr) {
        return Redraw::Nothing;
    }
    target_ = hit.signal;
    start_ = hit.start;
    if (hit.edge) {
        action_ = Action::Resize;
        return Redraw::Nothing;
    }
    if (layout_.anyClickDrags || (keys & (Qt::ControlModifier | Qt::ShiftModifier)) == 0) {
        action_ = Action::Drag;
    }
    SelectByClick(hit.signal, keys);
    return Redraw::Header;
}

HeaderControl::Redraw HeaderControl::Move(int place) {
    int* const size = action_ == Action::ResizeFixed ? &fixedEnd
                      : action_ == Action::Resize    ? &(target_->*layout_.extent)
                                                     : nullptr;
    if (size == nullptr) {
        return Redraw::Nothing;
    }
    const int wanted = std::max(place - (action_ == Action::Resize ? start_ : 0), layout_.smallest);
    if (*size == wanted) {
        return Redraw::Nothing;
    }
    *size = wanted;
    return Redraw::All;
}

HeaderControl::Redraw HeaderControl::Release(int place) {
    const Action ended = std::exchange(action_, Action::None);
    if (ended != Action::Drag) {
        return Redraw::Nothing;
    }
    CSignal* const onto = HitColumn(place).signal;
    if (onto == nullptr || onto == target_) {
        return Redraw::Nothing;
    }
    list_->MoveGroup(target_, onto);
    return Redraw::All;
}

HeaderControl::Redraw HeaderControl::SelectForMenu(int place) {
    action_ = Action::None; // the menu may delete the dragged signal
    CSignal* const signal = HitColumn(place).signal;
    if (signal == nullptr || signal->selected) {
        return Redraw::Nothing;
    }
    SelectOnly(signal);
    return Redraw::Header;
}

Qt::CursorShape HeaderControl::CursorAt(int place) const {
    if (action_ == Action::Drag) {
        return Qt::ClosedHandCursor;
    }
    const bool resizes = action_ != Action::None || OnFixedEdge(place) || HitColumn(place).edge;
    return !resizes                         ? Qt::ArrowCursor
           : layout_.axis == Qt::Horizontal ? Qt::SizeHorCursor
                                            : Qt::SizeVerCursor;
}

void HeaderControl::SelectByClick(CSignal* signal, Qt::KeyboardModifiers keys) {
    if ((keys & Qt::ControlModifier) != 0) {
        list_->SetGroupSelected(signal, !signal->selected);
    } else if ((keys & Qt::ShiftModifier) != 0) {
        if (lastSelected_ != nullptr && list_->IndexOf(lastSelected_) < list_->Size()) {
            SelectSpan(lastSelected_, signal);
        } else {
            list_->SetGroupSelected(signal, true);
        }
    } else {
        SelectOnly(signal);
    }
}

void HeaderControl::SelectOnly(CSignal* signal) {
    for (const auto& each : list_->All()) {
        each->selected = false;
    }
    list_->SetGroupSelected(signal, true);
    lastSelected_ = signal;
}

void HeaderControl::SelectSpan(const CSignal* from, const CSignal* to) {
    const auto [first, last] = std::minmax({list_->IndexOf(from), list_->IndexOf(to)});
    for (std::size_t i = 0; i < list_->Size(); ++i) {
        (*list_)[i].selected = i >= first && i < list_->GroupEnd(last);
    }
}

void HeaderControl::Replace(const CSignal* old, CSignal* by) {
    if (lastSelected_ == old) {
        lastSelected_ = by;
    }
}

} // namespace busquill
