#pragma once

#include "ui/framework/feature.h"

namespace busquill {

/// The measurement of how much, how fast and how efficiently a bus is used.
[[nodiscard]] Feature PerformanceFeature(const FeatureParts& parts);

} // namespace busquill
