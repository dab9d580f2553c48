#pragma once

#include "ui/framework/feature.h"

#include <vector>

namespace busquill {

/// The functions of the board, in the order of their templates.
[[nodiscard]] std::vector<Feature> MakeFeatures(const FeatureParts& parts);

} // namespace busquill
