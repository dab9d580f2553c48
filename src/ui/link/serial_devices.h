#pragma once

#include <string>
#include <vector>

namespace busquill {

/// A serial port of this machine.
struct SerialDevice {
    std::string path;        // such as /dev/ttyUSB0
    std::string description; // of the adapter, as it tells itself; may be empty
};

/// The serial ports that the system knows now, sorted by path.
[[nodiscard]] std::vector<SerialDevice> SerialDevices();

} // namespace busquill
