#pragma once

#include <span>
#include <string_view>

namespace busquill {

/// A row of a fixed table of checks: a group at level 0, or what is in it, at higher levels.
struct CheckTableRow {
    int level = 0;
    std::string_view text;
    /// The place of a signal in the bits of the backplane test; only there.
    int bit = 0;
};

using CheckTable = std::span<const CheckTableRow>;

/// The row at an index; null outside the table.
[[nodiscard]] constexpr const CheckTableRow* RowAt(CheckTable table, int index) noexcept {
    return index >= 0 && static_cast<std::size_t>(index) < table.size()
               ? &table[static_cast<std::size_t>(index)]
               : nullptr;
}

} // namespace busquill
