#include "platform/usb_device.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

// No device has the id FFFF:FFFF, so these tests work on every machine, with USB and without.

TEST(UsbBus, DoesNotFindAMissingDevice) {
    const auto bus = OpenUsbBus();
    ASSERT_NE(bus, nullptr);
    const UsbSearch search = bus->Find("ffff:ffff");
    EXPECT_EQ(search.outcome, UsbSearch::Outcome::NotFound);
    EXPECT_EQ(search.error, 0);
    EXPECT_EQ(search.path, "");
}

TEST(UsbBus, FindsNothingForAMalformedName) {
    EXPECT_EQ(OpenUsbBus()->Find("any").outcome, UsbSearch::Outcome::NotFound);
}

TEST(UsbBus, CanBeUsedRepeatedly) {
    const auto bus = OpenUsbBus();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(bus->Find("ffff:ffff").outcome, UsbSearch::Outcome::NotFound);
    }
}

TEST(UsbBus, DoesNotOpenAPathThatIsNotADevice) {
    const auto bus = OpenUsbBus();
    EXPECT_EQ(bus->Open(""), nullptr);
    EXPECT_EQ(bus->Open("usb:999:999"), nullptr);
    EXPECT_EQ(bus->Open("/dev/null"), nullptr);
}

TEST(UsbBus, TwoBusesCanExistSideBySide) {
    const auto first = OpenUsbBus();
    auto second = OpenUsbBus();
    EXPECT_EQ(first->Find("ffff:ffff").outcome, UsbSearch::Outcome::NotFound);
    EXPECT_EQ(second->Find("ffff:ffff").outcome, UsbSearch::Outcome::NotFound);
    second.reset();
    EXPECT_EQ(first->Find("ffff:ffff").outcome, UsbSearch::Outcome::NotFound);
}

} // namespace
} // namespace busquill::test
