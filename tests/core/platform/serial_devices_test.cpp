#include "platform/serial_devices.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace busquill::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

namespace fs = std::filesystem;

/// A folder as the system lists its terminals.
class SerialDevicesTest : public testing::Test {
protected:
    /// A terminal with its device in a folder below `devices`; without one if that is empty.
    void Add(const std::string& name, const std::string& device) {
        fs::create_directories(root / "tty" / name);
        if (!device.empty()) {
            fs::create_directories(root / "devices" / device);
            fs::create_directory_symlink(root / "devices" / device, root / "tty" / name / "device");
        }
    }
    std::vector<SerialDevice> Found() const { return SerialDevices((root / "tty").string()); }

    TempDir dir;
    const fs::path root = dir.Path();
};

TEST_F(SerialDevicesTest, AreThoseWithADeviceByTheirPaths) {
    Add("ttyS1", "pnp/00:01");
    Add("tty1", "");
    Add("ttyS0", "pnp/00:00");
    Add("rfc!comm0", "bluetooth");
    dir.Write("tty/ttyS0/type", "4\n");
    dir.Write("tty/ttyS1/type", "0\n"); // a socket without a chip
    const auto devices = Found();
    ASSERT_THAT(devices, SizeIs(2));
    EXPECT_EQ(devices[0].path, "/dev/rfc/comm0");
    EXPECT_EQ(devices[1].path, "/dev/ttyS0");
    EXPECT_EQ(devices[1].description, "");
}

TEST_F(SerialDevicesTest, AnAdapterTellsWhatItIs) {
    Add("ttyUSB0", "usb1/1-2/1-2:1.0/ttyUSB0");
    Add("ttyACM0", "usb1/1-3/1-3:1.0");
    dir.Write("devices/usb1/1-2/product", "FT232R USB UART\n");
    dir.Write("devices/usb1/1-3/product", "A board\n");
    const auto devices = Found();
    ASSERT_THAT(devices, SizeIs(2));
    EXPECT_EQ(devices[0].path, "/dev/ttyACM0");
    EXPECT_EQ(devices[0].description, "A board");
    EXPECT_EQ(devices[1].description, "FT232R USB UART");
}

TEST_F(SerialDevicesTest, ASystemThatListsNoneHasNone) {
    EXPECT_THAT(Found(), IsEmpty());
}

} // namespace
} // namespace busquill::test
