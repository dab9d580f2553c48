#pragma once

#include "paged_memory.h"

#include <cstdint>
#include <span>
#include <vector>

namespace boardsim {

/// The memory that the board shows as a target on the bus. Addresses have the 24 bits of the wire.
class Target {
public:
    [[nodiscard]] std::vector<std::uint8_t> Read(std::uint32_t address, std::size_t length) const;
    void Write(std::uint32_t address, std::span<const std::uint8_t> bytes);

private:
    PagedMemory memory_;
};

} // namespace boardsim
