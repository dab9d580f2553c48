#pragma once

#include "ui/framework/feature.h"

namespace busquill {

/// Captures of bus traffic and their files.
[[nodiscard]] Feature TraceFeature(const FeatureParts& parts);

} // namespace busquill
