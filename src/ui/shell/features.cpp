#include "ui/shell/features.h"

#include "ui/exerciser/exerciser_features.h"
#include "ui/link/board_feature.h"
#include "ui/performance/performance_feature.h"
#include "ui/stimulus/stimulus_feature.h"
#include "ui/testsuites/testsuites_feature.h"
#include "ui/trace/trace_feature.h"

namespace busquill {

namespace {

/// A function that is not implemented yet. It has no factories, so its commands stay disabled.
Feature Planned(const char* docString) {
    return {docString, {}, {}, {}};
}

} // namespace

// Window title, document name, file-new name, filter name, extension, file type id and name.
std::vector<Feature> MakeFeatures(const FeatureParts& parts) {
    return {
        BoardFeature(parts),
        TraceFeature(parts),
        PerformanceFeature(parts),
        MasterFeature(parts),
        ConfigurationFeature(parts),
        ComplianceFeature(parts),
        Planned("\nAnDet\nAnDet\nAnomaly Detection (*.adt)\n.adt\nTessel.AnomalyDetection\n"
                "Tessel Anomaly Detection"),
        TargetFeature(parts),
        StimulusFeature(parts),
        Planned("\nBackplane Test\nBackplaneTest\nBackplane Test (*.bpt)\n.bpt\n"
                "Tessel.BackplaneTest\nTessel Backplane Test"),
    };
}

} // namespace busquill
