/// What the user fills in for the target exerciser, and which of it a family of boards has.
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
// clang-format off
inline constexpr std::array<std::string_view, 3> targetResponses = {"Normal", "Retry", "Disconnect"};
inline constexpr std::array<std::string_view, 2> targetDataTypes = {"Value", "File"};
inline constexpr std::array<std::string_view, 3> targetCommands  = {"None", "Read", "Write"};
inline constexpr std::array<std::string_view, 25> targetLengths  = {
    "0",      "1",      "2",      "4",      "8",      "16",    "32",    "64",   "128",
    "256",    "512",    "1 KB",   "2 KB",   "4 KB",   "8 KB",  "16 KB", "32 KB", "64 KB",
    "128 KB", "256 KB", "512 KB", "1 MB",   "2 MB",   "4 MB",  "8 MB"};
// clang-format on
/// Wait states are 0 to one less than this.
inline constexpr int targetWaitStates = 16;

/// The commands of the target, by their place in the list. None writes like Write.
enum TargetCommand : std::int32_t { TargetNone = 0, TargetRead, TargetWrite };

/// Where on the bus the board answers and how, and a range of its memory to fill or to read. Lists
/// are held by index.
struct TargetForm {
    std::int32_t addressSpace = 0; // in the family's spaces
    std::uint8_t addressModifier = defaultAddressModifier;
    BusAddress busStart{};
    std::int32_t busLength = 24; // in targetLengths

    std::int32_t dataSize = 2; // in exerciserSizes
    std::int32_t waitStates = 0;
    std::int32_t response = 0;
    bool enabled = false;

    BusAddress addressStart{}; // in the board's memory
    BusAddress addressEnd{};   // the last address of the range
    std::int32_t dataType = DataIsValue;
    BusAddress dataValue{};
    std::string dataFilename;
    std::int32_t command = TargetRead;

    friend bool operator==(const TargetForm&, const TargetForm&) = default;
};

/// What the form has on a family of boards.
struct TargetFamily {
    /// Where the modifier stands in their place, the list is hidden.
    std::span<const std::string_view> spaces;
    bool addressModifier;
};
[[nodiscard]] const TargetFamily& TargetFamilyOf(const BoardTraits& board);

} // namespace busquill
