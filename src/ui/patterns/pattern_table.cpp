#include "ui/patterns/pattern_table.h"

#include "ui/framework/scroll_actions.h"
#include "ui/patterns/pattern_grid.h"

#include <QCoreApplication>
#include <QScrollBar>
#include <QVBoxLayout>

namespace busquill {

CPatternTable::CPatternTable(int rows, Prompts& prompts)
    : grid_(new CPatternGrid(this, prompts)), bar_(new QScrollBar(Qt::Horizontal)) {
    grid_->SetRowCount(rows);
    grid_->setMinimumHeight(HeightOfPatterns(rows));
    bar_->setEnabled(false);
    bar_->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(grid_, 1);
    layout->addWidget(bar_);
    connect(bar_, &QScrollBar::actionTriggered, this, &CPatternTable::Scrolled);
    connect(grid_, &CPatternGrid::LayoutChanged, this, &CPatternTable::SetBar);
}

void CPatternTable::SetList(CSignalList& list) {
    grid_->SetList(list);
    grid_->MoveSignalsTo(0);
    SetBar();
}

void CPatternTable::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    SetBar();
}

void CPatternTable::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    SetBar();
}

bool CPatternTable::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        return QCoreApplication::sendEvent(grid_, event); // works over the bar as over the grid
    }
    return QWidget::eventFilter(watched, event);
}

void CPatternTable::SetBar() {
    const BarState state = grid_->SignalBar();
    SetBarState(*bar_, state);
    bar_->setEnabled(state.needed);
}

void CPatternTable::Scrolled(int action) {
    ApplyScrollAction(
        *bar_, action, [this](bool right) { grid_->StepSignals(right); },
        [this](bool right) { grid_->PageSignals(right); },
        [this](int offset) { grid_->MoveSignalsTo(offset); }, [this] { return grid_->Offset(); });
}

} // namespace busquill
