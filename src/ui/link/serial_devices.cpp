#include "ui/link/serial_devices.h"

#include <QSerialPortInfo>

#include <algorithm>

namespace busquill {

std::vector<SerialDevice> SerialDevices() {
    std::vector<SerialDevice> devices;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts()) {
        devices.push_back({port.systemLocation().toStdString(), port.description().toStdString()});
    }
    std::ranges::sort(devices, {}, &SerialDevice::path);
    return devices;
}

} // namespace busquill
