/// Screen and paper: what painters draw differently on them.
#pragma once

#include <QColor>

#include <algorithm>

namespace busquill {

struct DrawStyle {
    double scale = 1;   // of lengths, which are given in pixels of the screen
    int line = 1;       // the width of a line
    bool fills = true;  // backgrounds and stripes; with the edges they show the selection
    bool edges = true;  // raised and sunken
    bool colors = true; // texts and marks have their colours; otherwise they are black

    [[nodiscard]] int Length(double pixels) const noexcept {
        return static_cast<int>(pixels * scale);
    }
    /// The same, but never nothing.
    [[nodiscard]] int Size(double pixels) const noexcept { return std::max(Length(pixels), 1); }
    [[nodiscard]] QColor Color(const QColor& color) const {
        return colors ? color : QColor(Qt::black);
    }
};

/// Lines are as wide as a pixel of a printer with 300 dots an inch, at which waveforms have this
/// scale; those of finer printers would hardly be seen.
constexpr double scaleAt300Dots = 2.5;

[[nodiscard]] inline DrawStyle PaperStyle(double scale) noexcept {
    return {scale, std::max(static_cast<int>(scale / scaleAt300Dots), 1), false, false, false};
}

} // namespace busquill
