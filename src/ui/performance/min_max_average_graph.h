#pragma once

#include "performance/result_statistics.h"
#include "ui/performance/performance_graph.h"

#include <atomic>

namespace busquill {

/// Draws the range and the average of each item.
class CMinMaxAverageGraph final : public PerformanceGraph {
    Q_OBJECT
public:
    using PerformanceGraph::PerformanceGraph;

    void SetScale(const PerformanceScale& scale, const QString& unit) override;
    void Clear() override;
    void EnableItem(std::size_t item) override;

    /// Any thread. The graph is drawn again when a minimum or a maximum has moved.
    void AddResults(const PerformanceResults& results);
    /// Adds what a store holds.
    void AddAll(const ResultStore& results);

    /// A pie instead of ranges; it has no slices.
    void SetPieForm(bool pie);

protected:
    void Draw(QPainter& painter) override;
    [[nodiscard]] bool IsOutdated() const override { return outdated_; }

private:
    void SetOutdated();

    RangeStatistics statistics_;
    std::atomic<bool> outdated_ = false;
    bool pieForm_ = false;
};

} // namespace busquill
