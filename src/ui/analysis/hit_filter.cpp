#include "ui/analysis/hit_filter.h"

#include "capture/analyzer.h"
#include "capture/trace_document.h"
#include "capture/trace_search.h"
#include "ui/analysis/capture_table.h"
#include "ui/analysis/finding_model.h"
#include "ui/analysis/shown_capture.h"
#include "ui/display/trace_view.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/wait_cursor.h"

#include <QMdiArea>

#include <string>

namespace busquill {

FindingModel* HitFilter::ModelOf(CTesselDoc& document) const {
    return static_cast<FindingModel*>(list_.RowsOf(document));
}

CTesselDoc* HitFilter::ActiveDocument() const {
    const CTraceView* const view =
        ViewOf(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
    return view == nullptr ? nullptr : &view->Trace();
}

bool HitFilter::IsOn() const {
    const CTesselDoc* const document = ActiveDocument();
    return document != nullptr && !document->FilterExpression().empty();
}

bool HitFilter::CanSwitch() const {
    CTesselDoc* const document = ActiveDocument();
    if (document == nullptr || !CanFilter(*document)) {
        return false;
    }
    const FindingModel* const model = ModelOf(*document);
    const bool isOfThisBus = IsSameBus(parts_.analyzer.Link().Traits(), list_.Board());
    return IsOn() || (isOfThisBus && model != nullptr && model->HasAllHits());
}

void HitFilter::Switch() {
    if (CanSwitch()) {
        CTesselDoc& document = *ActiveDocument();
        const WaitCursor wait;
        IsOn() ? ShowAll(document) : ShowOnly(document, *ModelOf(document));
    }
}

void HitFilter::Renew(CTesselDoc& document) {
    const FindingModel& model = *ModelOf(document);
    const std::string& filter = document.FilterExpression();
    const bool isSame = filter == model.Expression() && filteredBy_[&document] == model.Searches();
    if (filter.empty() || isSame || !CanFilter(document)) {
        return;
    }
    if (model.Expression().empty()) {
        ShowAll(document);
    } else if (model.HasAllHits()) {
        ShowOnly(document, model);
    }
}

void HitFilter::ShowOnly(CTesselDoc& document, const FindingModel& model) {
    filteredBy_[&document] = model.Searches();
    document.ApplyFilter(model.Expression(), model.Hits(), TopSampleOf(document, parts_.area));
}

void HitFilter::ShowAll(CTesselDoc& document) {
    document.filterPattern.BuildFromTables(1, ModeEvents);
    document.ApplyFilter(TopSampleOf(document, parts_.area));
}

} // namespace busquill
