#pragma once

#include "link/board_identity.h"
#include "testsuites/check_table.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace busquill {

/// Signals of the backplane that the test drives and reads back, in this many places.
constexpr int backplaneBits = 112;

/// The level of a signal; a group is above it.
constexpr int backplaneSignalLevel = 1;

/// The signals of the board's bus or connector, in groups.
[[nodiscard]] CheckTable BackplaneTable(const BoardTraits& traits);
/// The signals of the PCI bus, whose rows the flags of a file belong to.
[[nodiscard]] CheckTable PciBackplaneTable() noexcept;

/// What is driven and what is read back: two bytes for each eight signals, the first one read back,
/// the second one driven.
using BackplaneSignals = std::array<std::uint8_t, 2 * backplaneBits / 8>;

[[nodiscard]] bool IsReadBack(const BackplaneSignals& bytes, int bit) noexcept;
/// Drives one signal; without one, none.
[[nodiscard]] BackplaneSignals DriveSignal(std::optional<int> bit) noexcept;

/// The line of a signal that no other follows.
inline constexpr std::string_view backplaneGood = "    Ok";
/// The lines of the result list for a signal that was driven.
[[nodiscard]] std::vector<std::string> EvaluateSignal(CheckTable table, int bit,
                                                      const BackplaneSignals& bytes);

} // namespace busquill
