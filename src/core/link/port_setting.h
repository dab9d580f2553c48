#pragma once

#include "platform/settings.h"

#include <string>

namespace busquill {

/// Where the board is. A plain value: the caller of Open or Connect creates it and may change it.
struct PortSetting {
    enum class Kind { None, Serial, Usb };

    Kind kind = Kind::None;
    std::string name;   // as shown to the user and in messages
    std::string device; // the path of a serial port; for USB the argument of UsbBus::Find
    int baud = usualBaudRate;

    /// The name with the device, for messages: "COM1 (/dev/ttyS0)".
    [[nodiscard]] std::string Label() const;
};

/// The port of a name, with its device and rate from the settings: "COM1" and so on, or "USB" and
/// "USB2", which are the same. Any other name gives no port.
[[nodiscard]] PortSetting PortNamed(const std::string& name, const Settings& settings);

/// The port that the settings choose.
[[nodiscard]] PortSetting ReadPortSetting(const Settings& settings);

/// Stores the device of a COM port.
void StoreDevice(const std::string& name, const std::string& device, Settings& settings);

/// The environment variable that ties a COM port to a device, whatever is stored.
[[nodiscard]] std::string DeviceVariable(const std::string& name);

/// Why a port could not be opened, as the end of a sentence that begins with "the port": its label
/// and what is wrong. `error` is the platform's error number.
[[nodiscard]] std::string OpenFailure(const PortSetting& port, int error);

} // namespace busquill
