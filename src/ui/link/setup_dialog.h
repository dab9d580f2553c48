#pragma once

#include "link/pending_exchange.h"
#include "platform/serial_devices.h"

#include <QDialog>

#include <optional>
#include <string>
#include <vector>

class QComboBox;
class QDialogButtonBox;

namespace busquill {

class CAnalyzerLink;
class MainThread;
class Prompts;
class Settings;
class WindowTimer;

/// Chooses the port of the board and its rate, which a board on a serial port is told before the
/// dialog closes, and the device of a COM port. The caller connects again.
class CSetupDialog final : public QDialog {
    Q_OBJECT
public:
    struct Parts {
        CAnalyzerLink& link;
        Settings& settings;
        Prompts& prompts;
        const MainThread& mainThread;
    };
    /// `devices` are offered for the COM ports.
    CSetupDialog(QWidget* parent, const Parts& parts, std::vector<SerialDevice> devices);

    void accept() override;

private:
    [[nodiscard]] std::string PortName() const;
    [[nodiscard]] std::string Device() const;
    void AddPorts();
    void AddRates();
    void ShowDevice();
    void EnableFields();
    void PollBoard();

    const Parts parts_;
    const std::vector<SerialDevice> devices_;
    QComboBox* port_;
    QComboBox* device_;
    QComboBox* baud_;
    QDialogButtonBox* buttons_;
    WindowTimer* timer_;
    std::optional<PendingExchange> newRate_; // on its way to the board
};

} // namespace busquill
