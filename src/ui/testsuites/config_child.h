#pragma once

#include "ui/framework/feature.h"
#include "ui/framework/mdi_child.h"

namespace busquill {

class CConfigDoc;

/// The window of the configuration space.
class CConfigChild final : public CMDIChildWnd {
    Q_OBJECT
public:
    CConfigChild(const FeatureParts& parts, CConfigDoc& document);
};

} // namespace busquill
