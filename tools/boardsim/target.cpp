#include "target.h"

namespace boardsim {

namespace {

constexpr std::uint32_t addressMask = 0xFFFFFF;

} // namespace

std::vector<std::uint8_t> Target::Read(std::uint32_t address, std::size_t length) const {
    std::vector<std::uint8_t> bytes(length);
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = memory_.At((address + i) & addressMask);
    }
    return bytes;
}

void Target::Write(std::uint32_t address, std::span<const std::uint8_t> bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        memory_.Put((address + i) & addressMask, bytes[i]);
    }
}

} // namespace boardsim
