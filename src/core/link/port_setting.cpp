#include "link/port_setting.h"

#include "platform/text.h"

#include <cstdlib>
#include <string_view>

namespace busquill {

namespace {

/// The device of a port whose name begins with "COM". A name without a number from 1 up is used as
/// it is, and fails to open.
std::string DeviceOf(const std::string& name, const Settings& settings) {
    const int number = ParseInt(std::string_view(name).substr(3));
    if (number < 1) {
        return name;
    }
    if (const char* device = std::getenv(Printf("BUSQUILL_COM%d", number).c_str())) {
        return device;
    }
#if defined(_WIN32)
    const std::string usual = name;
#else
    const std::string usual = Printf("/dev/ttyS%d", number - 1);
#endif
    return settings.GetProfileString(SettingsSection::setup, Printf("ComDevice%d", number), usual);
}

} // namespace

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
    return PortNamed(settings.GetProfileString(SettingsSection::setup, "ComPort", "USB"), settings);
}

} // namespace busquill
