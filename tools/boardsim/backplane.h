#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace boardsim {

constexpr int backplaneLines = 112;
constexpr std::size_t backplaneBytes = 28;

/// A backplane with its faults. The host names lines by their places, 0 to 111: two bytes for each
/// eight of them, the first one read back, the second one driven.
class Backplane {
public:
    /// Takes the faults: "5+6, 20+21+40, broken 9". False when they are not understood. Broken
    /// lines cannot be driven and are never seen.
    [[nodiscard]] bool TakeFaults(std::string_view faults);

    /// Drives the lines, and writes what is seen into the same bytes. So many readings of the
    /// status find the test running.
    void Start(std::span<std::uint8_t, backplaneBytes> bytes, int busy);
    void Stop() noexcept { busy_ = 0; }
    [[nodiscard]] std::uint8_t TakeStatus() noexcept;

private:
    using Lines = std::bitset<backplaneLines>;

    [[nodiscard]] Lines Seen(Lines driven) const;

    std::vector<Lines> shorts_;
    Lines broken_;
    int busy_ = 0;
};

} // namespace boardsim
