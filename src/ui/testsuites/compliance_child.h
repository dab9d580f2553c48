#pragma once

#include "ui/framework/feature.h"
#include "ui/framework/go_stop_child.h"

namespace busquill {

class CComplianceDoc;

/// The window of the compliance tests.
class CComplianceChild final : public CGoStopChild {
    Q_OBJECT
public:
    CComplianceChild(const FeatureParts& parts, CComplianceDoc& document);
};

} // namespace busquill
