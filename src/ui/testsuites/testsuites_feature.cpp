#include "ui/testsuites/testsuites_feature.h"

#include "testsuites/compliance_document.h"
#include "testsuites/config_document.h"
#include "ui/framework/win_app.h"
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

} // namespace busquill
