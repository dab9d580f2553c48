#pragma once

#include "ui/framework/feature.h"
#include "ui/framework/go_stop_child.h"

namespace busquill {

class CStimulusDoc;

/// The window of a stimulus program.
class CStimulusChild final : public CGoStopChild {
    Q_OBJECT
public:
    CStimulusChild(const FeatureParts& parts, CStimulusDoc& document);
};

} // namespace busquill
