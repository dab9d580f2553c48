#include "ui/exerciser/exerciser_features.h"

#include "capture/analyzer.h"
#include "exerciser/master_document.h"
#include "exerciser/target_document.h"
#include "platform/settings.h"
#include "ui/exerciser/help_topics.h"
#include "ui/exerciser/master_view.h"
#include "ui/exerciser/target_view.h"
#include "ui/framework/go_stop_child.h"
#include "ui/framework/help_page.h"
#include "ui/framework/win_app.h"

#include <memory>

namespace busquill {

namespace {

constexpr int usualWidth = 600;
constexpr int usualHeight = 400;

/// What differs between the functions.
struct Kind {
    const char* docString;
    const char* name; // of its documents, and the title of its windows
    const char* icon;
    CommandId command;
    int helpTopic;
    const char* page;
    const char* dataKey; // the setting that keeps the last data file
};

template <class Document, class View>
Feature MakeFeature(const FeatureParts& parts, const Kind& kind,
                    const std::function<int(const Document&)>& width) {
    Feature feature;
    feature.docString = kind.docString;
    feature.factories.makeDocument = [parts, kind] {
        auto document = std::make_unique<Document>(
            [&link = parts.analyzer.Link()] { return link.Traits(); }, parts.prompts);
        document->Form().dataFilename =
            parts.settings.GetProfileString(SettingsSection::setup, kind.dataKey, "");
        return document;
    };
    feature.factories.makeFrame = [parts, kind, width](CDocument& opened) {
        auto& document = static_cast<Document&>(opened);
        auto* frame =
            new CGoStopChild(document, kind.name, kind.icon, {width(document), usualHeight});
        SetHelpPage(*frame, kind.page);
        auto* view =
            new View({parts.analyzer.Link(), parts.settings, parts.prompts, parts.mainThread,
                      [&app = parts.app, topic = kind.helpTopic] { app.ShowHelp(topic); }},
                     document);
        QObject::connect(view, &View::RunningChanged, frame, [frame](bool running) {
            frame->SetRunState(running ? RunPicture::Running : RunPicture::Stopped);
        });
        frame->go = [view] { view->Go(); };
        frame->stop = [view] { view->Stop(); };
        view->AttachDocument(&document);
        frame->SetView(view);
        return frame;
    };
    feature.commands.On(kind.command, [&app = parts.app, name = kind.name] {
        app.TemplateNamed(name)->OpenDocumentFile(std::nullopt);
    });
    feature.help = {{kind.helpTopic, kind.page}};
    return feature;
}

} // namespace

Feature MasterFeature(const FeatureParts& parts) {
    return MakeFeature<CMasterDoc, CMasterView>(
        parts,
        {"\nMaster\nMaster\nMaster (*.mst)\n.mst\nTessel.Master\nTessel Master", "Master", "master",
         CommandId::NewMaster, HelpTopic::Master, "master.md", "LastMasterDataFile"},
        [](const CMasterDoc& document) { return document.Family().windowWidth; });
}

Feature TargetFeature(const FeatureParts& parts) {
    return MakeFeature<CTargetDoc, CTargetView>(
        parts,
        {"\nTarget\nTarget\nTarget (*.tgt)\n.tgt\nTessel.Target\nTessel Target", "Target", "target",
         CommandId::NewTarget, HelpTopic::Target, "target.md", "LastTargetDataFile"},
        [](const CTargetDoc&) { return usualWidth; });
}

} // namespace busquill
