#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace boardsim {

/// Memory of any size; a byte that nobody has written is 0.
class PagedMemory {
public:
    [[nodiscard]] std::uint8_t At(std::uint64_t address) const {
        const auto page = pages_.find(address / pageSize);
        return page == pages_.end() ? 0 : page->second[address % pageSize];
    }
    void Put(std::uint64_t address, std::uint8_t value) {
        pages_[address / pageSize][address % pageSize] = value;
    }
    [[nodiscard]] std::vector<std::uint8_t> Read(std::uint64_t address, std::size_t length) const {
        std::vector<std::uint8_t> bytes(length);
        for (std::size_t i = 0; i < length; ++i) {
            bytes[i] = At(address + i);
        }
        return bytes;
    }
    void Write(std::uint64_t address, std::span<const std::uint8_t> bytes) {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            Put(address + i, bytes[i]);
        }
    }

private:
    static constexpr std::size_t pageSize = 4096;
    std::map<std::uint64_t, std::array<std::uint8_t, pageSize>> pages_;
};

} // namespace boardsim
