#include "ui/analysis/analysis_feature.h"

#include "ui/analysis/transaction_panel.h"
#include "ui/display/trace_view.h"
#include "ui/framework/mdi_child.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QMdiArea>

namespace busquill {

namespace {

bool ShowsCapture(const QMdiArea& area) {
    const auto* frame = dynamic_cast<const CMDIChildWnd*>(area.activeSubWindow());
    return frame != nullptr && dynamic_cast<const CTraceView*>(frame->GetActiveView()) != nullptr;
}

} // namespace

Feature AnalysisFeature(const FeatureParts& parts) {
    auto* window = qobject_cast<QMainWindow*>(parts.area.window());
    auto* dock = new QDockWidget("Transactions", window);
    dock->setObjectName("Transactions");
    auto* panel = new TransactionPanel(parts);
    dock->setWidget(panel);
    window->addDockWidget(Qt::BottomDockWidgetArea, dock);
    dock->hide();

    Feature feature;
    feature.commands.Switch(
        CommandId::Transactions,
        [dock, panel] {
            dock->setVisible(dock->isHidden());
            if (!dock->isHidden()) {
                panel->TakeKeyboard();
            }
        },
        [dock] { return !dock->isHidden(); }, [&area = parts.area] { return ShowsCapture(area); });
    return feature;
}

} // namespace busquill
