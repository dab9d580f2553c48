#pragma once

#include "ui/framework/bar_state.h"

#include <QScrollBar>

namespace busquill {

inline void SetBarState(QScrollBar& bar, const BarState& state) {
    bar.setRange(0, state.maximum);
    bar.setPageStep(state.page);
    bar.setValue(state.position);
}

/// For bars whose steps are not counted in positions of the bar: the window moves, and the bar
/// follows.
///
/// Turns an action of a bar into `step(forward)`, `page(forward)` or `moveTo(position)`, and moves
/// the thumb to `position()`. While the user drags the thumb it stays where it is, and false is
/// returned.
template <typename Step, typename Page, typename MoveTo, typename Position>
bool ApplyScrollAction(QScrollBar& bar, int action, Step step, Page page, MoveTo moveTo,
                       Position position) {
    switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
    case QAbstractSlider::SliderSingleStepSub:
        step(action == QAbstractSlider::SliderSingleStepAdd);
        break;
    case QAbstractSlider::SliderPageStepAdd:
    case QAbstractSlider::SliderPageStepSub:
        page(action == QAbstractSlider::SliderPageStepAdd);
        break;
    case QAbstractSlider::SliderMove:
        moveTo(bar.sliderPosition());
        return false; // the thumb stays under the pointer
    default:          // to one end of the bar
        moveTo(bar.sliderPosition());
    }
    bar.setSliderPosition(position());
    return true;
}

} // namespace busquill
