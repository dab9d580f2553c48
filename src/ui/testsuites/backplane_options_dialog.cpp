#include "ui/testsuites/backplane_options_dialog.h"

#include "ui/framework/help_page.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

namespace busquill {

CBackplaneOptionsDlg::CBackplaneOptionsDlg(QWidget* parent, BackplaneSensitivity sensitivity)
    : QDialog(parent), choices_(new QButtonGroup(this)) {
    setWindowTitle("Backplane Options");
    SetHelpPage(*this, "backplane.md#options");
    auto* group = new QGroupBox("Sensitivity");
    auto* column = new QVBoxLayout(group);
    const std::pair<const char*, BackplaneSensitivity> choices[] = {
        {"Normal", BackplaneSensitivity::Normal},
        {"High", BackplaneSensitivity::High},
        {"Low", BackplaneSensitivity::Low}};
    for (const auto& [text, value] : choices) {
        auto* choice = new QRadioButton(text);
        choice->setChecked(value == sensitivity);
        choices_->addButton(choice, static_cast<int>(value));
        column->addWidget(choice);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addWidget(buttons);
}

BackplaneSensitivity CBackplaneOptionsDlg::Sensitivity() const {
    return static_cast<BackplaneSensitivity>(choices_->checkedId());
}

} // namespace busquill
