#pragma once

#include <QWheelEvent>

#include <cstdlib>

namespace busquill {

constexpr int wheelColumnStep = 48; // pixels that a notch moves the columns of a table

/// Counts the notches of a mouse wheel. High-resolution wheels report fractions of a notch, which
/// are added up. With Shift held, or when the wheel is tilted, the turn is sideways.
class WheelTurns {
public:
    struct Turn {
        bool sideways = false;
        int notches = 0; // positive: towards the end, which is down or right
    };

    [[nodiscard]] Turn Take(const QWheelEvent& event) {
        constexpr int notch = 120;
        const QPoint delta = event.angleDelta();
        const bool aside = std::abs(delta.x()) > std::abs(delta.y());
        const bool sideways = aside || event.modifiers().testFlag(Qt::ShiftModifier);
        const int turned = -(aside ? delta.x() : delta.y());
        if (turned == 0) {
            return {};
        }
        if (sideways != sideways_ || (turned > 0) != (rest_ > 0)) {
            rest_ = 0; // the direction has changed: a new notch begins
        }
        sideways_ = sideways;
        rest_ += turned;
        const int notches = rest_ / notch;
        rest_ -= notches * notch;
        return {sideways, notches};
    }

private:
    bool sideways_ = false;
    int rest_ = 0;
};

} // namespace busquill
