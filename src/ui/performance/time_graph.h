#pragma once

#include "performance/result_store.h"
#include "performance/time_page.h"
#include "ui/framework/wheel_turns.h"
#include "ui/framework/window_timer.h"
#include "ui/performance/performance_graph.h"

class QScrollBar;

namespace busquill {

/// Draws the results over time, a page at a time. Every 200 ms it takes the results that have come.
class CTimeGraph final : public PerformanceGraph {
    Q_OBJECT
public:
    /// The results outlive the graph.
    CTimeGraph(QWidget* parent, const MainThread& mainThread, const ResultStore& results);

    void Clear() override;

    [[nodiscard]] const TimePage& Page() const noexcept { return page_; }

signals:
    void ResultCountChanged(qint64 count);

protected:
    void Draw(QPainter& painter) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void Tick();
    void Scroll(int action);
    void Turn(bool forward);
    void UpdateBar();

    const ResultStore& results_;
    TimePage page_;
    QScrollBar* bar_;
    WheelTurns wheel_;
    WindowTimer timer_;
};

} // namespace busquill
