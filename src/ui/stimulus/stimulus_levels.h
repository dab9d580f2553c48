#pragma once

#include "ui/levels/level_panel.h"

namespace busquill {

/// The levels of a stimulus program. The prompts outlive the panel.
[[nodiscard]] LevelForm StimulusLevels(Prompts& prompts);

} // namespace busquill
