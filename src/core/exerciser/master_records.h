/// What the master exerciser exchanges with the board, byte by byte.
#pragma once

#include "exerciser/master_form.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace busquill {

/// The most bytes of one step.
inline constexpr std::uint8_t masterStepLimit = 32;

/// The setup and the first step. `fileData` are the step's bytes from a data file, at most 32; when
/// there are none, the form's value is sent.
[[nodiscard]] std::vector<std::uint8_t> BuildMasterSetup(const MasterForm& form,
                                                         const MasterFamily& family,
                                                         std::uint8_t stepLength,
                                                         std::span<const std::uint8_t> fileData);
/// The address and the length of a later step.
[[nodiscard]] std::vector<std::uint8_t> BuildMasterAddress(const BusAddress& address,
                                                           std::uint8_t stepLength);
[[nodiscard]] std::vector<std::uint8_t> BuildMasterAttributes(const MasterForm& form);

enum class MasterStep { First, Later };
/// A command's code, with a bit that is set for every step but the first.
[[nodiscard]] std::uint8_t MasterControlByte(std::int32_t command, MasterStep step) noexcept;

/// The line of a step that was good; any other tells of a failure.
inline constexpr std::string_view masterPass = "Pass";
/// What the status of a finished step reports, in the order of the list.
[[nodiscard]] std::vector<std::string_view> MasterStatusLines(std::uint8_t status);

} // namespace busquill
