#include "ui/display/state_window.h"

#include "capture/trace_document.h"
#include "platform/text.h"
#include "ui/display/print_painter.h"
#include "ui/display/sample_tip.h"
#include "ui/display/state_geometry.h"
#include "ui/display/state_text.h"

#include <QClipboard>
#include <QGuiApplication>

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

std::optional<CStateWnd::RowSpan> CStateWnd::MarkedRows() const {
    if (RowCount() == 0) {
        return std::nullopt;
    }
    const std::int64_t marker1 = document_->Marker(1, isZoom_);
    const std::int64_t marker2 = document_->Marker(2, isZoom_);
    const auto [low, high] =
        std::minmax({marker1 == -1 ? marker2 : marker1, marker2 == -1 ? marker1 : marker2});
    if (high == -1) {
        return std::nullopt;
    }
    RowSpan rows{document_->SampleToRow(low, isZoom_), document_->SampleToRow(high, isZoom_)};
    if (SampleOfRow(rows.first) < low) {
        ++rows.first; // the filter hides the marked row
    }
    return rows.first <= rows.last && SampleOfRow(rows.last) >= low ? std::optional(rows)
                                                                    : std::nullopt;
}

bool CStateWnd::CanCopy() const {
    return MarkedRows().has_value();
}

std::string CStateWnd::Copy() {
    const auto rows = MarkedRows();
    if (!rows) {
        return {};
    }
    const std::int64_t count = rows->last - rows->first + 1;
    if (count > mostCopiedRows) {
        return Printf("There are %d rows between the markers; at most %d can be copied at once.",
                      static_cast<int>(count), static_cast<int>(mostCopiedRows));
    }
    for (std::int64_t row = rows->first; row <= rows->last; ++row) {
        const std::int64_t sample = SampleOfRow(row);
        if (!document_->IsValidSample(sample, isZoom_)) {
            document_->FetchNext(sample);
            return Printf(
                document_->IsUploading()
                    ? "Sample %d has not come from the analyzer yet."
                    : "Sample %d has not come from the analyzer, and the upload has ended.",
                static_cast<int>(document_->FirstSampleNumber(isZoom_) + sample));
        }
    }
    QGuiApplication::clipboard()->setText(RowsAsText(Frame(), rows->first, rows->last));
    return {};
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
