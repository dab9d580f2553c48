#pragma once

#include "link/board_identity.h"
#include "platform/bits.h"
#include "testsuites/check_table.h"

#include <array>
#include <cstdint>

namespace busquill {

/// The level of a check; groups and subgroups are above it. Checks alone are numbered, from 1, and
/// the texts begin with these numbers.
constexpr int anomalyCheckLevel = 2;

/// The checks of the board's family, in groups and subgroups.
[[nodiscard]] CheckTable AnomalyTable(const BoardTraits& traits);

/// The text of a check by its number; empty for a number that the table does not have.
[[nodiscard]] std::string_view AnomalyText(CheckTable table, int number) noexcept;

constexpr std::size_t anomalyChecklistBytes = 16;
/// The check list for the board, of the rows that are enabled. A set bit switches a check off.
[[nodiscard]] std::array<std::uint8_t, anomalyChecklistBytes>
BuildAnomalyChecklist(CheckTable table, const Bits& enabled);

} // namespace busquill
