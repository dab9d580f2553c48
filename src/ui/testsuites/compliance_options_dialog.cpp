#include "ui/testsuites/compliance_options_dialog.h"

#include "ui/framework/help_page.h"
#include "ui/patterns/pattern_edit.h"

#include <QDialogButtonBox>
#include <QFormLayout>

namespace busquill {

CComplianceOptionsDialog::CComplianceOptionsDialog(QWidget* parent, const BusAddress& address)
    : QDialog(parent), address_(new CPatternEdit) {
    setWindowTitle(" Compliance Test Options");
    SetHelpPage(*this, "compliance.md#options");
    std::uint64_t value = 0;
    for (std::size_t byte = address.size(); byte-- > 0;) {
        value = value << 8 | address[byte];
    }
    address_->setObjectName("Target Start Address");
    address_->SetValue(value);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QFormLayout(this);
    layout->addRow("Target Start Address", address_);
    layout->addRow(buttons);
}

BusAddress CComplianceOptionsDialog::Address() const {
    BusAddress address{};
    for (std::size_t byte = 0; byte < address.size(); ++byte) {
        address[byte] = static_cast<std::uint8_t>(address_->Value() >> (8 * byte));
    }
    return address;
}

} // namespace busquill
