#include "ui/stimulus/stimulus_feature.h"

#include "capture/analyzer.h"
#include "stimulus/stimulus_document.h"
#include "ui/framework/win_app.h"
#include "ui/stimulus/help_topics.h"
#include "ui/stimulus/stimulus_child.h"

#include <memory>

namespace busquill {

Feature StimulusFeature(const FeatureParts& parts) {
    Feature feature;
    feature.docString =
        "\nStimulus\nStimulus\nStimulus (*.stm)\n.stm\nTessel.Stimulus\nTessel Stimulus";
    feature.factories.makeDocument = [parts] {
        return std::make_unique<CStimulusDoc>(parts.analyzer.Tables(), parts.prompts);
    };
    feature.factories.makeFrame = [parts](CDocument& document) {
        return new CStimulusChild(parts, static_cast<CStimulusDoc&>(document));
    };
    feature.commands.On(CommandId::NewStimulus, [&app = parts.app] {
        app.TemplateNamed("Stimulus")->OpenDocumentFile(std::nullopt);
    });
    feature.help = {{HelpTopic::Stimulus, "stimulus.md"}};
    return feature;
}

} // namespace busquill
