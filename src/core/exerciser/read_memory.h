#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

/// The memory that a run has read, from an address on.
class ReadMemory {
public:
    static constexpr std::size_t limit = 200'000;

    explicit ReadMemory(std::uint32_t baseAddress) : baseAddress_(baseAddress) {
        bytes_.reserve(limit);
    }

    [[nodiscard]] std::uint32_t BaseAddress() const noexcept { return baseAddress_; }
    [[nodiscard]] std::span<const std::uint8_t> Bytes() const noexcept { return bytes_; }

    /// Appends the bytes of a step. False when they do not fit, and none is appended.
    [[nodiscard]] bool Add(std::span<const std::uint8_t> step) {
        if (bytes_.size() + step.size() > limit) {
            return false;
        }
        bytes_.insert(bytes_.end(), step.begin(), step.end());
        return true;
    }

private:
    std::uint32_t baseAddress_;
    std::vector<std::uint8_t> bytes_;
};

} // namespace busquill
