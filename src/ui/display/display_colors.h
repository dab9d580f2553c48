#pragma once

#include <cstdint>

namespace busquill {

class Settings;

/// Colours of one of the two displays, as 0x00BBGGRR.
struct DisplayColors {
    std::uint32_t background = 0;
    std::uint32_t alternate = 0;
    std::uint32_t trigger = 0;
    std::uint32_t marker1 = 0;
    std::uint32_t marker2 = 0;

    /// The colour of the trigger (0) or of a marker (1 or 2).
    [[nodiscard]] std::uint32_t Mark(int which) const noexcept {
        return which == 0 ? trigger : which == 1 ? marker1 : marker2;
    }
    friend bool operator==(const DisplayColors&, const DisplayColors&) = default;
};

constexpr const char* stateDisplay = "State";
constexpr const char* waveformDisplay = "Waveform";

/// The user's colours for a display; while alternation is off, the alternate colour is the
/// background.
[[nodiscard]] DisplayColors LoadDisplayColors(const Settings& settings, const char* display);

} // namespace busquill
