/// Chooses which USB device, and which of its interfaces, is the board. Does not access devices.
#pragma once

#include "platform/usb_device.h"

#include <optional>
#include <string_view>
#include <vector>

namespace busquill {

/// The board's bulk endpoints, out of the host and into it.
inline constexpr std::uint8_t usbOutEndpoint = 0x02;
inline constexpr std::uint8_t usbInEndpoint = 0x82;

/// Vendor and product number of a device.
struct UsbId {
    std::uint16_t vendor = 0;
    std::uint16_t product = 0;
    bool operator==(const UsbId&) const = default;
};

struct UsbEndpoint {
    std::uint8_t address = 0;
    bool bulk = false;
};

/// One alternate setting of one interface.
struct UsbInterface {
    int number = 0;
    int alternate = 0;
    std::uint8_t classCode = 0;
    std::vector<UsbEndpoint> endpoints;
};

/// A device as its descriptors describe it.
struct UsbDeviceInfo {
    std::string path; // what UsbBus::Open takes
    UsbId id;
    int error = 0; // the descriptors of the interfaces could not be read
    std::vector<UsbInterface> interfaces;
};

/// "vvvv:pppp", two hexadecimal numbers of exactly four digits; nothing for any other text.
[[nodiscard]] std::optional<UsbId> ParseUsbId(std::string_view text) noexcept;

/// The setting that carries the board's endpoints: a vendor-specific one if there is one, else,
/// with `anyClass`, the first of another class. Null when there is none.
[[nodiscard]] const UsbInterface* ChooseInterface(const std::vector<UsbInterface>& interfaces,
                                                  bool anyClass) noexcept;

/// The rule of UsbBus::Find over the devices that are present. A device given by its numbers is
/// chosen whatever its interfaces are; a malformed name matches no device.
[[nodiscard]] UsbSearch ChooseDevice(const std::vector<UsbDeviceInfo>& devices,
                                     std::string_view wanted);

} // namespace busquill
