#pragma once

#include "ui/framework/feature.h"
#include "ui/framework/go_stop_child.h"
#include "ui/testsuites/check_suite_view.h"

namespace busquill {

/// The window around a check list and its results.
class CCheckSuiteChild : public CGoStopChild {
    Q_OBJECT
protected:
    CCheckSuiteChild(CDocument& document, const QString& title, const QString& icon);

    /// What the view needs, with the help of a topic.
    [[nodiscard]] static CCheckSuiteView::Parts ViewParts(const FeatureParts& parts, int helpTopic);
    void SetSuite(CCheckSuiteView& view);
};

} // namespace busquill
