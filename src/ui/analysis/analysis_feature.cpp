#include "ui/analysis/analysis_feature.h"

#include "capture/trace_document.h"
#include "ui/analysis/bookmark_dialog.h"
#include "ui/analysis/bookmark_panel.h"
#include "ui/analysis/finding_panel.h"
#include "ui/analysis/interval_panel.h"
#include "ui/analysis/shown_capture.h"
#include "ui/analysis/transaction_panel.h"
#include "ui/display/trace_view.h"
#include "ui/framework/mdi_child.h"

#include <QApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QPointer>

#include <optional>

namespace busquill {

namespace {

CTraceView* ActiveView(const QMdiArea& area) {
    return ViewOf(dynamic_cast<const CMDIChildWnd*>(area.activeSubWindow()));
}

bool ShowsCapture(const QMdiArea& area) {
    return ActiveView(area) != nullptr;
}

/// Bookmarks are about the capture's samples, not those of the Power Zoom.
bool CanAddBookmark(const QMdiArea& area) {
    const CTraceView* const view = ActiveView(area);
    return view != nullptr && !view->IsZoom() && view->Trace().RowCount(false) > 0;
}

void AddBookmark(const QMdiArea& area) {
    const QPointer<CTraceView> view = ActiveView(area);
    const CTesselDoc& document = view->Trace();
    const std::int64_t number = document.FirstSampleNumber(false) + view->CurrentSample();
    const auto found = document.GetBookmarks().find(number);
    const bool isThere = found != document.GetBookmarks().end();
    BookmarkDialog dialog(area.window(), number,
                          isThere ? std::optional(found->second) : std::nullopt);
    // The window may be closed while the user types, as by another program.
    QObject::connect(view, &QObject::destroyed, &dialog, &QDialog::reject);
    if (dialog.exec() == QDialog::Accepted && view != nullptr) {
        view->Trace().SetBookmark(number, dialog.Note());
    }
}

/// Puts a panel into a dock of the main window, which a command shows or hides. A panel that is
/// covered by another one is brought to the front.
void AddPanel(Feature& feature, const FeatureParts& parts, CommandId id, const char* title,
              Panel* panel) {
    auto* window = qobject_cast<QMainWindow*>(parts.area.window());
    auto* dock = new QDockWidget(title, window);
    dock->setObjectName(title);
    dock->setWidget(panel);
    window->addDockWidget(Qt::BottomDockWidgetArea, dock);
    dock->hide();
    QObject::connect(panel, &Panel::Left, [&area = parts.area] {
        if (auto* const active = dynamic_cast<CMDIChildWnd*>(area.activeSubWindow())) {
            active->window()->activateWindow(); // the dock may float
            active->GetActiveView()->setFocus();
        }
    });
    feature.commands.Switch(
        id,
        [dock, panel, &area = parts.area] {
            // Otherwise the keyboard may go to another window, which would become the active one.
            if (CTraceView* view = ActiveView(area);
                view != nullptr && panel->isAncestorOf(QApplication::focusWidget())) {
                view->setFocus();
            }
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
    auto* const hits = new FindingPanel(parts);
    AddPanel(feature, parts, CommandId::Findings, "Findings and Hits", hits);
    feature.commands.Switch(
        CommandId::ShowOnlyHits, [hits] { hits->FilterByHits(); },
        [hits] { return hits->Filter().IsOn(); }, [hits] { return hits->Filter().CanSwitch(); });
    AddPanel(feature, parts, CommandId::Interval, "Interval", new IntervalPanel(parts));
    AddPanel(feature, parts, CommandId::ShowBookmarks, "Bookmarks", new BookmarkPanel(parts));
    feature.commands.On(
        CommandId::AddBookmark, [&area = parts.area] { AddBookmark(area); },
        [&area = parts.area] { return CanAddBookmark(area); });
    return feature;
}

} // namespace busquill
