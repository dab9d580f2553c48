#include "ui/tracesetup/setup_wizard_dialog.h"

#include "ui/framework/help_page.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr int valueCharacters = 40; // two numbers of 16 digits and " to " between them

/// Radio buttons in a row, with their positions as ids. The last one is preselected.
QButtonGroup* AddChoice(QFormLayout& form, const QString& label, const QStringList& choices) {
    auto* row = new QHBoxLayout;
    auto* group = new QButtonGroup(&form);
    for (const QString& choice : choices) {
        auto* button = new QRadioButton(choice);
        group->addButton(button, static_cast<int>(group->buttons().size()));
        row->addWidget(button);
    }
    row->addStretch();
    group->buttons().last()->setChecked(true);
    form.addRow(label, row);
    return group;
}

QLineEdit* AddValue(QFormLayout& form, const QString& label) {
    auto* edit = new QLineEdit;
    edit->setMinimumWidth(edit->fontMetrics().averageCharWidth() * valueCharacters);
    form.addRow(label, edit);
    return edit;
}

} // namespace

CSetupWizardDialog::CSetupWizardDialog(QWidget* parent, TraceSetup& setup, Prompts& prompts,
                                       const std::function<void()>& showHelp)
    : QDialog(parent), setup_(setup), prompts_(prompts),
      isVme_(setup.events.Tables().Board().IsVmeFamily()) {
    setWindowTitle("Setup WIzard - Trace"); // this spelling is intended
    SetHelpPage(*this, "setup-wizard.md");
    auto* hint = new QLabel("You can specify an address or data range as follows: 100 to 200");
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                         QDialogButtonBox::Help);
    buttons->button(QDialogButtonBox::Help)->setText("&Help");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(AddQuestion("What do you want to trigger on?", trigger_));
    layout->addWidget(AddQuestion("What do you want to store?", store_));
    layout->addWidget(hint);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons, &QDialogButtonBox::accepted, this, &CSetupWizardDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, showHelp);
    trigger_.address->setFocus();
}

QGroupBox* CSetupWizardDialog::AddQuestion(const QString& question, Fields& fields) {
    auto* group = new QGroupBox(question);
    auto* form = new QFormLayout(group);
    fields.cycle = AddChoice(*form, "Cycle:",
                             isVme_ ? QStringList{"Memory"}
                                    : QStringList{"Memory", "I/O", "Configuration", "All"});
    fields.direction = AddChoice(*form, "Direction:",
                                 isVme_ ? QStringList{"Read", "Write", "Interrupt", "All"}
                                        : QStringList{"Read", "Write", "Both"});
    fields.address = AddValue(*form, "Address:");
    fields.data = AddValue(*form, "Data:");
    return group;
}

bool CSetupWizardDialog::ReadValue(QLineEdit& edit, WizardValue& value) {
    const auto read = ParseWizardValue(edit.text().toStdString(), prompts_);
    if (!read) {
        edit.setFocus();
        edit.selectAll();
        return false;
    }
    value = *read;
    return true;
}

bool CSetupWizardDialog::Read(const Fields& fields, WizardAnswer& answer) {
    answer.cycle = static_cast<WizardCycle>(fields.cycle->checkedId());
    answer.direction = static_cast<std::size_t>(fields.direction->checkedId());
    return ReadValue(*fields.address, answer.address) && ReadValue(*fields.data, answer.data);
}

void CSetupWizardDialog::accept() {
    WizardAnswer trigger;
    WizardAnswer store;
    if (Read(trigger_, trigger) && Read(store_, store)) {
        BuildWizardSetup(setup_, trigger, store);
        QDialog::accept();
    }
}

} // namespace busquill
