#pragma once

#include "ui/framework/bar_state.h"

#include <QScrollBar>

namespace busquill {

inline void SetBarState(QScrollBar& bar, const BarState& state) {
    bar.setRange(0, state.maximum);
    bar.setPageStep(state.page);
    bar.setValue(state.position);
}

/// Lines and pages have lengths of their own, and the bar follows them.
///
/// Turns an action of a bar into `step(forward)`, `page(forward)` or `moveTo(position)`, and puts
/// the thumb where `position()` says, unless the user is moving it; true if not.
template <typename Step, typename Page, typename MoveTo, typename Position>
bool TakeScrollAction(QScrollBar& bar, int action, Step step, Page page, MoveTo moveTo,
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
    default:          // an end of the bar
        moveTo(bar.sliderPosition());
    }
    bar.setSliderPosition(position());
    return true;
}

} // namespace busquill
