#include "ui/capture/new_window_dialog.h"

#include "platform/settings.h"
#include "ui/framework/help_page.h"

#include <QDialogButtonBox>
#include <QRadioButton>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr const char* key = "NewTraceWindow";

} // namespace

CNewWindowDialog::CNewWindowDialog(QWidget* parent, Settings& settings)
    : QDialog(parent), settings_(settings), newWindow_(new QRadioButton("Open new window")) {
    setWindowTitle("New Trace Window");
    SetHelpPage(*this, "capture.md#new-trace-window");
    auto* existing = new QRadioButton("Switch existing window");
    (settings_.GetProfileInt(SettingsSection::setup, key, 0) != 0 ? newWindow_ : existing)
        ->setChecked(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &CNewWindowDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CNewWindowDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(existing);
    layout->addWidget(newWindow_);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

bool CNewWindowDialog::OpensNewWindow() const {
    return newWindow_->isChecked();
}

void CNewWindowDialog::accept() {
    settings_.WriteProfileInt(SettingsSection::setup, key, OpensNewWindow() ? 1 : 0);
    QDialog::accept();
}

} // namespace busquill
