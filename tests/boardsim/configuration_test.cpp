#include "boardsim/board.h"
#include "boardsim/configuration.h"
#include "boardsim/traffic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace boardsim {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr std::uint8_t first = 1;
constexpr std::uint8_t next = 2;
constexpr std::uint8_t back = 4;

std::string Place(const Device& device) {
    return std::to_string(device.bus) + ":" + std::to_string(device.slot) + "." +
           std::to_string(device.function);
}

TEST(ParseDevices, ReadsWhatLspciPrints) {
    const auto devices = ParseDevices("00:1f.3 A device\r\n"
                                      "00: 86 80 34 12\r\n"
                                      "\tSubsystem: text 00: 11 22\n"
                                      "3c: 0b 01\n"
                                      "40: ff ff\n"
                                      "\n"
                                      "0001:02:00.0 In a domain\n"
                                      "30: 00 00 00 00 50 zz 11\n");
    ASSERT_THAT(devices, SizeIs(2));
    EXPECT_EQ(Place(devices[0]), "0:31.3");
    EXPECT_THAT(std::vector(devices[0].header.begin(), devices[0].header.begin() + 5),
                ElementsAre(0x86, 0x80, 0x34, 0x12, 0));
    EXPECT_EQ(devices[0].header[60], 0x0B);
    EXPECT_EQ(devices[0].header[63], 0);
    EXPECT_EQ(Place(devices[1]), "2:0.0");
    EXPECT_EQ(devices[1].header[0x34], 0x50);
    EXPECT_EQ(devices[1].header[0x36], 0) << "what is no number ends the line";
    EXPECT_THAT(ParseDevices("no devices\n00: 11\n"), SizeIs(0));
}

TEST(ParseDevices, TheBuiltInSystemHasBridgesFunctionsWideAddressesAndARom) {
    const auto devices = ParseDevices(builtInDevices);
    std::vector<std::string> places;
    for (const Device& device : devices) {
        places.push_back(Place(device));
    }
    EXPECT_THAT(places,
                ElementsAre("0:0.0", "0:1.0", "0:7.0", "0:7.1", "0:7.2", "0:10.0", "1:4.0"));
    EXPECT_EQ(devices[1].header[14], 1) << "a bridge's header";
    EXPECT_EQ(devices[2].header[14], 0x80) << "several functions";
    EXPECT_EQ(devices[6].header[0x14] & 6, 4) << "a 64-bit base address";
    EXPECT_NE(devices[5].header[0x33], 0) << "a ROM";
}

TEST(ConfigurationScan, GoesFromDeviceToDevice) {
    Configuration configuration;
    const auto scan = [&](std::uint8_t control) {
        configuration.Scan(control, 0);
        return configuration.TakeStatus();
    };
    EXPECT_EQ(configuration.Result()[0], 0);
    EXPECT_EQ(scan(back), 0) << "nothing yet";
    EXPECT_EQ(scan(next), 1) << "the first";
    EXPECT_EQ(scan(back), 0);
    for (int i = 0; i < 4; ++i) {
        scan(next);
    }
    EXPECT_EQ(configuration.TakeStatus(), 0x01 | 2 << 1) << "found, function 2";
    const auto usb = configuration.Result();
    EXPECT_EQ(usb[2] | usb[3] << 8, 0x7112);
    EXPECT_THAT(std::vector(usb.begin() + 64, usb.end()),
                ElementsAre(0x00, 0x3A, 0x00, 0x80, 0, 0, 0, 0));
    scan(next);
    EXPECT_EQ(scan(next), 1);
    EXPECT_EQ(configuration.Result()[66], 1) << "on bus 1";
    EXPECT_EQ(scan(next), 0) << "after the last";
    EXPECT_EQ(configuration.Result()[66], 1) << "the last one stays";
    EXPECT_EQ(scan(back), 1);
    EXPECT_EQ(scan(first), 1);
    EXPECT_EQ(configuration.Result()[2] | configuration.Result()[3] << 8, 0x1237);
}

TEST(ConfigurationScan, IsBusyForAsLongAsItIsTold) {
    Configuration configuration;
    configuration.Scan(first, 2);
    EXPECT_EQ(configuration.TakeStatus(), 0x80);
    EXPECT_EQ(configuration.TakeStatus(), 0x80);
    EXPECT_EQ(configuration.TakeStatus(), 0x01);
    configuration.Scan(first, 1000);
    configuration.Stop();
    EXPECT_EQ(configuration.TakeStatus(), 0x01);
}

TEST(ConfigurationScan, WithoutDevicesFindsNone) {
    Configuration configuration{std::vector<Device>()};
    configuration.Scan(first, 0);
    EXPECT_EQ(configuration.TakeStatus(), 0);
}

} // namespace
} // namespace boardsim
