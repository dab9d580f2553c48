#include "platform/usb_search.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

constexpr std::uint8_t vendorClass = 0xFF;
constexpr std::uint8_t hidClass = 0x03;

const std::vector<UsbEndpoint> boardEndpoints = {{0x02, true}, {0x82, true}};

UsbDeviceInfo Keyboard() {
    return {"usb:001:002", {0x1111, 0x0001}, 0, {{0, 0, hidClass, {{0x81, false}}}}};
}

UsbDeviceInfo Board() {
    return {"usb:001:007", {0x1234, 0xABCD}, 0, {{0, 0, vendorClass, boardEndpoints}}};
}

TEST(UsbId, IsTwoHexadecimalNumbersOfFourDigits) {
    EXPECT_EQ(ParseUsbId("1234:abcd"), (UsbId{0x1234, 0xABCD}));
    EXPECT_EQ(ParseUsbId("00fF:FFFF"), (UsbId{0x00FF, 0xFFFF}));
    EXPECT_EQ(ParseUsbId("0000:0000"), (UsbId{0, 0}));
}

TEST(UsbId, IsInvalidForAnyOtherText) {
    for (const char* text :
         {"",           ":",          "1234",       "1234:",     ":abcd",     "1234:abc",
          "123:abcd",   "1234:abcde", "12345:abcd", "1234-abcd", "1234abcd:", "0x12:0x34",
          "-123:abcd",  "+123:abcd",  "12 4:abcd",  " 123:abcd", "1234: abc", "1234:abcg",
          "1234:abcd ", "1234:abcd:", "vvvv:pppp"}) {
        EXPECT_EQ(ParseUsbId(text), std::nullopt) << text;
    }
    EXPECT_EQ(ParseUsbId(std::string_view("1234:ab\0d", 9)), std::nullopt);
}

TEST(UsbInterfaceChoice, TakesTheVendorSpecificSettingThatHasBothBulkEndpoints) {
    const std::vector<UsbInterface> interfaces = {
        {0, 0, hidClass, boardEndpoints},
        {1, 0, vendorClass, {}},
        {1, 1, vendorClass, {{0x02, true}}},
        {1, 2, vendorClass, {{0x02, true}, {0x81, true}, {0x82, true}}},
        {2, 0, vendorClass, boardEndpoints},
    };
    const UsbInterface* chosen = ChooseInterface(interfaces, false);
    ASSERT_NE(chosen, nullptr);
    EXPECT_EQ(chosen->number, 1);
    EXPECT_EQ(chosen->alternate, 2);
    EXPECT_EQ(ChooseInterface(interfaces, true), chosen);
}

TEST(UsbInterfaceChoice, EndpointsOfAnotherKindOrDirectionDoNotFit) {
    EXPECT_EQ(ChooseInterface({{0, 0, vendorClass, {{0x02, false}, {0x82, true}}}}, true), nullptr);
    EXPECT_EQ(ChooseInterface({{0, 0, vendorClass, {{0x02, true}, {0x82, false}}}}, true), nullptr);
    EXPECT_EQ(ChooseInterface({{0, 0, vendorClass, {{0x82, true}}}}, true), nullptr);
    EXPECT_EQ(ChooseInterface({{0, 0, vendorClass, {{0x02, true}, {0x02, true}}}}, true), nullptr);
}

TEST(UsbInterfaceChoice, AnotherClassFitsOnlyIfItIsAllowed) {
    const std::vector<UsbInterface> interfaces = {{3, 0, hidClass, boardEndpoints}};
    EXPECT_EQ(ChooseInterface(interfaces, false), nullptr);
    ASSERT_NE(ChooseInterface(interfaces, true), nullptr);
    EXPECT_EQ(ChooseInterface(interfaces, true)->number, 3);
}

TEST(UsbInterfaceChoice, ADeviceWithoutInterfacesHasNone) {
    EXPECT_EQ(ChooseInterface({}, true), nullptr);
}

TEST(UsbDeviceChoice, WithoutANameIsTheFirstDeviceWithTheBoardsInterface) {
    UsbDeviceInfo second = Board();
    second.path = "usb:002:001";
    const UsbSearch search = ChooseDevice({Keyboard(), Board(), second}, "");
    EXPECT_EQ(search.outcome, UsbSearch::Outcome::Found);
    EXPECT_EQ(search.path, "usb:001:007");
}

TEST(UsbDeviceChoice, WithANameIsTheFirstDeviceOfThatName) {
    const UsbSearch search = ChooseDevice({Board(), Keyboard()}, "1111:0001");
    EXPECT_EQ(search.outcome, UsbSearch::Outcome::Found);
    EXPECT_EQ(search.path, "usb:001:002");
    EXPECT_EQ(ChooseDevice({Keyboard(), Board()}, "1234:ABCD").path, "usb:001:007");
}

TEST(UsbDeviceChoice, FindsNothingAmongOtherDevices) {
    EXPECT_EQ(ChooseDevice({}, "").outcome, UsbSearch::Outcome::NotFound);
    EXPECT_EQ(ChooseDevice({Keyboard()}, "").outcome, UsbSearch::Outcome::NotFound);
    EXPECT_EQ(ChooseDevice({Board()}, "1234:abce").outcome, UsbSearch::Outcome::NotFound);
    EXPECT_EQ(ChooseDevice({Board()}, "1235:abcd").outcome, UsbSearch::Outcome::NotFound);
}

TEST(UsbDeviceChoice, AMalformedNameDoesNotFallBackToAnyBoard) {
    const UsbSearch search = ChooseDevice({Board()}, "1234");
    EXPECT_EQ(search.outcome, UsbSearch::Outcome::NotFound);
    EXPECT_EQ(search.path, "");
}

TEST(UsbDeviceChoice, ANamedDeviceWhoseDescriptorsCannotBeReadIsAnError) {
    UsbDeviceInfo broken = Board();
    broken.error = -3;
    broken.interfaces.clear();
    const UsbSearch search = ChooseDevice({broken}, "1234:abcd");
    EXPECT_EQ(search.outcome, UsbSearch::Outcome::DetailFailed);
    EXPECT_EQ(search.error, -3);
}

TEST(UsbDeviceChoice, WithoutANameAnUnreadableDeviceIsSkipped) {
    UsbDeviceInfo broken = Keyboard();
    broken.error = -3;
    broken.interfaces.clear();
    EXPECT_EQ(ChooseDevice({broken, Board()}, "").path, "usb:001:007");
}

} // namespace
} // namespace busquill::test
