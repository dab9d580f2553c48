#pragma once

#include <QWheelEvent>

#include <cstdlib>

namespace busquill {

constexpr int wheelColumnStep = 48; // pixels that a notch moves the columns of a table

/// Counts the notches of a mouse wheel. High-resolution wheels report fractions of a notch, which
/// are added up. With Shift held, or when the wheel is tilted, the turn is sideways; with Ctrl it
/// zooms in a window that can.
class WheelTurns {
public:
    struct Turn {
        bool sideways = false;
        int notches = 0;    // positive: towards the end, which is down or right
        bool zooms = false; // forward, which is a negative number of notches, zooms in
    };

    [[nodiscard]] Turn Take(const QWheelEvent& event) {
        constexpr int notch = 120;
        const QPoint delta = event.angleDelta();
        const bool aside = std::abs(delta.x()) > std::abs(delta.y());
        const bool zooms = !aside && event.modifiers().testFlag(Qt::ControlModifier);
        const bool sideways = aside || (!zooms && event.modifiers().testFlag(Qt::ShiftModifier));
        const int turned = -(aside ? delta.x() : delta.y());
        if (turned == 0) {
            return {};
        }
        if (sideways != last_.sideways || zooms != last_.zooms || (turned > 0) != (rest_ > 0)) {
            rest_ = 0; // the direction or the use has changed: a new notch begins
        }
        rest_ += turned;
        const int notches = rest_ / notch;
        rest_ -= notches * notch;
        last_ = {sideways, notches, zooms};
        return last_;
    }

private:
    Turn last_;
    int rest_ = 0;
};

} // namespace busquill
