#pragma once

#include "ui/framework/feature.h"

namespace busquill {

/// The devices of the bus and their configuration.
[[nodiscard]] Feature ConfigurationFeature(const FeatureParts& parts);
/// The compliance tests of a device.
[[nodiscard]] Feature ComplianceFeature(const FeatureParts& parts);
/// The detection of violations on the bus.
[[nodiscard]] Feature AnomalyFeature(const FeatureParts& parts);
/// The test of a backplane for shorts.
[[nodiscard]] Feature BackplaneFeature(const FeatureParts& parts);

} // namespace busquill
