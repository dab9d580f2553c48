/// Which USB device and interface is a board: the part of the search that needs no hardware.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace busquill {

struct UsbId {
    std::uint16_t vendor = 0;
    std::uint16_t product = 0;
    friend bool operator==(const UsbId&, const UsbId&) = default;
};

/// "vvvv:pppp" in hexadecimal; nothing when the text is anything else.
[[nodiscard]] std::optional<UsbId> ParseUsbId(std::string_view text) noexcept;

/// One alternate setting of an interface, as the device describes it.
struct UsbSetting {
    std::uint8_t interface = 0;
    std::uint8_t alternate = 0;
    std::uint8_t interfaceClass = 0;
    std::vector<std::uint8_t> bulkEndpoints;
};

/// The first vendor-specific setting that has the bulk endpoints 2 and 0x82.
[[nodiscard]] std::optional<UsbSetting> FindBoardSetting(std::span<const UsbSetting> settings);

} // namespace busquill
