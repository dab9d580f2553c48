#pragma once

#include "ui/framework/feature.h"

namespace busquill {

/// The connection to the board: its port, its bus, its firmware.
[[nodiscard]] Feature BoardFeature(const FeatureParts& parts);

} // namespace busquill
