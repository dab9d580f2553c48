#include "ui/display/go_to_sample_dialog.h"

#include "ui/controls/number_field.h"
#include "ui/framework/help_page.h"

#include <QDialogButtonBox>
#include <QFormLayout>

#include <algorithm>

namespace busquill {

CGoToSampleDlg::CGoToSampleDlg(QWidget* parent) : QDialog(parent), number_(new NumberField) {
    setWindowTitle("Go to Sample");
    SetHelpPage(*this, "search.md#go-to-a-sample");
    number_->setValue(0);
    number_->selectAll();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QFormLayout(this);
    layout->addRow("Sample #", number_);
    layout->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

std::int64_t CGoToSampleDlg::Number() const {
    return number_->value();
}

std::int64_t SampleOfNumber(std::int64_t number, std::int64_t firstNumber,
                            std::int64_t count) noexcept {
    const std::int64_t index = std::max<std::int64_t>(number - firstNumber, 0);
    return index < count ? index : count - 1;
}

} // namespace busquill
