#include "ui/testsuites/compliance_child.h"

#include "capture/analyzer.h"
#include "testsuites/compliance_document.h"
#include "ui/framework/help_page.h"
#include "ui/framework/win_app.h"
#include "ui/framework/window_timer.h"
#include "ui/testsuites/compliance_view.h"
#include "ui/testsuites/help_topics.h"

namespace busquill {

namespace {

constexpr QSize childSize(830, 560); // wide enough for the row of buttons

} // namespace

CComplianceChild::CComplianceChild(const FeatureParts& parts, CComplianceDoc& document)
    : CGoStopChild(document, "Compliance Tests", "compliance", childSize) {
    SetHelpPage(*this, "compliance.md");
    auto* view = new CComplianceView(
        {document, parts.analyzer.Link(), parts.prompts, parts.app.printer, parts.settings,
         LoadCheckList(parts.directory), std::make_unique<WindowTimer>(nullptr, parts.mainThread),
         [&app = parts.app] { app.ShowHelp(HelpTopic::Compliance); }});
    connect(view, &CComplianceView::RunningChanged, this, [this](bool running) {
        SetRunState(running ? RunPicture::Running : RunPicture::Stopped);
    });
    connect(view, &CComplianceView::Loaded, this, [this] { SetRunState(RunPicture::Loaded); });
    go = [view] { view->Go(); };
    stop = [view] { view->Stop(); };
    view->AttachDocument(&document);
    SetView(view);
}

} // namespace busquill
