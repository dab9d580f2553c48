#pragma once

#include "performance/performance_setup.h"
#include "ui/framework/painted_window.h"
#include "ui/performance/graph_painter.h"

#include <array>

namespace busquill {

/// The base of the two graphs: which items they show, how, and on what scale. Main thread.
class PerformanceGraph : public PaintedWindow {
    Q_OBJECT
public:
    explicit PerformanceGraph(QWidget* parent);

    virtual void SetScale(const PerformanceScale& scale, const QString& unit);
    /// Turns all items off and forgets their values.
    virtual void Clear();

    // These do nothing for an item that does not exist. They show with the next drawing.

    virtual void EnableItem(std::size_t item);
    void SetItemColor(std::size_t item, std::uint32_t color);
    void SetItemStyle(std::size_t item, std::int32_t style);

    /// Clears, and takes scale, items, colours and styles from a setup.
    void SetUp(const PerformanceSetup& setup);

protected:
    struct Item {
        bool enabled = false;
        std::uint32_t color = 0;
        std::int32_t style = 0;
    };

    [[nodiscard]] GraphGeometry Geometry() const { return {size(), labelWidth_, scale_}; }
    [[nodiscard]] GraphFrame Frame() const { return {Geometry(), style_, unit_}; }
    [[nodiscard]] const std::array<Item, performanceItems>& Items() const noexcept {
        return items_;
    }

private:
    const GraphStyle style_ = ScreenGraphStyle();
    const int labelWidth_ = style_.LabelWidth();
    PerformanceScale scale_{};
    QString unit_;
    std::array<Item, performanceItems> items_{};
};

} // namespace busquill
