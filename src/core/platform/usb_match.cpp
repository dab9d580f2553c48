#include "platform/usb_match.h"

#include <algorithm>
#include <charconv>

namespace busquill {

namespace {

constexpr std::uint8_t vendorSpecific = 0xFF;

std::optional<std::uint16_t> ParseHex4(std::string_view text) noexcept {
    std::uint16_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (text.size() != 4 || error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

} // namespace

std::optional<UsbId> ParseUsbId(std::string_view text) noexcept {
    if (text.size() != 9 || text[4] != ':') {
        return std::nullopt;
    }
    const auto vendor = ParseHex4(text.substr(0, 4));
    const auto product = ParseHex4(text.substr(5));
    if (!vendor || !product) {
        return std::nullopt;
    }
    return UsbId{*vendor, *product};
}

std::optional<UsbSetting> FindBoardSetting(std::span<const UsbSetting> settings) {
    const auto has = [](const UsbSetting& setting, std::uint8_t endpoint) {
        const auto& all = setting.bulkEndpoints;
        return std::find(all.begin(), all.end(), endpoint) != all.end();
    };
    const auto found = std::find_if(settings.begin(), settings.end(), [&](const UsbSetting& s) {
        return s.interfaceClass == vendorSpecific && has(s, 0x02) && has(s, 0x82);
    });
    return found == settings.end() ? std::nullopt : std::optional(*found);
}

} // namespace busquill
