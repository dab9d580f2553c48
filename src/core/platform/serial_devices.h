#pragma once

#include <string>
#include <vector>

namespace busquill {

/// A serial port of this machine.
struct SerialDevice {
    std::string path;        // such as /dev/ttyUSB0
    std::string description; // of the adapter, as it tells itself; may be empty
};

/// The serial ports that the system knows now, sorted by path. `folder` is where the system lists
/// its terminals.
[[nodiscard]] std::vector<SerialDevice> SerialDevices(const std::string& folder = "/sys/class/tty");

} // namespace busquill
