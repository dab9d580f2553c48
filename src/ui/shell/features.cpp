#include "ui/shell/features.h"

#include "ui/analysis/analysis_feature.h"
#include "ui/exerciser/exerciser_features.h"
#include "ui/link/board_feature.h"
#include "ui/performance/performance_feature.h"
#include "ui/stimulus/stimulus_feature.h"
#include "ui/testsuites/testsuites_feature.h"
#include "ui/trace/trace_feature.h"

namespace busquill {

// In the order of their templates.
std::vector<Feature> MakeFeatures(const FeatureParts& parts) {
    return {
        BoardFeature(parts),     TraceFeature(parts),         PerformanceFeature(parts),
        MasterFeature(parts),    ConfigurationFeature(parts), ComplianceFeature(parts),
        AnomalyFeature(parts),   TargetFeature(parts),        StimulusFeature(parts),
        BackplaneFeature(parts), AnalysisFeature(parts),
    };
}

} // namespace busquill
