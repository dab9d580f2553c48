#include "ui/exerciser/master_options_dialog.h"

#include "exerciser/master_form.h"
#include "ui/framework/help_page.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace busquill {

CMasterOptionsDialog::CMasterOptionsDialog(QWidget* parent, std::uint8_t& mask)
    : QDialog(parent), mask_(mask), level_(new QComboBox) {
    setWindowTitle("Master Options");
    SetHelpPage(*this, "master.md#options");
    for (int level = 0; level < busRequestLevels; ++level) {
        level_->addItem(QString::fromStdString(BusRequestLevelText(level)));
    }
    level_->setCurrentIndex(BusRequestLevelOf(mask));
    auto* rows = new QFormLayout;
    rows->addRow("Bus Request Level", level_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &CMasterOptionsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void CMasterOptionsDialog::accept() {
    mask_ = BusRequestMask(level_->currentIndex());
    QDialog::accept();
}

} // namespace busquill
