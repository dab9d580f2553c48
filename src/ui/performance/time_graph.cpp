#include "ui/performance/time_graph.h"

#include "ui/framework/scroll_actions.h"

#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <limits>

namespace busquill {

namespace {

constexpr std::chrono::milliseconds tickPeriod{200};

int PositionOf(std::int64_t index) {
    return static_cast<int>(std::min<std::int64_t>(index, std::numeric_limits<int>::max()));
}

} // namespace

CTimeGraph::CTimeGraph(QWidget* parent, const MainThread& mainThread, const ResultStore& results)
    : PerformanceGraph(parent), results_(results), bar_(new QScrollBar(Qt::Horizontal, this)),
      timer_(this, mainThread) {
    bar_->setAccessibleName("Time");
    connect(bar_, &QScrollBar::actionTriggered, this, &CTimeGraph::Scroll);
    UpdateBar();
    timer_.Start(tickPeriod, [this] { Tick(); });
}

void CTimeGraph::Clear() {
    page_.Clear();
    UpdateBar();
    PerformanceGraph::Clear();
}

void CTimeGraph::Tick() {
    const TimePage::Change change = page_.Follow(results_);
    if (change.page || change.count) {
        UpdateBar();
    }
    if (change.page) {
        Render();
    }
    if (change.count) {
        emit ResultCountChanged(page_.LastCount());
    }
}

void CTimeGraph::Scroll(int action) {
    const auto page = [this](bool forward) { Turn(forward); };
    if (ApplyScrollAction(
            *bar_, action, page, page, [this](int position) { page_.ScrollTo(position, results_); },
            [this] { return PositionOf(page_.FirstShown()); })) {
        UpdateBar();
    }
    Render();
}

void CTimeGraph::Turn(bool forward) {
    forward ? page_.ScrollForward(results_) : page_.ScrollBack(results_);
}

void CTimeGraph::UpdateBar() {
    if (!bar_->isSliderDown()) { // while it is dragged, it stays under the pointer
        SetBarState(*bar_, {PositionOf(page_.ScrollMaximum()), graphPage,
                            PositionOf(page_.FirstShown()), page_.ScrollMaximum() > 0});
    }
}

void CTimeGraph::Draw(QPainter& painter) {
    std::vector<TimeLine> lines;
    for (std::size_t item = 0; item < Items().size(); ++item) {
        if (Items()[item].enabled) {
            const auto values = page_.Values(item);
            lines.push_back(
                {Items()[item].color, Items()[item].style, {values.begin(), values.end()}});
        }
    }
    DrawTimeGraph(painter, Frame(), lines);
}

void CTimeGraph::resizeEvent(QResizeEvent* event) {
    PerformanceGraph::resizeEvent(event);
    bar_->setGeometry(Geometry().ScrollBarRect());
}

void CTimeGraph::wheelEvent(QWheelEvent* event) {
    const int notches = wheel_.Take(*event).notches;
    for (int i = 0; i < std::abs(notches); ++i) {
        Turn(notches > 0);
    }
    if (notches != 0) {
        UpdateBar();
        Render();
    }
    event->accept();
}

} // namespace busquill
