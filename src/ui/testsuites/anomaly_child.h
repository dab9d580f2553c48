#pragma once

#include "ui/testsuites/check_suite_child.h"

namespace busquill {

class CAnomalyDetectionDoc;

/// The window of anomaly detection.
class CAnomalyDetectionChild final : public CCheckSuiteChild {
    Q_OBJECT
public:
    CAnomalyDetectionChild(const FeatureParts& parts, CAnomalyDetectionDoc& document);
};

} // namespace busquill
