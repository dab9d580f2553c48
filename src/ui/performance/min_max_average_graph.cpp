#include "ui/performance/min_max_average_graph.h"

#include <QMetaObject>
#include <QPainter>

namespace busquill {

void CMinMaxAverageGraph::SetScale(const PerformanceScale& scale, const QString& unit) {
    statistics_.SetMaximum(scale.Maximum());
    PerformanceGraph::SetScale(scale, unit);
}

void CMinMaxAverageGraph::Clear() {
    statistics_.Clear();
    PerformanceGraph::Clear();
}

void CMinMaxAverageGraph::EnableItem(std::size_t item) {
    PerformanceGraph::EnableItem(item);
    statistics_.Enable(item);
}

void CMinMaxAverageGraph::AddResults(const PerformanceResults& results) {
    if (statistics_.Add(results)) {
        SetOutdated();
    }
}

void CMinMaxAverageGraph::AddAll(const ResultStore& results) {
    statistics_.AddAll(results);
    SetOutdated();
}

/// Several results before the next paint event are drawn once.
void CMinMaxAverageGraph::SetOutdated() {
    if (!outdated_.exchange(true)) {
        QMetaObject::invokeMethod(this, [this] { update(); });
    }
}

void CMinMaxAverageGraph::SetPieForm(bool pie) {
    pieForm_ = pie;
    Render();
}

void CMinMaxAverageGraph::Draw(QPainter& painter) {
    outdated_ = false;
    if (pieForm_) {
        DrawMinMaxAveragePie(painter, Frame());
        return;
    }
    const RangeStatistics::Items ranges = statistics_.Current();
    std::vector<ValueRange> drawn;
    for (std::size_t item = 0; item < ranges.size(); ++item) {
        const auto& range = ranges[item];
        if (range.enabled && range.minimum != ItemStatistics::none) {
            drawn.push_back({item, Items()[item].color, range.minimum, range.maximum,
                             range.count > 0 ? std::optional(range.Average()) : std::nullopt});
        }
    }
    DrawMinMaxAverageGraph(painter, Frame(), drawn);
}

} // namespace busquill
