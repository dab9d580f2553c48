#pragma once

#include "ui/levels/level_panel.h"

namespace busquill {

/// The levels of a trace program.
[[nodiscard]] LevelForm TraceLevels();

} // namespace busquill
