/// The rows of the constant signal tables, one table for each bus family.
#pragma once

#include "signals/signal_defs.h"

#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

namespace busquill {

/// A bus signal. `first` above `last` marks a group whose bits run against the record.
struct BusRow {
    const char* name;
    std::int32_t first;
    std::int32_t last;
    std::int32_t bit; // sample record bit of position 0
    std::uint32_t color;
    std::uint32_t stateFlags;
    std::uint32_t waveformFlags;
    std::uint32_t eventFlags;

    [[nodiscard]] constexpr std::int32_t Width() const noexcept {
        return (first < last ? last - first : first - last) + 1;
    }
};

/// A value of a decoded signal: '0', '1' or 'X' for each of its positions, the most significant
/// first; an empty pattern is 'X' throughout.
struct ValueRow {
    const char* label;
    std::string_view pattern;
    std::uint32_t skipModes;
};

struct DecodedRow {
    const char* name;
    DecodeKind kind;
    std::uint32_t color;
    std::uint32_t stateFlags;
    std::uint32_t waveformFlags;
    std::uint32_t eventFlags;
    const char* insertBefore;
    DefCondition condition;
    std::span<const std::uint8_t> positions; // least significant first
    std::span<const ValueRow> values;
};

struct FamilyTables {
    std::span<const BusRow> bus;
    std::span<const DecodedRow> decoded;
};

[[nodiscard]] FamilyTables PciTables() noexcept;
[[nodiscard]] FamilyTables VmeTables() noexcept;
[[nodiscard]] FamilyTables VsbTables() noexcept;
[[nodiscard]] FamilyTables LarkTables() noexcept;
[[nodiscard]] FamilyTables ConnectorP2Tables() noexcept;
[[nodiscard]] FamilyTables ConnectorP0Tables() noexcept;

// Checks for static_asserts below each table.

[[nodiscard]] constexpr int BitCount(std::span<const BusRow> rows) {
    int bits = 0;
    for (const BusRow& row : rows) {
        bits += row.Width();
    }
    return bits;
}

[[nodiscard]] constexpr int ShownBits(std::span<const BusRow> rows) {
    int bits = 0;
    for (const BusRow& row : rows) {
        bits += (row.stateFlags & flagShown) != 0 ? row.Width() : 0;
    }
    return bits;
}

[[nodiscard]] constexpr bool InsideRecord(std::span<const BusRow> rows) {
    for (const BusRow& row : rows) {
        if (row.bit < 0 || row.bit + row.Width() > 144) {
            return false;
        }
    }
    return true;
}

[[nodiscard]] constexpr bool PatternsFit(std::span<const DecodedRow> rows) {
    for (const DecodedRow& row : rows) {
        for (const ValueRow& value : row.values) {
            if (!value.pattern.empty() && value.pattern.size() != row.positions.size()) {
                return false;
            }
        }
    }
    return true;
}

} // namespace busquill
