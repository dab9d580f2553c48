#include "ui/testsuites/testsuites_feature.h"

#include "capture/analyzer.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/anomaly_table.h"
#include "testsuites/backplane_document.h"
#include "testsuites/backplane_table.h"
#include "testsuites/compliance_document.h"
#include "testsuites/config_document.h"
#include "ui/framework/win_app.h"
#include "ui/testsuites/anomaly_child.h"
#include "ui/testsuites/backplane_child.h"
#include "ui/testsuites/compliance_child.h"
#include "ui/testsuites/config_child.h"
#include "ui/testsuites/help_topics.h"

#include <memory>

namespace busquill {

Feature ConfigurationFeature(const FeatureParts& parts) {
    Feature feature;
    feature.docString = "\nConfig\nConfig\nConfig (*.cfg)\n.cfg\nTessel.Config\nTessel Config";
    feature.factories.makeDocument = [parts] {
        return std::make_unique<CConfigDoc>(parts.directory, parts.prompts);
    };
    feature.factories.makeFrame = [parts](CDocument& document) {
        return new CConfigChild(parts, static_cast<CConfigDoc&>(document));
    };
    feature.commands.On(CommandId::NewConfiguration, [&app = parts.app] {
        app.TemplateNamed("Config")->OpenDocumentFile(std::nullopt);
    });
    feature.help = {{HelpTopic::Configuration, "configuration.md"}};
    return feature;
}

Feature ComplianceFeature(const FeatureParts& parts) {
    Feature feature;
    feature.docString = "\nCompliance\nCompliance\nCompliance (*.cpl)\n.cpl\nTessel.Compliance\n"
                        "Tessel Compliance";
    feature.factories.makeDocument = [parts] {
        return std::make_unique<CComplianceDoc>(parts.directory, parts.prompts);
    };
    feature.factories.makeFrame = [parts](CDocument& document) {
        return new CComplianceChild(parts, static_cast<CComplianceDoc&>(document));
    };
    feature.commands.On(CommandId::NewCompliance, [&app = parts.app] {
        app.TemplateNamed("Compliance")->OpenDocumentFile(std::nullopt);
    });
    feature.help = {{HelpTopic::Compliance, "compliance.md"}};
    return feature;
}

Feature AnomalyFeature(const FeatureParts& parts) {
    Feature feature;
    feature.docString = "\nAnDet\nAnDet\nAnomaly Detection (*.adt)\n.adt\n"
                        "Tessel.AnomalyDetection\nTessel Anomaly Detection";
    feature.factories.makeDocument = [&link = parts.analyzer.Link(), &prompts = parts.prompts] {
        return std::make_unique<CAnomalyDetectionDoc>(
            [&link] { return AnomalyTable(link.Traits()); }, prompts);
    };
    feature.factories.makeFrame = [parts](CDocument& document) {
        return new CAnomalyDetectionChild(parts, static_cast<CAnomalyDetectionDoc&>(document));
    };
    feature.commands.On(CommandId::NewAnomaly, [&app = parts.app] {
        app.TemplateNamed("AnDet")->OpenDocumentFile(std::nullopt);
    });
    feature.help = {{HelpTopic::AnomalyDetection, "anomaly-detection.md"}};
    return feature;
}

Feature BackplaneFeature(const FeatureParts& parts) {
    Feature feature;
    feature.docString = "\nBackplane Test\nBackplaneTest\nBackplane Test (*.bpt)\n.bpt\n"
                        "Tessel.BackplaneTest\nTessel Backplane Test";
    feature.factories.makeDocument = [&link = parts.analyzer.Link(), &prompts = parts.prompts] {
        return std::make_unique<CBackplaneTestDoc>(
            [&link] { return BackplaneTable(link.Traits()); }, prompts);
    };
    feature.factories.makeFrame = [parts](CDocument& document) {
        return new CBackplaneTestChild(parts, static_cast<CBackplaneTestDoc&>(document));
    };
    feature.commands.On(CommandId::NewBackplane, [&app = parts.app] {
        app.TemplateNamed("Backplane Test")->OpenDocumentFile(std::nullopt);
    });
    feature.help = {{HelpTopic::Backplane, "backplane.md"}};
    return feature;
}

} // namespace busquill
