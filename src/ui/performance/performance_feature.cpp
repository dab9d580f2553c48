#include "ui/performance/performance_feature.h"

#include "capture/analyzer.h"
#include "performance/performance_document.h"
#include "ui/framework/win_app.h"
#include "ui/performance/help_topics.h"
#include "ui/performance/performance_child.h"

#include <memory>

namespace busquill {

Feature PerformanceFeature(const FeatureParts& parts) {
    Feature feature;
    feature.docString =
        "\nPerformance\nPerformance\nPerformance (*.per)\n.per\nTessel.Performance\n"
        "Tessel Performance";
    feature.factories.makeDocument = [parts] {
        return std::make_unique<CPerformanceDoc>(
            [&link = parts.analyzer.Link()] { return link.Traits(); }, parts.prompts);
    };
    feature.factories.makeFrame = [parts](CDocument& document) {
        return new CPerformanceChild(parts, static_cast<CPerformanceDoc&>(document));
    };
    const std::pair<CommandId, PerformanceType> displays[] = {
        {CommandId::NewUtilization, PerformanceUtilization},
        {CommandId::NewTransferRate, PerformanceTransferRate},
        {CommandId::NewLatency, PerformanceLatency},
        {CommandId::NewBurstDistribution, PerformanceBurstDistribution},
        {CommandId::NewStatistics, PerformanceStatistics}};
    for (const auto& [id, type] : displays) {
        feature.commands.On(id, [&app = parts.app, type = type] {
            CDocument* document = app.TemplateNamed("Performance")->OpenDocumentFile(std::nullopt);
            static_cast<CPerformanceDoc*>(document)->SetType(type);
        });
    }
    feature.help = {{HelpTopic::Performance, "performance.md"}};
    return feature;
}

} // namespace busquill
