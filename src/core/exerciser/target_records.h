/// What the target exerciser sends to the board, byte by byte.
#pragma once

#include "exerciser/target_form.h"

#include <cstdint>
#include <vector>

namespace busquill {

/// The most bytes of one step.
inline constexpr std::uint8_t targetStepLimit = 248;

/// Where on the bus the board answers, and how.
[[nodiscard]] std::vector<std::uint8_t> BuildTargetSetup(const TargetForm& form,
                                                         const TargetFamily& family);
/// Sent before each step.
[[nodiscard]] std::vector<std::uint8_t> BuildTargetAddress(const TargetForm& form);

} // namespace busquill
