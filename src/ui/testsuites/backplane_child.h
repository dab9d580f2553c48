#pragma once

#include "ui/testsuites/check_suite_child.h"

namespace busquill {

class CBackplaneTestDoc;

/// The window of the backplane test.
class CBackplaneTestChild final : public CCheckSuiteChild {
    Q_OBJECT
public:
    CBackplaneTestChild(const FeatureParts& parts, CBackplaneTestDoc& document);
};

} // namespace busquill
