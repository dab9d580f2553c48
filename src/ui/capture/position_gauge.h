#pragma once

#include <QWidget>

#include <cstdint>
#include <vector>

namespace busquill {

/// What the gauge shows of a capture; -1 means unset.
struct GaugeState {
    std::int64_t total = -1; // samples that the whole width represents
    std::int64_t trigger = -1;
    std::int64_t marker1 = -1;
    std::int64_t marker2 = -1;
    std::int64_t windowFirst = -1; // what a view shows
    std::int64_t windowLast = -1;
    std::int64_t before = -1; // counts while a capture runs
    std::int64_t after = -1;
    std::vector<std::int64_t> bookmarks = {};
};

/// A filled part of the gauge, over its full height unless it is a tick; a line is a bar one pixel
/// wide.
struct GaugeBar {
    int left = 0;
    int right = 0; // the first pixel after it
    std::uint32_t color = 0;
    bool isTick = false; // only at the top
    friend bool operator==(const GaugeBar&, const GaugeBar&) = default;
};

/// The bars in a rectangle from `left` to `right`, in the order in which they are drawn over the
/// background.
[[nodiscard]] std::vector<GaugeBar> GaugeBars(const GaugeState& state, int left, int right);

/// Shows which part of a capture a view shows, where trigger and markers are, and how far the
/// board's memory has filled.
class CPositionGauge final : public QWidget {
    Q_OBJECT
public:
    explicit CPositionGauge(QWidget* parent = nullptr);

    void SetTotal(std::int64_t samples);
    void SetTrigger(std::int64_t sample);
    void SetMarker1(std::int64_t sample);
    void SetMarker2(std::int64_t sample);
    void SetWindow(std::int64_t first, std::int64_t last);
    void SetBookmarks(std::vector<std::int64_t> samples);
    void SetCounts(std::int64_t before, std::int64_t after);
    [[nodiscard]] const GaugeState& State() const noexcept { return state_; }

    [[nodiscard]] QSize sizeHint() const override { return {160, 20}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Set(std::int64_t GaugeState::*field, std::int64_t value);

    GaugeState state_;
};

} // namespace busquill
