#include "ui/trace/trace_feature.h"

#include "capture/trace_document.h"
#include "ui/trace/help_topics.h"
#include "ui/trace/trace_documents.h"

#include <memory>

namespace busquill {

Feature TraceFeature(const FeatureParts& parts) {
    const auto traces = std::make_shared<TraceDocuments>(parts);
    Feature feature;
    feature.docString = TraceDocuments::docString;
    feature.factories = {
        [traces] { return traces->MakeFileDocument(); },
        [traces](CDocument& document) {
            return traces->MakeFrame(document, TraceViewKind::Waveform);
        },
        [traces](CDocument& document) { traces->FileOpened(document); },
    };
    feature.commands.On(
        CommandId::NewStateTrace, [traces] { traces->NewStateTrace(); },
        [traces] { return traces->FindRealTimeView(TraceViewKind::State) == nullptr; });
    feature.commands.On(
        CommandId::NewWaveformTrace, [traces] { traces->NewWaveformTrace(); },
        [traces] { return traces->FindRealTimeView(TraceViewKind::Waveform) == nullptr; });
    feature.help = {{HelpTopic::State, "listing.md"},
                    {HelpTopic::Waveform, "waveforms.md"},
                    {HelpTopic::TraceSetup, "trace-setup.md"},
                    {HelpTopic::SetupWizard, "setup-wizard.md"}};
    return feature;
}

} // namespace busquill
