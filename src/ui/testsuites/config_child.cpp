#include "ui/testsuites/config_child.h"

#include "capture/analyzer.h"
#include "testsuites/config_document.h"
#include "ui/framework/help_page.h"
#include "ui/framework/win_app.h"
#include "ui/testsuites/config_view.h"
#include "ui/testsuites/help_topics.h"

#include <QIcon>

namespace busquill {

namespace {

constexpr QSize childSize(620, 525);

} // namespace

CConfigChild::CConfigChild(const FeatureParts& parts, CConfigDoc& document)
    : CMDIChildWnd(document) {
    setWindowTitle("Configuration Space");
    SetHelpPage(*this, "configuration.md");
    setWindowIcon(QIcon(":/icons/busquill.svg"));
    resize(childSize);
    auto* view = new CConfigView({document, parts.analyzer.Link(), parts.prompts, parts.settings,
                                  [&app = parts.app] { app.ShowHelp(HelpTopic::Configuration); }});
    view->AttachDocument(&document);
    SetView(view);
}

} // namespace busquill
