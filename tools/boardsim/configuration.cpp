#include "configuration.h"

#include <algorithm>
#include <charconv>

namespace boardsim {

const std::string_view builtInDevices = R"(00:00.0 Host bridge
00: 86 80 37 12 06 00 00 22 02 00 00 06 00 40 00 00
10: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
20: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
30: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00

00:01.0 PCI bridge
00: 11 10 24 00 07 01 90 02 03 00 04 06 08 40 01 00
10: 00 00 00 00 00 00 00 00 00 01 01 40 d1 d1 a0 02
20: 80 fe a0 fe 01 f0 f1 f7 00 00 00 00 00 00 00 00
30: 00 00 00 00 dc 00 00 00 00 00 00 00 00 00 04 00

00:07.0 ISA bridge
00: 86 80 10 71 0f 00 80 02 02 00 01 06 00 00 80 00
10: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
20: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
30: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00

00:07.1 IDE interface
00: 86 80 11 71 05 00 80 02 01 80 01 01 00 40 00 00
10: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
20: 01 f0 00 00 00 00 00 00 00 00 00 00 00 00 00 00
30: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00

00:07.2 USB controller
00: 86 80 12 71 05 00 80 02 01 00 03 0c 00 40 00 00
10: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
20: 01 e4 00 00 00 00 00 00 00 00 00 00 00 00 00 00
30: 00 00 00 00 00 00 00 00 00 00 00 00 05 04 00 00

00:0a.0 Ethernet controller
00: 86 80 29 12 17 01 90 02 08 00 00 02 08 42 00 00
10: 00 f0 bf fe 01 e0 00 00 00 00 a0 fe 00 00 00 00
20: 00 00 00 00 00 00 00 00 00 00 00 00 86 80 0c 00
30: 01 00 b0 fe dc 00 00 00 00 00 00 00 0b 01 08 38

01:04.0 SCSI storage controller
00: 00 10 30 00 57 01 30 02 07 00 00 01 10 48 00 00
10: 01 d0 00 00 04 00 9f fe 01 00 00 00 04 00 9e fe
20: 01 00 00 00 00 00 00 00 00 00 00 00 00 10 00 10
30: 00 00 80 fe 50 00 00 00 00 00 00 00 0a 02 11 12
)";

namespace {

constexpr std::uint8_t controlNext = 2;
constexpr std::uint8_t controlBack = 4;

constexpr std::uint8_t statusBusy = 0x80;
constexpr std::uint8_t statusFound = 0x01;

/// The digits of a text as a number, if it has no others.
std::optional<unsigned> Hex(std::string_view digits) {
    unsigned value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

/// "00:0a.0 ..." or "0000:00:0a.0 ..."
std::optional<Device> ParseHead(std::string_view line) {
    std::string_view where = line.substr(0, line.find(' '));
    if (where.size() == 12 && where[4] == ':') {
        where.remove_prefix(5);
    }
    if (where.size() != 7 || where[2] != ':' || where[5] != '.') {
        return std::nullopt;
    }
    const auto bus = Hex(where.substr(0, 2));
    const auto slot = Hex(where.substr(3, 2));
    const auto function = Hex(where.substr(6));
    if (!bus || !slot || !function) {
        return std::nullopt;
    }
    Device device;
    device.bus = *bus;
    device.slot = *slot;
    device.function = *function;
    return device;
}

/// "10: 01 d0 00 00 ..."
void TakeBytes(std::string_view line, Device& device) {
    const auto colon = line.find(": ");
    const auto offset = colon == std::string_view::npos ? std::nullopt : Hex(line.substr(0, colon));
    if (!offset) {
        return;
    }
    std::size_t at = *offset;
    for (std::size_t i = colon + 2; i + 2 <= line.size() && at < device.header.size(); i += 3) {
        const auto byte = Hex(line.substr(i, 2));
        if (!byte) {
            return;
        }
        device.header[at++] = static_cast<std::uint8_t>(*byte);
    }
}

} // namespace

std::vector<Device> ParseDevices(std::string_view text) {
    std::vector<Device> devices;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (const auto device = ParseHead(line)) {
            devices.push_back(*device);
        } else if (!devices.empty()) {
            TakeBytes(line, devices.back());
        }
    }
    return devices;
}

void Configuration::Scan(std::uint8_t control, int busy) {
    busy_ = busy;
    std::optional<std::size_t> wanted = 0;
    if (control == controlNext && current_) {
        wanted = *current_ + 1;
    } else if (control == controlBack) {
        wanted = current_ && *current_ > 0 ? std::optional(*current_ - 1) : std::nullopt;
    }
    found_ = wanted && *wanted < devices_.size();
    if (found_) {
        current_ = wanted;
    }
}

std::uint8_t Configuration::TakeStatus() {
    if (busy_ > 0) {
        --busy_;
        return statusBusy;
    }
    const unsigned function = found_ ? devices_[*current_].function : 0;
    return static_cast<std::uint8_t>(found_ ? statusFound | function << 1 : 0);
}

/// The address is that under which the host of a system selects the device for a configuration
/// cycle.
std::array<std::uint8_t, Configuration::resultBytes> Configuration::Result() const {
    std::array<std::uint8_t, resultBytes> bytes{};
    if (!current_) {
        return bytes;
    }
    const Device& device = devices_[*current_];
    std::copy(device.header.begin(), device.header.end(), bytes.begin());
    const std::uint32_t address =
        0x80000000 | device.bus << 16 | device.slot << 11 | device.function << 8;
    for (std::size_t byte = 0; byte < 4; ++byte) {
        bytes[device.header.size() + byte] = static_cast<std::uint8_t>(address >> (8 * byte));
    }
    return bytes;
}

} // namespace boardsim
