#pragma once

#include "exerciser/bus_address.h"
#include "testsuites/name_map.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace busquill {

/// The bytes of a device's configuration header.
inline constexpr std::size_t configHeaderBytes = 64;
/// What the board reports of a device: its header and its address.
inline constexpr std::size_t configBlockBytes = 72;

/// By what a device is known to the user and to files.
struct DeviceIdentity {
    std::uint32_t vendorId = 0;
    std::uint32_t deviceId = 0;
    BusAddress address{};
    std::string vendorName;
    std::string className;
};

/// One device of the bus, with the names by which devices are described. Zero and empty until a
/// device is imported.
class CConfigSpaceData {
public:
    /// Reads the names from the program's folder; missing files are reported.
    CConfigSpaceData(const WorkingDirectory& directory, Prompts& prompts);

    /// Takes over a device as the board has reported it.
    void Import(std::span<const std::uint8_t, configBlockBytes> block);
    /// Takes over a device of which no header is known. The header of an earlier one stays.
    void SetIdentity(DeviceIdentity identity) { identity_ = std::move(identity); }

    [[nodiscard]] const DeviceIdentity& Identity() const noexcept { return identity_; }
    [[nodiscard]] std::span<const std::uint8_t, configHeaderBytes> Header() const noexcept {
        return header_;
    }
    [[nodiscard]] std::uint32_t RevisionId() const noexcept { return header_[8]; }
    [[nodiscard]] std::uint32_t Command() const noexcept { return Half(4); }
    [[nodiscard]] std::uint32_t Status() const noexcept { return Half(6); }

private:
    [[nodiscard]] std::uint32_t Half(std::size_t offset) const noexcept {
        return header_[offset] | std::uint32_t{header_[offset + 1]} << 8;
    }

    const DeviceNames names_;
    std::array<std::uint8_t, configHeaderBytes> header_{};
    DeviceIdentity identity_;
};

} // namespace busquill
