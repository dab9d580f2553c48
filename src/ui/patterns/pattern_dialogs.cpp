#include "ui/patterns/pattern_dialogs.h"

#include "ui/patterns/column_geometry.h"
#include "ui/patterns/pattern_grid.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace busquill {

namespace {

constexpr int gridHeight = 42; // the header and a row
constexpr QSize usualSize(640, 160);

} // namespace

PatternDialog::PatternDialog(QWidget* parent, const char* caption, CSignalList& list,
                             Prompts& prompts)
    : QDialog(parent), list_(list), grid_(new CPatternGrid(this, prompts)),
      bar_(new QScrollBar(Qt::Horizontal)) {
    setWindowTitle(caption);
    copy_.CopyFrom(list);
    grid_->SetRowCount(1);
    grid_->ShowLabels(false);
    grid_->SetText("Condition", "");
    grid_->SetList(copy_);
    grid_->setMinimumHeight(gridHeight);
    bar_->setEnabled(false);

    auto* group = new QGroupBox("Condition");
    auto* inside = new QVBoxLayout(group);
    inside->setSpacing(0);
    inside->addWidget(grid_, 1);
    inside->addWidget(bar_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group, 1);
    layout->addWidget(buttons);
    resize(usualSize);

    connect(bar_, &QScrollBar::actionTriggered, this, &PatternDialog::Scrolled);
    connect(grid_, &CPatternGrid::ColumnsChanged, this, &PatternDialog::SetBar);
    connect(buttons, &QDialogButtonBox::accepted, this, &PatternDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PatternDialog::reject);
}

void PatternDialog::accept() {
    list_.CopyFrom(copy_);
    QDialog::accept();
}

void PatternDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    SetBar();
}

void PatternDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    SetBar();
}

void PatternDialog::SetBar() {
    const int room = grid_->VisibleWidth();
    bar_->setRange(0, std::max(grid_->ContentWidth() - room, 0));
    bar_->setPageStep(std::max(room, minimumHorizontalPage));
    bar_->setEnabled(grid_->NeedsHScroll());
    bar_->setValue(grid_->Offset());
}

void PatternDialog::Scrolled(int action) {
    switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
    case QAbstractSlider::SliderSingleStepSub:
        grid_->StepColumn(action == QAbstractSlider::SliderSingleStepAdd);
        break;
    case QAbstractSlider::SliderPageStepAdd:
    case QAbstractSlider::SliderPageStepSub:
        grid_->PageColumns(action == QAbstractSlider::SliderPageStepAdd);
        break;
    default:
        grid_->SetOffset(bar_->sliderPosition());
        return;
    }
    bar_->setSliderPosition(grid_->Offset());
}

} // namespace busquill
