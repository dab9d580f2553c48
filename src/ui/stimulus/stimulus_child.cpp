#include "ui/stimulus/stimulus_child.h"

#include "capture/analyzer.h"
#include "stimulus/stimulus_document.h"
#include "ui/framework/help_page.h"
#include "ui/framework/win_app.h"
#include "ui/framework/window_timer.h"
#include "ui/stimulus/help_topics.h"
#include "ui/stimulus/stimulus_view.h"

namespace busquill {

namespace {

constexpr QSize childSize(700, 500);

} // namespace

CStimulusChild::CStimulusChild(const FeatureParts& parts, CStimulusDoc& document)
    : CGoStopChild(document, "Stimulus", "stimulus", childSize) {
    SetHelpPage(*this, "stimulus.md");
    auto* view = new CStimulusView(document, parts.settings,
                                   {parts.analyzer.Link(), parts.prompts,
                                    std::make_unique<WindowTimer>(nullptr, parts.mainThread)},
                                   [&app = parts.app] { app.ShowHelp(HelpTopic::Stimulus); });
    connect(view, &CStimulusView::RunningChanged, this, [this](bool running) {
        SetRunState(running ? RunPicture::Running : RunPicture::Stopped);
    });
    go = [view] { view->Go(); };
    stop = [view] { view->Stop(); };
    view->AttachDocument(&document);
    SetView(view);
}

} // namespace busquill
