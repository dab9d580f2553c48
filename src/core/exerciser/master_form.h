/// What the user fills in for the master exerciser, and which of it a family of boards has.
#pragma once

#include "exerciser/bus_address.h"
#include "exerciser/form_lists.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace busquill {

struct BoardTraits;

// A list's index is the number that the board gets.
inline constexpr std::array<std::string_view, 2> masterCycles = {"Single", "Burst"};
inline constexpr std::array<std::string_view, 3> masterDataTypes = {"Value", "File", "Target"};

/// The commands of the master, by their place in the list.
enum MasterCommand : std::int32_t {
    MasterNoCommand = -1, // nothing is selected
    MasterRead = 0,
    MasterWrite,
    MasterVerify,
    MasterTest,
    MasterCompare,
    MasterSplitCompletion, // PCI-X only
};

inline constexpr std::array<std::string_view, 6> masterCommands = {
    "Read", "Write", "Verify", "Test", "Compare", "Split Completion"};

/// One transaction: a range of addresses, data, a command. Lists are held by index.
struct MasterForm {
    std::int32_t addressSpace = 0; // in the family's spaces
    std::uint8_t addressModifier = defaultAddressModifier;
    std::int32_t addressSize = 2; // in exerciserSizes
    BusAddress addressStart{};
    BusAddress addressEnd{}; // the last address of the range

    std::int32_t dataSize = 2; // in exerciserSizes
    std::int32_t dataCycle = 0;
    std::int32_t dataType = DataIsValue;
    BusAddress dataValue{};
    std::string dataFilename;

    std::uint8_t attrTag = 0;
    std::uint8_t attrBusNum = 0;
    std::uint8_t attrDeviceNum = 0;
    std::uint8_t attrFunctionNum = 0;

    std::int32_t command = MasterRead;
    std::string repeat = "1";         // as typed; below 1 counts as 1
    std::uint8_t busRequestLevel = 1; // a bit for each level

    friend bool operator==(const MasterForm&, const MasterForm&) = default;
};

/// An attribute of PCI-X: its key in files, its label, its width.
struct MasterAttribute {
    std::string_view key;
    std::string_view label;
    int bits;
    std::uint8_t MasterForm::*value;
};
// clang-format off
inline constexpr std::array<MasterAttribute, 4> masterAttributes = {{
    {"AttrTag",         "Tag",       5, &MasterForm::attrTag},
    {"AttrBusNum",      "Bus#",      8, &MasterForm::attrBusNum},
    {"AttrDeviceNum",   "Device#",   5, &MasterForm::attrDeviceNum},
    {"AttrFunctionNum", "Function#", 3, &MasterForm::attrFunctionNum},
}};
// clang-format on

/// What the form has on a family of boards.
struct MasterFamily {
    /// The spaces that the form offers. Where the modifier stands in their place, the list is
    /// hidden and keeps its first entry.
    std::span<const std::string_view> spaces;
    std::span<const std::string_view> commands;
    bool addressModifier; // also the level of the bus request, which is the only option
    bool attributes;
    int windowWidth;
};
[[nodiscard]] const MasterFamily& MasterFamilyOf(const BoardTraits& board);
/// Takes a form to another family of boards. A space that it lacks becomes its first, and of a
/// command that it lacks nothing is selected. Fields that only one of them has stay.
void ChangeFamily(MasterForm& form, const MasterFamily& from, const MasterFamily& to);
/// The command of that number, or the one for none where the family lacks it.
[[nodiscard]] MasterCommand CommandOn(const MasterFamily& family, std::int32_t command) noexcept;

/// The levels on which a VME board requests the bus.
inline constexpr int busRequestLevels = 4;
/// The lowest level of a mask; 0 when there is none.
[[nodiscard]] int BusRequestLevelOf(std::uint8_t mask) noexcept;
[[nodiscard]] constexpr std::uint8_t BusRequestMask(int level) noexcept {
    return static_cast<std::uint8_t>(1U << level);
}
/// "Level 2".
[[nodiscard]] std::string BusRequestLevelText(int level);

/// The passes over the range that the text of the repeat field asks for, at least 1.
[[nodiscard]] std::int32_t RepeatCount(std::string_view text) noexcept;

} // namespace busquill
