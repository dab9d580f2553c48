#include "link/port_setting.h"
#include "platform/memory_settings.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Kind = PortSetting::Kind;

TEST(PortSetting, WithoutSettingsIsAnyUsbBoard) {
    const PortSetting port = ReadPortSetting(MemorySettings());
    EXPECT_EQ(port.kind, Kind::Usb);
    EXPECT_EQ(port.name, "USB");
    EXPECT_EQ(port.device, "");
    EXPECT_EQ(port.baud, 57600);
}

TEST(PortSetting, HasTheDeviceAndTheRateOfTheSettings) {
    MemorySettings settings;
    settings.WriteProfileString("Setup", "ComPort", "COM3");
    settings.WriteProfileString("Setup", "ComDevice3", "/dev/pts/7");
    settings.WriteProfileInt("Setup", "BaudRate", 9600);
    settings.WriteProfileString("Setup", "UsbDevice", "04b4:1002");
    const PortSetting port = ReadPortSetting(settings);
    EXPECT_EQ(port.kind, Kind::Serial);
    EXPECT_EQ(port.name, "COM3");
    EXPECT_EQ(port.device, "/dev/pts/7");
    EXPECT_EQ(port.baud, 9600);
    EXPECT_EQ(PortNamed("USB2", settings).device, "04b4:1002");
}

TEST(PortSetting, NamesDetermineTheKindOfPort) {
    const MemorySettings settings;
    const std::pair<const char*, Kind> names[] = {
        {"USB", Kind::Usb},     {"USB2", Kind::Usb},   {"USB1", Kind::None}, {"usb", Kind::None},
        {"<None>", Kind::None}, {"", Kind::None},      {"COM", Kind::None},  {"com1", Kind::None},
        {"COM1", Kind::Serial}, {"COM8", Kind::Serial}};
    for (const auto& [name, kind] : names) {
        EXPECT_EQ(PortNamed(name, settings).kind, kind) << name;
        EXPECT_EQ(PortNamed(name, settings).name, name);
    }
    EXPECT_EQ(PortNamed("COM1", settings).device, "/dev/ttyS0");
    EXPECT_EQ(PortNamed("COM8", settings).device, "/dev/ttyS7");
}

} // namespace
} // namespace busquill::test
