#include "ui/testsuites/anomaly_child.h"

#include "testsuites/anomaly_document.h"
#include "ui/framework/help_page.h"
#include "ui/testsuites/anomaly_view.h"
#include "ui/testsuites/help_topics.h"

namespace busquill {

CAnomalyDetectionChild::CAnomalyDetectionChild(const FeatureParts& parts,
                                               CAnomalyDetectionDoc& document)
    : CCheckSuiteChild(document, "Anomaly Detection", "anomaly") {
    SetHelpPage(*this, "anomaly-detection.md");
    SetSuite(*new CAnomalyDetectionView(document, ViewParts(parts, HelpTopic::AnomalyDetection)));
}

} // namespace busquill
