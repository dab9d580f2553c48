#include "ui/performance/graph_geometry.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr int titleHeight = 20;
constexpr int belowPlot = 24;
constexpr int labelHeight = 14;
// Between a label and its tick are two pixels. The last one belongs to the label, since a digit
// ends with a blank; with another one the widest label would be cut.
constexpr int labelGap = 1;
constexpr int labelPitch = 11; // at which digits do not touch
constexpr QSize letterSize(16, 15);
constexpr int scrollBarHeight = 14;

} // namespace

PlotArea GraphGeometry::Plot() const noexcept {
    return {labelWidth + graphTick, titleHeight, size.width(), size.height() - belowPlot};
}

QRect GraphGeometry::TitleRect() const noexcept {
    return {0, 0, size.width(), titleHeight};
}

int GraphGeometry::TickY(int k) const noexcept {
    const PlotArea plot = Plot();
    return plot.bottom - plot.Height() * k / (scale.ticks - 1);
}

std::int32_t GraphGeometry::TickValue(int k) const noexcept {
    return scale.first + scale.step * k;
}

QRect GraphGeometry::LabelRect(int k) const noexcept {
    const int right = Plot().left - graphTick - labelGap;
    return {right - labelWidth, TickY(k) - labelHeight / 2, labelWidth, labelHeight};
}

int GraphGeometry::LabelStep() const noexcept {
    const int intervals = scale.ticks - 1;
    int step = 1;
    while (step < intervals &&
           (intervals % step != 0 || Plot().Height() * step / intervals < labelPitch)) {
        ++step;
    }
    return step;
}

QRect GraphGeometry::UnitRect(int textWidth) const noexcept {
    const int right = Plot().left - graphTick - labelGap;
    const int left = std::max(right - textWidth, 0);
    return {left, Plot().top - labelHeight / 2 - labelHeight, textWidth, labelHeight};
}

int GraphGeometry::ValueY(std::int64_t value) const noexcept {
    const PlotArea plot = Plot();
    const std::int64_t maximum = scale.Maximum();
    if (maximum == 0) {
        return plot.bottom - 1;
    }
    const std::int64_t shown = std::min(value, maximum);
    const std::int64_t y = plot.bottom - plot.Height() * shown / maximum;
    return static_cast<int>(std::min<std::int64_t>(y, plot.bottom - 1));
}

int GraphGeometry::TimeX(int i) const noexcept {
    const PlotArea plot = Plot();
    return plot.left + plot.Width() * i / graphPage;
}

QRect GraphGeometry::ScrollBarRect() const noexcept {
    const PlotArea plot = Plot();
    return {plot.left, size.height() - scrollBarHeight, plot.Width(), scrollBarHeight};
}

int GraphGeometry::ItemX(int item) const noexcept {
    const PlotArea plot = Plot();
    return plot.left + plot.Width() * (item + 1) / (static_cast<int>(performanceItems) + 1);
}

QRect GraphGeometry::LetterRect(int item) const noexcept {
    return {{ItemX(item) - letterSize.width() / 2, Plot().bottom + 1}, letterSize};
}

QRect GraphGeometry::CircleRect() const noexcept {
    const PlotArea plot = Plot();
    const int diameter = std::min(plot.Width(), plot.Height());
    return {plot.left + (plot.Width() - diameter) / 2, plot.top + (plot.Height() - diameter) / 2,
            diameter, diameter};
}

} // namespace busquill
