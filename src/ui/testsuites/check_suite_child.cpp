#include "ui/testsuites/check_suite_child.h"

#include "capture/analyzer.h"
#include "ui/framework/win_app.h"

namespace busquill {

namespace {

constexpr QSize childSize(830, 560); // wide enough for most texts

} // namespace

CCheckSuiteChild::CCheckSuiteChild(CDocument& document, const QString& title, const QString& icon)
    : CGoStopChild(document, title, icon, childSize) {}

CCheckSuiteView::Parts CCheckSuiteChild::ViewParts(const FeatureParts& parts, int helpTopic) {
    return {parts.analyzer.Link(), parts.prompts, parts.settings, parts.mainThread,
            [&app = parts.app, helpTopic] { app.ShowHelp(helpTopic); }};
}

void CCheckSuiteChild::SetSuite(CCheckSuiteView& view) {
    connect(&view, &CCheckSuiteView::RunningChanged, this, [this](bool running) {
        SetRunState(running ? RunPicture::Running : RunPicture::Stopped);
    });
    go = [&view] { view.Start(); };
    stop = [&view] { view.Stop(); };
    view.AttachDocument(&GetDocument());
    SetView(&view);
}

} // namespace busquill
