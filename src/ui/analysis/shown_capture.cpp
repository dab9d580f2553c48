#include "ui/analysis/shown_capture.h"

#include "capture/trace_document.h"
#include "ui/display/trace_view.h"
#include "ui/framework/mdi_child.h"

#include <QLocale>
#include <QMdiArea>

#include <algorithm>
#include <cstddef>

namespace busquill {

CTraceView* ViewOf(const CMDIChildWnd* frame) {
    return frame == nullptr ? nullptr : dynamic_cast<CTraceView*>(frame->GetActiveView());
}

std::int64_t TopSampleOf(const CTesselDoc& document, const QMdiArea& area) {
    const CTraceView* const active = ViewOf(dynamic_cast<CMDIChildWnd*>(area.activeSubWindow()));
    if (active != nullptr && !active->IsZoom() && &active->Trace() == &document) {
        return active->TopSample();
    }
    for (const DocumentView* each : document.Views()) {
        const auto* const view = dynamic_cast<const CTraceView*>(each);
        if (view != nullptr && !view->IsZoom()) {
            return view->TopSample();
        }
    }
    return 0;
}

QString Grouped(std::uint64_t count) {
    return QLocale(QLocale::English).toString(static_cast<qulonglong>(count));
}

std::vector<std::uint32_t> AbsentSamples(const CTesselDoc& document) {
    if (!document.IsRealTime()) {
        return document.excludedBits;
    }
    static_assert(blockSamples == 32);
    const auto count = static_cast<std::size_t>(document.SampleCount(false));
    std::vector<std::uint32_t> absent((count + blockSamples - 1) / blockSamples);
    for (std::size_t block = 0; block < absent.size(); ++block) {
        const auto first = static_cast<std::int64_t>(block * blockSamples);
        absent[block] = document.IsValidSample(first, false) ? 0 : ~std::uint32_t{0};
    }
    return absent;
}

CapturedSamples SamplesOf(const CTesselDoc& document, const std::vector<std::uint32_t>& absent) {
    // After a run that ended without samples the store may still hold those of the run before.
    const auto records = document.GetStore().GetData(false);
    const auto count = static_cast<std::size_t>(document.SampleCount(false));
    return {records.first(std::min(records.size(), count)), document.FirstSampleNumber(false),
            absent};
}

} // namespace busquill
