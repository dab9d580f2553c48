#include "exerciser/master_form.h"

#include "link/board_identity.h"
#include "platform/text.h"

#include <algorithm>
#include <bit>

namespace busquill {

namespace {

using Text = std::string_view;

constexpr std::array<Text, 3> spaces = {"Memory", "I/O", "Config"};
constexpr std::array<Text, 3> vsbSpaces = {"Sys", "I/O", "Alt"};
constexpr std::span<const Text> pciXCommands = masterCommands;
constexpr std::span<const Text> commands = pciXCommands.first(5);

// clang-format off
//                                 spaces     commands      modifier attributes width
constexpr MasterFamily pciFamily  = {spaces,    commands,     false,   false,     600};
constexpr MasterFamily pciXFamily = {spaces,    pciXCommands, false,   true,      840};
constexpr MasterFamily vmeFamily  = {spaces,    commands,     true,    false,     600};
constexpr MasterFamily vsbFamily  = {vsbSpaces, commands,     false,   false,     600};
// clang-format on

} // namespace

const MasterFamily& MasterFamilyOf(const BoardTraits& board) {
    if (board.IsVmeFamily()) {
        return vmeFamily;
    }
    if (board.IsVsbFamily()) {
        return vsbFamily;
    }
    return board.IsPciXMode() ? pciXFamily : pciFamily;
}

int BusRequestLevelOf(std::uint8_t mask) noexcept {
    const int level = std::countr_zero(mask);
    return level < busRequestLevels ? level : 0;
}

std::string BusRequestLevelText(int level) {
    return Printf("Level %d", level);
}

std::int32_t RepeatCount(std::string_view text) noexcept {
    return std::max(ParseInt(text), 1);
}

} // namespace busquill
