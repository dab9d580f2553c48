/// Turning bits that lie side by side in samples into bits that lie side by side in a signal.
#pragma once

#include "signals/signal.h"

#include <array>
#include <cstdint>
#include <span>

namespace busquill {

constexpr std::uint32_t chunkSamples = 32;
constexpr std::size_t recordBits = 144;

/// One word for each data index: bit s is that bit of the chunk's sample s.
using ChunkWords = std::array<std::uint32_t, recordBits>;

/// Transposes 8 rows of 8 bits: bit c of byte r becomes bit r of byte c.
[[nodiscard]] constexpr std::uint64_t Transpose8(std::uint64_t rows) noexcept {
    std::uint64_t swap = (rows ^ (rows >> 7)) & 0x00AA00AA00AA00AAU;
    rows ^= swap ^ (swap << 7);
    swap = (rows ^ (rows >> 14)) & 0x0000CCCC0000CCCCU;
    rows ^= swap ^ (swap << 14);
    swap = (rows ^ (rows >> 28)) & 0x00000000F0F0F0F0U;
    return rows ^ swap ^ (swap << 28);
}

/// The words of up to 32 records; samples that are not there are 0.
[[nodiscard]] ChunkWords TransposeRecords(std::span<const SampleRecord> records) noexcept;

} // namespace busquill
