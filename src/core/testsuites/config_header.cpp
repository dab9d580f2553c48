#include "testsuites/config_header.h"

#include "platform/text.h"

namespace busquill {

namespace {

// By the bits of the command register, from bit 0.
constexpr std::array<std::string_view, 10> commandBits = {
    "I/O Enabled", "Memory Enabled", "Master Enabled", "Special Cycles", "Mem WR and INV",
    "VGA Snoop",   "Parity Error",   "Stepping Ctrl",  "SERR# Enable",   "Fast Back-Back"};

struct StatusBit {
    std::string_view text;
    unsigned bit;
};
constexpr unsigned devselBit = 9; // the lower of two bits
constexpr std::array<StatusBit, 10> statusBits = {{{"Capabilities List", 4},
                                                   {"66 MHz Capable", 5},
                                                   {"Fast Back-Back", 7},
                                                   {"MSTR Data Parity Error", 8},
                                                   {"DEVSEL Timing", devselBit},
                                                   {"Signaled Target Abort", 11},
                                                   {"Received Target Abort", 12},
                                                   {"Received Master Abort", 13},
                                                   {"Signaled System Error", 14},
                                                   {"Detected Parity Error", 15}}};
constexpr std::array<std::string_view, 4> devselTimings = {"Fast", "Medium", "Slow", ""};

AnalysisLine LineOf(std::string_view text, std::string_view value) {
    return {text, ":   " + std::string(value)};
}

AnalysisLine BitLine(std::string_view text, std::uint32_t word, unsigned bit) {
    return LineOf(text, (word >> bit & 1) != 0 ? "Yes" : "No");
}

} // namespace

std::uint32_t HeaderWord(std::span<const std::uint8_t, configHeaderBytes> header,
                         int word) noexcept {
    std::uint32_t value = 0;
    for (std::size_t byte = 4; byte-- > 0;) {
        value = value << 8 | header[static_cast<std::size_t>(word) * 4 + byte];
    }
    return value;
}

std::string HeaderOffsetText(int word) {
    return Printf(" %02XH", static_cast<unsigned>(word) * 4);
}

std::string PlaceText(const DevicePlace& place) {
    return Printf("%02x:%02x.%x", static_cast<unsigned>(place.bus),
                  static_cast<unsigned>(place.device), static_cast<unsigned>(place.function));
}

std::optional<DevicePlace> PlaceOf(const BusAddress& address) noexcept {
    const std::uint64_t number = NumberOf(address);
    if (number >> 24 != 0x80 || (number & 0xFF) != 0) {
        return std::nullopt;
    }
    return DevicePlace{static_cast<int>(number >> 16 & 0xFF), static_cast<int>(number >> 11 & 0x1F),
                       static_cast<int>(number >> 8 & 7)};
}

std::vector<std::string> HeaderDump(std::span<const std::uint8_t, configHeaderBytes> header) {
    constexpr std::size_t bytesInLine = 16;
    std::vector<std::string> lines;
    for (std::size_t offset = 0; offset < header.size(); offset += bytesInLine) {
        std::string line = Printf("%02x:", static_cast<unsigned>(offset));
        for (const std::uint8_t byte : header.subspan(offset, bytesInLine)) {
            line += Printf(" %02x", byte);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

ConfigAnalysis AnalyzeHeader(const CConfigSpaceData& device) {
    const DeviceIdentity& identity = device.Identity();
    ConfigAnalysis analysis;
    analysis.head = {" Class: " + identity.className, " Vendor: " + identity.vendorName,
                     Printf(" Device/Rev ID: %04x.%02x", identity.deviceId, device.RevisionId())};
    for (unsigned bit = 0; bit < commandBits.size(); ++bit) {
        analysis.command.push_back(BitLine(commandBits[bit], device.Command(), bit));
    }
    for (const StatusBit& each : statusBits) {
        analysis.status.push_back(
            each.bit == devselBit
                ? LineOf(each.text, devselTimings[device.Status() >> devselBit & 3])
                : BitLine(each.text, device.Status(), each.bit));
    }
    return analysis;
}

} // namespace busquill
