#include "ui/analysis/analysis_feature.h"

#include "ui/analysis/finding_panel.h"
#include "ui/analysis/interval_panel.h"
#include "ui/analysis/shown_capture.h"
#include "ui/analysis/transaction_panel.h"
#include "ui/framework/mdi_child.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QMdiArea>

namespace busquill {

namespace {

bool ShowsCapture(const QMdiArea& area) {
    return ViewOf(dynamic_cast<const CMDIChildWnd*>(area.activeSubWindow())) != nullptr;
}

/// Puts a panel into a dock of the main window, which a command shows or hides. A panel that is
/// behind another one is brought to the front.
void AddPanel(Feature& feature, const FeatureParts& parts, CommandId id, const char* title,
              Panel* panel) {
    auto* window = qobject_cast<QMainWindow*>(parts.area.window());
    auto* dock = new QDockWidget(title, window);
    dock->setObjectName(title);
    dock->setWidget(panel);
    window->addDockWidget(Qt::BottomDockWidgetArea, dock);
    dock->hide();
    feature.commands.Switch(
        id,
        [dock, panel] {
            const bool isSeen = !panel->visibleRegion().isEmpty();
            dock->setVisible(!isSeen);
            if (!isSeen) {
                dock->raise();
                panel->TakeKeyboard();
            }
        },
        [dock] { return !dock->isHidden(); },
        [dock, &area = parts.area] { return !dock->isHidden() || ShowsCapture(area); });
}

} // namespace

Feature AnalysisFeature(const FeatureParts& parts) {
    Feature feature;
    AddPanel(feature, parts, CommandId::Transactions, "Transactions", new TransactionPanel(parts));
    auto* const findings = new FindingPanel(parts);
    AddPanel(feature, parts, CommandId::Findings, "Findings and Hits", findings);
    feature.commands.Switch(
        CommandId::ShowOnlyHits, [findings] { findings->FilterByHits(); },
        [findings] { return findings->IsFilteredByHits(); },
        [findings] { return findings->CanFilterByHits(); });
    AddPanel(feature, parts, CommandId::Interval, "Interval", new IntervalPanel(parts));
    return feature;
}

} // namespace busquill
