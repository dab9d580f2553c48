#include "link/port_setting.h"
#include "platform/memory_settings.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <grp.h>
#include <unistd.h>

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

TEST(PortSetting, KeepsTheDeviceOfEachComPort) {
    MemorySettings settings;
    StoreDevice("COM2", "/dev/ttyUSB0", settings);
    EXPECT_EQ(PortNamed("COM2", settings).device, "/dev/ttyUSB0");
    EXPECT_EQ(PortNamed("COM3", settings).device, "/dev/ttyS2");
    EXPECT_EQ(DeviceVariable("COM2"), "BUSQUILL_COM2");
    ::setenv("BUSQUILL_COM2", "/dev/first", 1);
    EXPECT_EQ(PortNamed("COM2", settings).device, "/dev/first");
    ::unsetenv("BUSQUILL_COM2");
}

TEST(PortSetting, IsCalledByItsNameAndItsDevice) {
    const auto label = [](const char* name, const char* device) {
        return PortSetting{Kind::Serial, name, device}.Label();
    };
    EXPECT_EQ(label("COM1", "/dev/ttyS0"), "COM1 (/dev/ttyS0)");
    EXPECT_EQ(label("/dev/ttyS0", "/dev/ttyS0"), "/dev/ttyS0");
    EXPECT_EQ(label("USB", ""), "USB");
}

TEST(PortSetting, EachFailureToOpenHasWordsOfItsOwn) {
    const TempDir dir;
    const std::string device = dir.Write("device", "");
    const PortSetting port{Kind::Serial, "COM1", device};
    const std::string label = "COM1 (" + device + ") ";
    EXPECT_EQ(OpenFailure(port, ENOENT), label + "does not exist");
    EXPECT_EQ(OpenFailure(port, EBUSY), label + "is in use by another program");
    EXPECT_EQ(OpenFailure(port, ENOTTY), label + "is not a serial port");
    EXPECT_EQ(OpenFailure(port, EIO), label + "cannot be opened: Input/output error");
    ASSERT_EQ(::chown(device.c_str(), static_cast<uid_t>(-1), ::getegid()), 0);
    const std::string group = ::getgrgid(::getegid())->gr_name;
    for (const int error : {EACCES, EPERM}) {
        EXPECT_EQ(OpenFailure(port, error),
                  label + "may not be opened by you: it belongs to the group " + group +
                      " (\"sudo usermod -aG " + group + " $USER\" adds you; then log in again)");
    }
}

} // namespace
} // namespace busquill::test
