#pragma once

#include "ui/framework/feature.h"

namespace busquill {

/// Panels beside the windows of a capture.
[[nodiscard]] Feature AnalysisFeature(const FeatureParts& parts);

} // namespace busquill
