#include "ui/analysis/capture_watch.h"

#include "capture/trace_document.h"
#include "ui/display/trace_view.h"

namespace busquill {

void CaptureWatch::Listen() {
    for (DocumentView* each : document_.Views()) {
        if (auto* const view = dynamic_cast<CTraceView*>(each)) {
            connect(view, &CTraceView::Updated, this, &CaptureWatch::Updated);
            connect(view, &QObject::destroyed, this, &CaptureWatch::Listen);
            return;
        }
    }
    emit Gone();
}

} // namespace busquill
