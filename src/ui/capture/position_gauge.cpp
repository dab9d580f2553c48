#include "ui/capture/position_gauge.h"

#include "ui/framework/painting.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace busquill {

namespace {

constexpr std::uint32_t ground = 0xC0C0C0;
constexpr std::uint32_t lightYellow = 0x3FFFFF;
constexpr std::uint32_t blue = 0xFF0000;
constexpr std::uint32_t green = 0x00FF00;
constexpr std::uint32_t red = 0x0000FF;
constexpr std::uint32_t magenta = 0xE000E0;
constexpr std::uint32_t black = 0;
constexpr int tickWidth = 2;
constexpr int tickHeight = 6;
constexpr int smallestWindow = 3;

} // namespace

// Positions are relative to the window's left edge, which is one pixel left of the rectangle.
std::vector<GaugeBar> GaugeBars(const GaugeState& state, int left, int right) {
    std::vector<GaugeBar> bars;
    if (state.total <= 0 || right <= left) {
        return bars;
    }
    const auto fill = [&](std::int64_t from, std::int64_t to, std::uint32_t color) {
        const GaugeBar bar{std::max(static_cast<int>(from), left),
                           std::min(static_cast<int>(to), right), color, false};
        if (bar.left < bar.right) {
            bars.push_back(bar);
        }
    };
    const std::int64_t width = right - left;
    const auto place = [&](std::int64_t sample) { return sample * width / state.total; };
    const std::int64_t trigger = place(state.trigger);

    if (state.before == -1 && state.after == -1) {
        fill(left, right, lightYellow);
    }
    if (state.before != -1 && state.trigger != -1) {
        const std::int64_t full =
            state.trigger == 0 ? 0 : std::min(state.before * trigger / state.trigger, trigger);
        fill(left, full, blue);
    }
    if (state.windowFirst != -1 && state.windowLast != -1) {
        std::int64_t from = std::min<std::int64_t>(place(state.windowFirst), right);
        std::int64_t to = place(state.windowLast);
        if (to - from < smallestWindow) {
            from -= from > left ? 1 : 0;
            to = from + smallestWindow;
            if (to > right) {
                to = right;
                from = to - smallestWindow;
            }
        }
        fill(from, to, black);
    }
    if (state.after != -1 && state.trigger != -1 && state.total != state.trigger) {
        const std::int64_t full =
            trigger + (right - trigger) * state.after / (state.total - state.trigger);
        fill(trigger, std::min<std::int64_t>(full, right), blue);
    }
    for (const std::int64_t sample : state.bookmarks) {
        const auto x =
            static_cast<int>(std::clamp<std::int64_t>(place(sample), left, right - tickWidth));
        if (bars.empty() || !bars.back().isTick || bars.back().left != x) {
            bars.push_back({x, x + tickWidth, magenta, true});
        }
    }
    for (const auto& [sample, color] :
         {std::pair(state.trigger, red), {state.marker2, blue}, {state.marker1, green}}) {
        if (sample != -1) {
            const std::int64_t x = std::min<std::int64_t>(place(sample), right - 1);
            fill(std::max<std::int64_t>(x, left), std::max<std::int64_t>(x, left) + 1, color);
        }
    }
    return bars;
}

CPositionGauge::CPositionGauge(QWidget* parent) : QWidget(parent) {
    setMinimumSize(60, 16);
    setToolTip("Position of the window, the trigger, the markers and the bookmarks in the capture");
}

void CPositionGauge::Set(std::int64_t GaugeState::*field, std::int64_t value) {
    if (state_.*field != value) {
        state_.*field = value;
        update();
    }
}

void CPositionGauge::SetTotal(std::int64_t samples) {
    Set(&GaugeState::total, samples);
}

void CPositionGauge::SetTrigger(std::int64_t sample) {
    Set(&GaugeState::trigger, sample);
}

void CPositionGauge::SetMarker1(std::int64_t sample) {
    Set(&GaugeState::marker1, sample);
}

void CPositionGauge::SetMarker2(std::int64_t sample) {
    Set(&GaugeState::marker2, sample);
}

void CPositionGauge::SetWindow(std::int64_t first, std::int64_t last) {
    Set(&GaugeState::windowFirst, first);
    Set(&GaugeState::windowLast, last);
}

void CPositionGauge::SetBookmarks(std::vector<std::int64_t> samples) {
    if (samples != state_.bookmarks) {
        state_.bookmarks = std::move(samples);
        update();
    }
}

void CPositionGauge::SetCounts(std::int64_t before, std::int64_t after) {
    Set(&GaugeState::before, before);
    Set(&GaugeState::after, after);
}

void CPositionGauge::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    DrawEdge(painter, rect(), Edge::Sunken);
    const QRect inside = rect().adjusted(1, 1, -1, -1);
    painter.fillRect(inside, ColorOf(ground));
    for (const GaugeBar& bar : GaugeBars(state_, inside.left(), inside.right() + 1)) {
        painter.fillRect(bar.left, inside.top(), bar.right - bar.left,
                         bar.isTick ? tickHeight : inside.height(), ColorOf(bar.color));
    }
}

} // namespace busquill
