#include "ui/tracesetup/condition_dialog.h"

#include "tracesetup/trace_setup.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QVBoxLayout>

namespace busquill {

CTraceConditionDialog::CTraceConditionDialog(QWidget* parent, std::int32_t level, bool trigger)
    : QDialog(parent), level_(new QComboBox), trigger_(new QCheckBox("&Trigger")) {
    setWindowTitle("Trace Condition");
    for (std::int32_t each = 0; each < traceLevels; ++each) {
        level_->addItem(QString::fromStdString(FormatTraceGoto(each, false)));
    }
    level_->setMaxVisibleItems(traceLevels);
    level_->setCurrentIndex(level);
    trigger_->setChecked(trigger);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(level_);
    layout->addWidget(trigger_);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

std::int32_t CTraceConditionDialog::Level() const {
    return level_->currentIndex();
}

bool CTraceConditionDialog::Trigger() const {
    return trigger_->isChecked();
}

} // namespace busquill
