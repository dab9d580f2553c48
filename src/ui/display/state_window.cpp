#include "ui/display/state_window.h"

#include "capture/trace_document.h"
#include "ui/display/print_painter.h"
#include "ui/display/sample_tip.h"
#include "ui/display/state_geometry.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr int sampleColumnDigits = 8;

} // namespace

CStateWnd::CStateWnd(QWidget* parent, const Settings& settings, Prompts* prompts)
    : TraceDisplay(parent, settings, stateDisplay, prompts, ColumnLayout()) {
    header_.fixedEnd = sampleColumnDigits * fonts_.DigitWidth();
}

void CStateWnd::Attach(CTesselDoc& document, CSignalList& list, bool zoom) {
    TraceDisplay::Attach(document, list, zoom);
    MeasureColumns();
    SetTopRow(0);
}

int CStateWnd::VisibleRowCount() const {
    return VisibleRows(height());
}

std::int64_t CStateWnd::LastSample() const {
    return SampleOfRow(topRow_ + VisibleRowCount() - 1);
}

std::int64_t CStateWnd::RowAt(int y) const {
    return topRow_ + (y - tableFirstRow) / stateRowPitch;
}

std::int64_t CStateWnd::LastClickableSample() const {
    return SampleOfRow(RowAt(height() - 1));
}

std::int64_t CStateWnd::LastDrawnSample() const {
    return SampleOfRow(topRow_ + VisibleRowCount());
}

std::int64_t CStateWnd::CenterSample() const {
    return std::max<std::int64_t>(SampleOfRow(topRow_ + VisibleRowCount() / 2), 0);
}

void CStateWnd::SetTopRow(std::int64_t row) {
    topRow_ = row;
    topSample_ = document_ == nullptr ? 0 : document_->RowToSample(row, isZoom_);
    Render();
}

void CStateWnd::ScrollToSample(std::int64_t sample) {
    SetTopRow(TopRowFor(document_->SampleToRow(sample, isZoom_), VisibleRowCount(), RowCount()));
}

void CStateWnd::StepRows(std::int64_t rows) {
    SetTopRow(StepTopRow(topRow_, rows, VisibleRowCount(), RowCount()));
}

BarState CStateWnd::SampleBar() const {
    const int page = VerticalPage(VisibleRowCount(), RowCount());
    return {VerticalMaximum(page), page, VerticalPosition(topRow_, RowCount()),
            RowCount() > VisibleRowCount()};
}

void CStateWnd::MoveSamplesTo(int position) {
    const std::int64_t sample =
        document_->RowToSample(RowOfPosition(position, RowCount()), isZoom_);
    if (sample >= 0) {
        ScrollToSample(sample);
    }
}

void CStateWnd::DrawFrame(QPainter& painter) {
    ReportMissing(DrawState(painter, Frame()));
}

PrintFailure CStateWnd::Print(QPrinter& printer, const PrintJob& job) {
    return PrintState(printer, Frame(), job);
}

void CStateWnd::RenderNames() {
    RenderPart({0, 0, width(), tableHeaderLine},
               [&](QPainter& painter) { DrawStateHeader(painter, Frame()); });
}

StateFrame CStateWnd::Frame() {
    return {*document_, *list_,           isZoom_, list_->Tables().Board(), Colors(),
            size(),     header_.fixedEnd, topRow_, header_.offset,          ScreenState(fonts_)};
}

PlaceTip CStateWnd::CellTip(const QPoint& place) {
    const std::int64_t row = RowAt(place.y());
    if (place.y() < tableFirstRow || row >= RowCount()) {
        return {};
    }
    const int top = place.y() - (place.y() - tableFirstRow) % stateRowPitch;
    QRect cell(0, top, header_.fixedEnd, stateRowPitch);
    const CSignal* signal = nullptr;
    for (const TableColumn& column : Columns().Visible()) {
        const QRect shown = column.Cell(top, stateRowPitch);
        if (place.x() > header_.fixedEnd && shown.contains(place)) {
            signal = &(*list_)[column.signal];
            cell = shown;
        }
    }
    if (signal == nullptr && place.x() > header_.fixedEnd) {
        return {}; // beside the columns
    }
    const StateFrame frame = Frame();
    const FrameTimes times(frame);
    const std::int64_t above = row > topRow_ ? SampleOfRow(row - 1) : 0;
    return {SampleTip({*document_, *list_, isZoom_, row, row}, signal,
                      [&](std::int64_t sample) {
                          return RowTexts(frame, times, sample, above).Of(*signal);
                      }),
            cell};
}

void CStateWnd::PressCell(const QPoint& place, Qt::MouseButton button) {
    if (place.y() >= tableFirstRow) {
        document_->ToggleMarker(button == Qt::LeftButton ? 1 : 2,
                                document_->RowToSample(RowAt(place.y()), isZoom_), isZoom_);
    }
}

// The listing uses the waveform's flags: only these offer the columns that are computed for a
// listing.
std::uint32_t CStateWnd::OfferMode() const {
    return ModeWaveform;
}

} // namespace busquill
