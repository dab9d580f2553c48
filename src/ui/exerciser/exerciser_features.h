#pragma once

#include "ui/framework/feature.h"

namespace busquill {

/// The board drives the bus.
[[nodiscard]] Feature MasterFeature(const FeatureParts& parts);
/// The board answers on the bus.
[[nodiscard]] Feature TargetFeature(const FeatureParts& parts);

} // namespace busquill
