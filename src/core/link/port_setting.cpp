#include "link/port_setting.h"

#include "platform/serial_port.h"
#include "platform/text.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace busquill {

namespace {

/// The number of a port whose name begins with "COM"; below 1 without one.
int NumberOf(const std::string& name) {
    return ParseInt(std::string_view(name).substr(3));
}

std::string DeviceKey(const std::string& name) {
    return Printf("ComDevice%d", NumberOf(name));
}

/// The device of a port whose name begins with "COM". A name without a number from 1 up is used as
/// it is, and fails to open.
std::string DeviceOf(const std::string& name, const Settings& settings) {
    const int number = NumberOf(name);
    if (number < 1) {
        return name;
    }
    if (const char* device = std::getenv(DeviceVariable(name).c_str())) {
        return device;
    }
#if defined(_WIN32)
    const std::string usual = name;
#else
    const std::string usual = Printf("/dev/ttyS%d", number - 1);
#endif
    return settings.GetProfileString(SettingsSection::setup, DeviceKey(name), usual);
}

} // namespace

std::string PortSetting::Label() const {
    return device.empty() || device == name ? name : name + " (" + device + ")";
}

PortSetting PortNamed(const std::string& name, const Settings& settings) {
    PortSetting port;
    port.name = name;
    port.baud =
        settings.GetProfileInt(SettingsSection::setup, SettingsKey::baudRate, usualBaudRate);
    if (name == "USB" || name == "USB2") {
        port.kind = PortSetting::Kind::Usb;
        port.device = settings.GetProfileString(SettingsSection::setup, "UsbDevice", "");
    } else if (name.size() >= 4 && name.starts_with("COM")) {
        port.kind = PortSetting::Kind::Serial;
        port.device = DeviceOf(name, settings);
    }
    return port;
}

PortSetting ReadPortSetting(const Settings& settings) {
    return PortNamed(settings.GetProfileString(SettingsSection::setup, SettingsKey::port, "USB"),
                     settings);
}

void StoreDevice(const std::string& name, const std::string& device, Settings& settings) {
    settings.WriteProfileString(SettingsSection::setup, DeviceKey(name), device);
}

std::string DeviceVariable(const std::string& name) {
    return Printf("BUSQUILL_COM%d", NumberOf(name));
}

std::string OpenFailure(const PortSetting& port, int error) {
    const std::string label = port.Label();
    switch (error) {
    case ENOENT:
        return label + " does not exist";
    case EACCES:
    case EPERM: {
        const std::string group = GroupOfDevice(port.device);
        return label + " may not be opened by you: it belongs to the group " + group +
               " (\"sudo usermod -aG " + group + " $USER\" adds you; then log in again)";
    }
    case EBUSY:
        return label + " is in use by another program";
    case ENOTTY:
        return label + " is not a serial port";
    case 0:
        return label + " cannot be opened";
    default:
        return label + " cannot be opened: " + std::strerror(error);
    }
}

} // namespace busquill
