#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>

namespace boardsim {

/// The firmware that the host has downloaded, byte by byte; other addresses are empty.
class FirmwareImage {
public:
    /// A segment record shifts a 16-bit address by at most 0xFFFF0. Bytes beyond are not kept.
    static constexpr std::uint32_t size = 0x10FFF0;

    void Write(std::uint32_t address, std::span<const std::uint8_t> bytes);
    /// The image as an Intel hex file: rows of at most 16 bytes in the order of their addresses, a
    /// segment record where the segment changes, the end record.
    [[nodiscard]] std::string HexText() const;

private:
    std::map<std::uint32_t, std::uint8_t> bytes_; // by address
};

} // namespace boardsim
