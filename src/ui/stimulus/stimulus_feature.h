#pragma once

#include "ui/framework/feature.h"

namespace busquill {

/// The board as a pattern generator.
[[nodiscard]] Feature StimulusFeature(const FeatureParts& parts);

} // namespace busquill
