#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

/// The bytes that have arrived from the board and are not consumed yet.
///
/// One thread puts bytes in; the unread ones are taken by whoever holds the queue lock, and by the
/// serial test without it. There is no overflow check: a writer that laps the reader overwrites
/// data, and the byte counts of a request then show it.
class ReplyRing {
public:
    static constexpr std::int32_t size = 100000;

    [[nodiscard]] std::int32_t ReadIndex() const noexcept { return read_; }
    [[nodiscard]] std::int32_t WriteIndex() const noexcept { return write_; }
    [[nodiscard]] std::int32_t Unread() const noexcept {
        const std::int32_t read = read_;
        const std::int32_t write = write_;
        return write - read + (read > write ? size : 0);
    }
    /// The byte at an index from 0 to `size`; the last is one past the ring and always 0.
    [[nodiscard]] std::uint8_t At(std::int32_t index) const noexcept {
        return bytes_[static_cast<std::size_t>(index)].load(std::memory_order_relaxed);
    }

    void Put(std::uint8_t byte) noexcept {
        const std::int32_t write = write_;
        bytes_[static_cast<std::size_t>(write)].store(byte, std::memory_order_relaxed);
        write_ = Next(write);
    }
    void Put(std::span<const std::uint8_t> bytes) noexcept {
        std::int32_t write = write_;
        for (const std::uint8_t byte : bytes) {
            bytes_[static_cast<std::size_t>(write)].store(byte, std::memory_order_relaxed);
            write = Next(write);
        }
        write_ = write;
    }
    /// The next byte, unread or stale.
    [[nodiscard]] std::uint8_t Take() noexcept {
        const std::int32_t read = read_;
        const std::uint8_t byte = At(read);
        read_ = Next(read);
        return byte;
    }
    /// Fills the span with the next bytes, unread or stale.
    void Take(std::span<std::uint8_t> into) noexcept {
        std::int32_t read = read_;
        for (std::uint8_t& byte : into) {
            byte = At(read);
            read = Next(read);
        }
        read_ = read;
    }
    /// Moves on as if `count` bytes had been taken.
    void Skip(std::size_t count) noexcept {
        read_ = static_cast<std::int32_t>((static_cast<std::size_t>(read_) + count) % size);
    }
    [[nodiscard]] std::vector<std::uint8_t> TakeAll() {
        std::vector<std::uint8_t> taken(static_cast<std::size_t>(Unread()));
        Take(taken);
        return taken;
    }

    /// Drops what is unread.
    void Discard() noexcept { read_ = write_.load(); }
    /// Begins again at position 0.
    void Reset() noexcept {
        read_ = 0;
        write_ = 0;
    }

private:
    [[nodiscard]] static std::int32_t Next(std::int32_t index) noexcept {
        return index + 1 == size ? 0 : index + 1;
    }

    std::array<std::atomic<std::uint8_t>, size + 1> bytes_{};
    std::atomic<std::int32_t> read_ = 0;
    std::atomic<std::int32_t> write_ = 0;
};

} // namespace busquill
