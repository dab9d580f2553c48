#include "exerciser/target_form.h"

#include "link/board_identity.h"

namespace busquill {

namespace {

constexpr std::array<std::string_view, 3> spaces = {"Memory", "I/O", "Config"};

constexpr TargetFamily family = {spaces, false};
constexpr TargetFamily vmeFamily = {std::span(spaces).first(1), true};

} // namespace

const TargetFamily& TargetFamilyOf(const BoardTraits& board) {
    return board.IsVmeFamily() ? vmeFamily : family;
}

} // namespace busquill
