#include "ui/display/trace_display.h"

#include "capture/trace_document.h"
#include "ui/framework/painting.h"

#include <QPainter>

#include <algorithm>

namespace busquill {

TraceDisplay::TraceDisplay(QWidget* parent, const Settings& settings, const DisplaySettings& colors,
                           Prompts* prompts, const HeaderControl::Layout& layout)
    : TableWindow(parent, prompts, layout), settings_(settings), colorSettings_(colors),
      colors_(LoadDisplayColors(settings, colors)) {}

void TraceDisplay::Attach(CTesselDoc& document, CSignalList& list, bool zoom) {
    document_ = &document;
    isZoom_ = zoom;
    AttachList(list);
}

void TraceDisplay::Draw(QPainter& painter) {
    colors_ = LoadDisplayColors(settings_, colorSettings_);
    if (document_ == nullptr) {
        painter.fillRect(rect(), ColorOf(colors_.background));
    } else {
        DrawFrame(painter);
    }
}

PlaceTip TraceDisplay::TipAt(const QPoint& place) {
    if (RowCount() == 0 || AimAtNames(place)) {
        return TableWindow::TipAt(place);
    }
    return CellTip(place);
}

bool TraceDisplay::IsOutdated() const {
    return LoadDisplayColors(settings_, colorSettings_) != colors_;
}

void TraceDisplay::ReportMissing(std::optional<std::int64_t> missing) {
    if (missing) {
        emit SampleMissing(*missing);
    }
}

std::int64_t TraceDisplay::RowCount() const {
    return document_ == nullptr ? 0 : document_->RowCount(isZoom_);
}

std::int64_t TraceDisplay::SampleOfRow(std::int64_t row) const {
    return document_ == nullptr ? 0
                                : document_->RowToSample(std::min(row, RowCount() - 1), isZoom_);
}

std::uint32_t TraceDisplay::SampleCapacity() const {
    return static_cast<std::uint32_t>(document_->SampleCount(isZoom_));
}

void TraceDisplay::SignalAdded(CSignal& signal) {
    document_->LoadSignal(*list_, signal, isZoom_);
    SignalReshaped(signal);
}

void TraceDisplay::SignalsChanged() {
    KeepOffset();
    document_->UpdateAllViews(nullptr, HintRedraw); // other windows may show the same list
    emit LayoutChanged();
}

} // namespace busquill
