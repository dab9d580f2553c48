#include "ui/link/setup_dialog.h"

#include "link/analyzer_link.h"
#include "link/port_setting.h"
#include "platform/prompts.h"
#include "platform/settings.h"
#include "ui/framework/help_page.h"
#include "ui/framework/window_timer.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>
#include <cstdlib>

namespace busquill {

namespace {

constexpr std::array rates{9600, 19200, 28800, 38400, 57600};
constexpr int serialPorts = 8;
constexpr int pollPeriod = 100; // milliseconds
constexpr int deviceCharacters = 44;

bool IsUsb(const std::string& port) {
    return port == "USB" || port == "USB2";
}

bool IsSerial(const std::string& port) {
    return port.starts_with("COM");
}

} // namespace

CSetupDialog::CSetupDialog(QWidget* parent, const Parts& parts, std::vector<SerialDevice> devices)
    : QDialog(parent), parts_(parts), devices_(std::move(devices)), port_(new QComboBox),
      device_(new QComboBox), baud_(new QComboBox),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)),
      timer_(new WindowTimer(this, parts.mainThread, [this] { PollBoard(); })) {
    setWindowTitle("Setup");
    SetHelpPage(*this, "connecting.md");
    port_->setObjectName("Port");
    device_->setObjectName("Device");
    baud_->setObjectName("Baud Rate");
    device_->setEditable(true);
    device_->setInsertPolicy(QComboBox::NoInsert);
    device_->setMinimumContentsLength(deviceCharacters);
    AddPorts();
    AddRates();

    auto* rows = new QFormLayout;
    rows->addRow("&Port", port_);
    rows->addRow("&Device", device_);
    rows->addRow("&Baud Rate", baud_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    layout->addWidget(buttons_);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons_, &QDialogButtonBox::accepted, this, &CSetupDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &CSetupDialog::reject);
    connect(port_, &QComboBox::currentTextChanged, this, [this] {
        ShowDevice();
        EnableFields();
    });
    ShowDevice();
    EnableFields();
}

void CSetupDialog::AddPorts() {
    port_->addItem("USB1", "USB");
    port_->addItem("USB2", "USB2");
    for (int number = 1; number <= serialPorts; ++number) {
        const QString name = QString("COM%1").arg(number);
        port_->addItem(name, name);
    }
    port_->addItem("<None>", "<None>");
    port_->setCurrentIndex(port_->findData(QString::fromStdString(
        parts_.settings.GetProfileString(SettingsSection::setup, SettingsKey::port, "USB"))));
}

void CSetupDialog::AddRates() {
    for (const int rate : rates) {
        baud_->addItem(QString::number(rate), rate);
    }
    baud_->setCurrentIndex(baud_->findData(parts_.settings.GetProfileInt(
        SettingsSection::setup, SettingsKey::baudRate, usualBaudRate)));
}

/// Empty while no port is selected, because the list does not have the stored one.
std::string CSetupDialog::PortName() const {
    return port_->currentData().toString().toStdString();
}

/// The device that is chosen or typed.
std::string CSetupDialog::Device() const {
    const int row = device_->findText(device_->currentText());
    return (row >= 0 ? device_->itemData(row).toString() : device_->currentText().trimmed())
        .toStdString();
}

/// The devices of this machine, and that of the selected port.
void CSetupDialog::ShowDevice() {
    device_->clear();
    device_->setToolTip("");
    const std::string port = PortName();
    if (!IsSerial(port)) {
        return;
    }
    for (const SerialDevice& device : devices_) {
        const QString path = QString::fromStdString(device.path);
        device_->addItem(device.description.empty()
                             ? path
                             : path + "  " + QString::fromStdString(device.description),
                         path);
    }
    const QString current = QString::fromStdString(PortNamed(port, parts_.settings).device);
    const int row = device_->findData(current);
    device_->setCurrentIndex(row);
    if (row < 0) {
        device_->setEditText(current);
    }
    const std::string variable = DeviceVariable(port);
    if (std::getenv(variable.c_str()) != nullptr) {
        device_->setToolTip(
            QString::fromStdString("Chosen by the environment variable " + variable));
    }
}

void CSetupDialog::EnableFields() {
    const bool waits = newRate_.has_value();
    const std::string port = PortName();
    port_->setEnabled(!waits);
    device_->setEnabled(!waits && IsSerial(port) && device_->toolTip().isEmpty());
    baud_->setEnabled(!waits && !IsUsb(port));
    buttons_->button(QDialogButtonBox::Ok)->setEnabled(!waits);
}

/// The board is told the new rate over the connection that is still open at the old one. The rate
/// is stored even if the board refuses it.
void CSetupDialog::accept() {
    const std::string port = PortName();
    if (!port.empty()) {
        parts_.settings.WriteProfileString(SettingsSection::setup, SettingsKey::port, port);
    }
    if (device_->isEnabled() && !Device().empty() &&
        Device() != PortNamed(port, parts_.settings).device) {
        StoreDevice(port, Device(), parts_.settings);
    }
    const int old =
        parts_.settings.GetProfileInt(SettingsSection::setup, SettingsKey::baudRate, usualBaudRate);
    const int rate = baud_->currentIndex() < 0 ? old : baud_->currentData().toInt();
    if (rate == old) {
        QDialog::accept();
        return;
    }
    parts_.settings.WriteProfileInt(SettingsSection::setup, SettingsKey::baudRate, rate);
    if (IsUsb(port)) {
        QDialog::accept();
        return;
    }
    newRate_.emplace(parts_.link, WritePayload(CmdSetBaudRate, OneByte(BaudCode(rate))));
    EnableFields();
    timer_->start(pollPeriod);
    PollBoard();
}

void CSetupDialog::PollBoard() {
    const PendingExchange::State state = newRate_->GetState();
    if (state == PendingExchange::State::Pending) {
        return;
    }
    timer_->stop();
    newRate_.reset();
    if (state == PendingExchange::State::Succeeded) {
        QDialog::accept();
        return;
    }
    parts_.prompts.TopmostMessage("Serial communications error setting baud rate.");
    EnableFields();
}

} // namespace busquill
