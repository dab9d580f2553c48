/// A configuration header as it is shown: the fields of its words, and its analysis in words.
#pragma once

#include "testsuites/config_space_data.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

inline constexpr int configWords = static_cast<int>(configHeaderBytes / 4);

/// A named field of the register picture.
struct HeaderField {
    std::string_view text;
    int word;
    int firstBit;
    int lastBit;
};

// The class code of the analysis has the upper three bytes of word 2. The picture names only its
// upper half, where it has always stood.
// clang-format off
inline constexpr std::array<HeaderField, 10> headerFields = {{
    {"VENDOR ID",  0,  0, 15},
    {"DEVICE ID",  0, 16, 31},
    {"COMMAND",    1,  0, 15},
    {"STATUS",     1, 16, 31},
    {"REV ID",     2,  0,  7},
    {"CLASS CODE", 2, 16, 31},
    {"CACHE SIZE", 3,  0,  7},
    {"LAT TIMER",  3,  8, 15},
    {"HDR TYPE",   3, 16, 23},
    {"BIST",       3, 24, 31},
}};
// clang-format on

/// A word of the header, least significant byte first.
[[nodiscard]] std::uint32_t HeaderWord(std::span<const std::uint8_t, configHeaderBytes> header,
                                       int word) noexcept;
/// " 3CH", the offset of a word.
[[nodiscard]] std::string HeaderOffsetText(int word);

/// A place on the bus: "01:04.0".
struct DevicePlace {
    int bus = 0;
    int device = 0;
    int function = 0;

    friend bool operator==(const DevicePlace&, const DevicePlace&) = default;
};
[[nodiscard]] std::string PlaceText(const DevicePlace& place);
/// The place that an address selects for a configuration cycle: bit 31, then bus, device and
/// function from bit 16 down. Nothing for an address of another form.
[[nodiscard]] std::optional<DevicePlace> PlaceOf(const BusAddress& address) noexcept;

/// The header in lines of 16 bytes, each with its offset: "00: 86 80 37 12 ...".
[[nodiscard]] std::vector<std::string>
HeaderDump(std::span<const std::uint8_t, configHeaderBytes> header);

/// A line of a box of the analysis: "Memory Enabled", ":   Yes".
struct AnalysisLine {
    std::string_view text;
    std::string value;
};

struct ConfigAnalysis {
    std::array<std::string, 3> head; // class, vendor, device and revision
    std::vector<AnalysisLine> command;
    std::vector<AnalysisLine> status;
};

[[nodiscard]] ConfigAnalysis AnalyzeHeader(const CConfigSpaceData& device);

} // namespace busquill
