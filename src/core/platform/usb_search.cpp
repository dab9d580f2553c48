#include "platform/usb_search.h"

#include <algorithm>
#include <charconv>

namespace busquill {

namespace {

constexpr std::uint8_t vendorSpecificClass = 0xFF;

std::optional<std::uint16_t> ParseHexWord(std::string_view digits) noexcept {
    std::uint16_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
    return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

bool HasBulkEndpoint(const UsbInterface& interface, std::uint8_t address) noexcept {
    return std::any_of(
        interface.endpoints.begin(), interface.endpoints.end(),
        [&](const UsbEndpoint& endpoint) { return endpoint.bulk && endpoint.address == address; });
}

} // namespace

std::optional<UsbId> ParseUsbId(std::string_view text) noexcept {
    if (text.size() != 9 || text[4] != ':') {
        return std::nullopt;
    }
    const auto vendor = ParseHexWord(text.substr(0, 4));
    const auto product = ParseHexWord(text.substr(5));
    if (!vendor || !product) {
        return std::nullopt;
    }
    return UsbId{*vendor, *product};
}

const UsbInterface* ChooseInterface(const std::vector<UsbInterface>& interfaces,
                                    bool anyClass) noexcept {
    const UsbInterface* other = nullptr;
    for (const UsbInterface& interface : interfaces) {
        if (!HasBulkEndpoint(interface, usbOutEndpoint) ||
            !HasBulkEndpoint(interface, usbInEndpoint)) {
            continue;
        }
        if (interface.classCode == vendorSpecificClass) {
            return &interface;
        }
        other = other != nullptr ? other : &interface;
    }
    return anyClass ? other : nullptr;
}

UsbSearch ChooseDevice(const std::vector<UsbDeviceInfo>& devices, std::string_view wanted) {
    const std::optional<UsbId> id = ParseUsbId(wanted);
    for (const UsbDeviceInfo& device : devices) {
        const bool isWanted = wanted.empty() ? ChooseInterface(device.interfaces, false) != nullptr
                                             : id && device.id == *id;
        if (!isWanted) {
            continue;
        }
        if (device.error != 0) {
            return {UsbSearch::Outcome::DetailFailed, device.error, {}};
        }
        return {UsbSearch::Outcome::Found, 0, device.path};
    }
    return {};
}

} // namespace busquill
