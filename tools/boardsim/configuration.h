#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace boardsim {

/// A device of the bus, by one of its functions.
struct Device {
    unsigned bus = 0;
    unsigned slot = 0;
    unsigned function = 0;
    std::array<std::uint8_t, 64> header{};
};

/// Devices from the form that `lspci -x` prints. Anything else in the text is skipped, and so are
/// bytes beyond a header.
[[nodiscard]] std::vector<Device> ParseDevices(std::string_view text);

/// A small system in that form: a host bridge, a bridge with a device behind it that has 64-bit
/// base addresses and an expansion ROM, a device of three functions, a network controller.
extern const std::string_view builtInDevices;

/// Finds devices one at a time, as the host asks for them.
class Configuration {
public:
    static constexpr std::size_t resultBytes = 72;

    Configuration() : devices_(ParseDevices(builtInDevices)) {}
    explicit Configuration(std::vector<Device> devices) : devices_(std::move(devices)) {}

    /// Goes to the first, next (2) or previous (4) device. Where there is none, the last one that
    /// was found stays. The scan is busy for so many readings of the status.
    void Scan(std::uint8_t control, int busy);
    void Stop() noexcept { busy_ = 0; }

    /// The status, as the host reads it.
    [[nodiscard]] std::uint8_t TakeStatus();
    /// The device that was found last: its header and its address; zeros before.
    [[nodiscard]] std::array<std::uint8_t, resultBytes> Result() const;

private:
    std::vector<Device> devices_;
    std::optional<std::size_t> current_;
    bool found_ = false; // by the last scan
    int busy_ = 0;
};

} // namespace boardsim
