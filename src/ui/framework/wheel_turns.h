#pragma once

#include <QWheelEvent>

#include <cstdlib>

namespace busquill {

constexpr int wheelColumnStep = 48; // pixels that a notch moves the columns of a table

/// Makes notches of the turns of a mouse wheel. A fine wheel turns by parts of a notch; one that is
/// turned with Shift held, or pushed aside, goes sideways.
class WheelTurns {
public:
    struct Turn {
        bool sideways = false;
        int notches = 0; // above 0 towards the end, which is down or right
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
            rest_ = 0; // turned another way: a new notch begins
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
