#include "ui/performance/performance_graph.h"

namespace busquill {

PerformanceGraph::PerformanceGraph(QWidget* parent) : PaintedWindow(parent) {}

void PerformanceGraph::SetScale(const PerformanceScale& scale, const QString& unit) {
    scale_ = scale;
    unit_ = unit;
    Render();
}

void PerformanceGraph::Clear() {
    items_ = {};
    Render();
}

void PerformanceGraph::EnableItem(std::size_t item) {
    if (item < items_.size()) {
        items_[item].enabled = true;
    }
}

void PerformanceGraph::SetItemColor(std::size_t item, std::uint32_t color) {
    if (item < items_.size()) {
        items_[item].color = color;
    }
}

void PerformanceGraph::SetItemStyle(std::size_t item, std::int32_t style) {
    if (item < items_.size()) {
        items_[item].style = style;
    }
}

void PerformanceGraph::SetUp(const PerformanceSetup& setup) {
    Clear();
    const PerformanceTypeRow& type = PerformanceTypeOf(setup.type);
    SetScale(type.scale, QString::fromUtf8(type.unit.data(), qsizetype(type.unit.size())));
    for (std::size_t item = 0; item < setup.items.size(); ++item) {
        if (setup.items[item].item != 0) {
            EnableItem(item);
        }
        SetItemColor(item, setup.items[item].color);
        SetItemStyle(item, setup.items[item].style);
    }
}

} // namespace busquill
