#include "ui/link/bus_config_dialog.h"

#include "link/analyzer_link.h"
#include "link/saved_bus_config.h"
#include "platform/settings.h"
#include "platform/text.h"
#include "ui/framework/help_page.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>

namespace busquill {

namespace {

/// Selects by value; with a value that the box does not have, nothing is selected.
void Select(QComboBox* box, std::int32_t value) {
    box->setCurrentIndex(value == 0 || value == 1 ? value : -1);
}

} // namespace

CBusConfigDialog::CBusConfigDialog(QWidget* parent, CAnalyzerLink& link, Settings& settings)
    : QDialog(parent), link_(link), settings_(settings), mode_(new QComboBox),
      width_(new QComboBox), voltage_(new QComboBox), frequency_(new QLineEdit),
      save_(new QCheckBox("&Save Configuration")) {
    setWindowTitle("Bus Configuration");
    SetHelpPage(*this, "bus-configuration.md");
    for (const std::int32_t mode : BusModesOf(link.Identity().modelId)) {
        mode_->addItem(QString::fromStdString(std::string(BusModeName(mode))), mode);
    }
    width_->addItems({"32 bit", "64 bit"});
    voltage_->addItems({"5.0V", "3.3V"});

    auto* frequencyRow = new QHBoxLayout;
    frequencyRow->addWidget(frequency_);
    frequencyRow->addWidget(new QLabel("MHz"));
    auto* bus = new QGroupBox("Bus");
    auto* rows = new QFormLayout(bus);
    rows->addRow("&Mode", mode_);
    rows->addRow("&Width", width_);
    rows->addRow("&Voltage", voltage_);
    auto* frequencyLabel = new QLabel("&Frequency");
    frequencyLabel->setBuddy(frequency_);
    rows->addRow(frequencyLabel, frequencyRow);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(bus);
    layout->addWidget(save_);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    config_ = InitialConfig();
    mode_->setCurrentIndex(std::max(0, mode_->findData(config_.busMode)));
    Select(width_, config_.busWidth);
    Select(voltage_, config_.busVoltage);
    frequency_->setText(QString::number(config_.busFrequency));
}

BusConfig CBusConfigDialog::InitialConfig() {
    const auto saved = LoadSavedBusConfig(settings_);
    save_->setChecked(saved.has_value());
    BusConfig config;
    if (saved) {
        config = *saved;
    } else {
        link_.ReadBusConfig(config);
    }
    return config;
}

void CBusConfigDialog::accept() {
    if (mode_->currentIndex() >= 0) {
        config_.busMode = mode_->currentData().toInt();
    }
    if (width_->currentIndex() >= 0) {
        config_.busWidth = width_->currentIndex();
    }
    if (voltage_->currentIndex() >= 0) {
        config_.busVoltage = voltage_->currentIndex();
    }
    config_.busFrequency = ParseInt(frequency_->text().toStdString());
    link_.WriteBusConfig(config_);
    SaveBusConfig(settings_, save_->isChecked() ? std::optional(config_) : std::nullopt);
    QDialog::accept();
}

} // namespace busquill
