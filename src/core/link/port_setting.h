#pragma once

#include "platform/settings.h"

#include <string>

namespace busquill {

/// Where the board is. A value: whoever connects makes one, and edits it, as he likes.
struct PortSetting {
    enum class Kind { None, Serial, Usb };

    Kind kind = Kind::None;
    std::string name;   // as the user knows the port, and messages call it
    std::string device; // the path of a serial port; of USB what UsbBus::Find takes
    int baud = usualBaudRate;
};

/// The port of a name, with the device and the rate that the settings give it: "COM1" and so on,
/// "USB" and "USB2", which are the same. No other name is a port.
[[nodiscard]] PortSetting PortNamed(const std::string& name, const Settings& settings);

/// The port that the settings choose.
[[nodiscard]] PortSetting ReadPortSetting(const Settings& settings);

} // namespace busquill
