/// Where the parts of a performance graph are, without a device or widgets.
#pragma once

#include "performance/performance_setup.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstdint>

namespace busquill {

/// Number of results on a page of the time graph.
inline constexpr int graphPage = 30;
/// Length of the ticks, in pixels.
inline constexpr int graphTick = 4;

/// Edges count up to the first pixel outside, and the lines of the axes are the pixels at `left`
/// and at `bottom`.
struct PlotArea {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    [[nodiscard]] constexpr int Width() const noexcept { return right - left; }
    [[nodiscard]] constexpr int Height() const noexcept { return bottom - top; }
    [[nodiscard]] constexpr bool IsEmpty() const noexcept { return Width() < 1 || Height() < 1; }
};

struct GraphGeometry {
    QSize size;
    int labelWidth = 0; // of "1000", the widest label
    PerformanceScale scale{};

    [[nodiscard]] PlotArea Plot() const noexcept;
    [[nodiscard]] QRect TitleRect() const noexcept;

    // The axis of values. Tick `k` counts from 0, at the bottom, to ticks - 1.

    [[nodiscard]] int TickY(int k) const noexcept;
    [[nodiscard]] std::int32_t TickValue(int k) const noexcept;
    /// The label is aligned to the right edge and vertically centred.
    [[nodiscard]] QRect LabelRect(int k) const noexcept;
    /// Every how many ticks there is a label: each has one, unless the graph is so low that they
    /// would touch.
    [[nodiscard]] int LabelStep() const noexcept;
    /// The place of a unit's text that is `textWidth` pixels wide: aligned with the labels, unless
    /// it is wider.
    [[nodiscard]] QRect UnitRect(int textWidth) const noexcept;
    /// The y position of a value, which stays above the line at the bottom and below the title.
    [[nodiscard]] int ValueY(std::int64_t value) const noexcept;

    // The time graph.

    /// The x position of the `i`th result of a page, and of the `i`th tick.
    [[nodiscard]] int TimeX(int i) const noexcept;
    [[nodiscard]] QRect ScrollBarRect() const noexcept;

    // The graph of ranges. Items count from 0.

    [[nodiscard]] int ItemX(int item) const noexcept;
    [[nodiscard]] QRect LetterRect(int item) const noexcept;
    /// The largest circle in the plot.
    [[nodiscard]] QRect CircleRect() const noexcept;
};

} // namespace busquill
