/// Lists that the forms of the exercisers share. A list's index is the number that the board gets.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace busquill {

/// Sizes of addresses and of data.
inline constexpr std::array<std::string_view, 4> exerciserSizes = {"8 bit", "16 bit", "32 bit",
                                                                   "64 bit"};

/// Where the data of an exerciser come from, or go to.
enum ExerciserDataType : std::int32_t { DataIsValue = 0, DataIsFile, DataIsTarget };

/// An address modifier of the VME bus.
inline constexpr int addressModifierBits = 6;
inline constexpr std::uint8_t defaultAddressModifier = 0x0D;

/// The index of a text in a list; 0 for a text that is not in it.
[[nodiscard]] std::int32_t IndexInList(std::span<const std::string_view> list,
                                       std::string_view text) noexcept;
/// The text at an index; empty outside the list.
[[nodiscard]] std::string_view TextInList(std::span<const std::string_view> list,
                                          std::int32_t index) noexcept;

} // namespace busquill
