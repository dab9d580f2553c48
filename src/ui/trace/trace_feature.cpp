#include "ui/trace/trace_feature.h"

#include "capture/trace_document.h"
#include "ui/display/display_properties.h"
#include "ui/display/trace_view.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/win_app.h"
#include "ui/trace/help_topics.h"
#include "ui/trace/trace_documents.h"

#include <QMdiArea>

#include <memory>
#include <utility>

namespace busquill {

namespace {

/// The trace whose view is the active one, or null.
CTesselDoc* ActiveTrace(const QMdiArea& area) {
    const auto* frame = dynamic_cast<const CMDIChildWnd*>(area.activeSubWindow());
    const auto* view =
        frame != nullptr ? dynamic_cast<const CTraceView*>(frame->GetActiveView()) : nullptr;
    return view != nullptr ? &view->Trace() : nullptr;
}

void ShowDisplayProperties(const FeatureParts& parts, DisplayPage page) {
    CDisplayProperties sheet(parts.area.window(),
                             {parts.settings, ActiveTrace(parts.area),
                              [&app = parts.app] { app.DocumentChanged(); },
                              [&app = parts.app] { app.ShowHelp(HelpTopic::Display); }},
                             page);
    sheet.exec();
}

} // namespace

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
        TraceDocuments::ExportTypes(),
        [traces](CDocument& document, const std::string& path) {
            return traces->Export(static_cast<CTesselDoc&>(document), path);
        },
    };
    feature.commands.On(
        CommandId::NewStateTrace, [traces] { traces->NewStateTrace(); },
        [traces] { return traces->FindRealTimeView(TraceViewKind::State) == nullptr; });
    feature.commands.On(
        CommandId::NewWaveformTrace, [traces] { traces->NewWaveformTrace(); },
        [traces] { return traces->FindRealTimeView(TraceViewKind::Waveform) == nullptr; });
    constexpr std::pair<CommandId, DisplayPage> pages[] = {
        {CommandId::DisplayName, DisplayPage::Name},
        {CommandId::DisplayMarkers, DisplayPage::Markers},
        {CommandId::DisplayGrid, DisplayPage::Grid},
        {CommandId::DisplayScale, DisplayPage::Scale},
        {CommandId::DisplayColors, DisplayPage::Colors}};
    for (const auto& [id, page] : pages) {
        feature.commands.On(id, [parts, page = page] { ShowDisplayProperties(parts, page); });
    }
    feature.help = {{HelpTopic::State, "listing.md"},
                    {HelpTopic::Waveform, "waveforms.md"},
                    {HelpTopic::TraceSetup, "trace-setup.md"},
                    {HelpTopic::SetupWizard, "setup-wizard.md"},
                    {HelpTopic::Display, "display-properties.md"}};
    return feature;
}

} // namespace busquill
