#include "ui/shell/tessel_app.h"

#include "ui/shell/features.h"

#include <QMdiArea>

#include <memory>
#include <utility>

namespace busquill {

CTesselApp::CTesselApp(const Parts& parts) : CWinApp(parts.settings, parts.prompts) {
    commands.On(CommandId::FileOpen, [this, &area = parts.area] { OnFileOpen(area.window()); });
    for (Feature& feature : MakeFeatures({*this, parts.analyzer, parts.settings, parts.prompts,
                                          parts.mainThread, parts.directory, parts.area})) {
        if (!feature.docString.empty()) {
            AddDocTemplate(std::make_unique<CMultiDocTemplate>(
                feature.docString, std::move(feature.factories), parts.area, prompts_));
        }
        commands.Add(feature.commands);
        helpTopics_.insert(helpTopics_.end(), feature.help.begin(), feature.help.end());
    }
}

} // namespace busquill
