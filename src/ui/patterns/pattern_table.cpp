#include "ui/patterns/pattern_table.h"

#include "ui/framework/scroll_actions.h"
#include "ui/patterns/pattern_grid.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QScrollBar>

namespace busquill {

CPatternTable::CPatternTable(int rows, Prompts& prompts, PatternRows shown)
    : grid_(new CPatternGrid(this, prompts)), signalBar_(new QScrollBar(Qt::Horizontal)) {
    grid_->SetRowCount(rows);
    signalBar_->setEnabled(false);
    signalBar_->installEventFilter(this);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(grid_, 0, 0);
    layout->addWidget(signalBar_, 1, 0);
    layout->setRowStretch(0, 1);
    layout->setColumnStretch(0, 1);
    if (shown == PatternRows::Scrolled) {
        rowBar_ = new QScrollBar(Qt::Vertical);
        layout->addWidget(rowBar_, 0, 1);
        connect(rowBar_, &QScrollBar::valueChanged, grid_, &CPatternGrid::MoveRowsTo);
    } else {
        grid_->setMinimumHeight(HeightOfPatterns(rows));
    }
    connect(signalBar_, &QScrollBar::actionTriggered, this, &CPatternTable::Scrolled);
    connect(grid_, &CPatternGrid::LayoutChanged, this, &CPatternTable::SetBars);
}

void CPatternTable::SetList(CSignalList& list, std::uint32_t mode) {
    grid_->SetList(list, mode);
    grid_->MoveSignalsTo(0);
    SetBars();
}

void CPatternTable::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    SetBars();
}

void CPatternTable::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    SetBars();
}

bool CPatternTable::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        return QCoreApplication::sendEvent(grid_, event); // works over the bar as over the grid
    }
    return QWidget::eventFilter(watched, event);
}

void CPatternTable::SetBars() {
    const auto set = [](QScrollBar& bar, const BarState& state) {
        SetBarState(bar, state);
        bar.setEnabled(state.needed);
    };
    set(*signalBar_, grid_->SignalBar());
    if (rowBar_ != nullptr) {
        set(*rowBar_, grid_->RowBar());
    }
}

void CPatternTable::Scrolled(int action) {
    ApplyScrollAction(
        *signalBar_, action, [this](bool right) { grid_->StepSignals(right); },
        [this](bool right) { grid_->PageSignals(right); },
        [this](int offset) { grid_->MoveSignalsTo(offset); }, [this] { return grid_->Offset(); });
}

} // namespace busquill
