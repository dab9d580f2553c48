#include "ui/display/state_window.h"

#include "capture/trace_document.h"
#include "ui/display/state_geometry.h"
#include "ui/framework/painting.h"
#include "ui/patterns/columns.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace busquill {

namespace {

constexpr int sampleColumnDigits = 8;
constexpr int smallestColumnDigits = 3;

} // namespace

CStateWnd::CStateWnd(QWidget* parent, const Settings& settings, Prompts* prompts)
    : TraceDisplay(parent, settings, stateDisplay), prompts_(prompts),
      bodyFont_(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed)),
      headerFont_(FontOfCellHeight(15, QFont::Bold, FontFace::Proportional)),
      digitWidth_(QFontMetrics(bodyFont_).horizontalAdvance('0')),
      header_({.extent = &CSignal::width,
               .visible = &CSignal::VisibleWidth,
               .smallest = smallestColumnDigits * digitWidth_}) {
    header_.fixedEnd = sampleColumnDigits * digitWidth_;
}

void CStateWnd::Attach(CTesselDoc& document, CSignalList& list, bool zoom) {
    document_ = &document;
    list_ = &list;
    zoom_ = zoom;
    header_.Attach(list);
    for (const auto& signal : list.All()) {
        if (signal->VisibleWidth() > 0) {
            signal->width = MeasureColumn(*signal);
        }
    }
    SetTopRow(0);
}

int CStateWnd::MeasureColumn(const CSignal& signal) const {
    return NeededWidth(signal, bodyFont_);
}

int CStateWnd::VisibleRowCount() const {
    return VisibleRows(height());
}

int CStateWnd::ColumnsWidth() const {
    return list_ == nullptr ? 0 : TotalWidth(ColumnWidths(*list_));
}

std::int64_t CStateWnd::RowCount() const {
    return document_ == nullptr ? 0 : document_->RowCount(zoom_);
}

std::int64_t CStateWnd::SampleOfRow(std::int64_t row) const {
    return document_ == nullptr ? 0 : document_->RowToSample(std::min(row, RowCount() - 1), zoom_);
}

std::int64_t CStateWnd::LastSample() const {
    return SampleOfRow(topRow_ + VisibleRowCount() - 1);
}

std::int64_t CStateWnd::RowAt(int y) const {
    return topRow_ + (y - stateFirstRow) / stateRowPitch;
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
    topSample_ = document_ == nullptr ? 0 : document_->RowToSample(row, zoom_);
    Render(true);
}

void CStateWnd::ScrollToSample(std::int64_t sample) {
    SetTopRow(TopRowFor(document_->SampleToRow(sample, zoom_), VisibleRowCount(), RowCount()));
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
    const std::int64_t sample = document_->RowToSample(RowOfPosition(position, RowCount()), zoom_);
    if (sample >= 0) {
        ScrollToSample(sample);
    }
}

int CStateWnd::ColumnsRoom() const {
    return width() - header_.fixedEnd - 1;
}

int CStateWnd::OffsetLimit() const {
    return HorizontalLimit(ColumnsWidth(), width(), header_.fixedEnd);
}

BarState CStateWnd::SignalBar() const {
    const int limit = OffsetLimit();
    return {limit, HorizontalPage(width(), header_.fixedEnd), std::min(header_.offset, limit),
            limit > 0};
}

void CStateWnd::SetOffset(int offset) {
    header_.offset = offset;
    Render(true);
}

/// Columns that have become fewer or a window that has become wider leave no room behind them.
void CStateWnd::KeepOffset() {
    header_.offset = std::min(header_.offset, OffsetLimit());
}

void CStateWnd::StepColumns(int pixels) {
    SetOffset(StepOffset(header_.offset, pixels, OffsetLimit()));
}

void CStateWnd::PageSignals(bool forward) {
    const int page = std::max(ColumnsRoom(), 1);
    StepColumns(forward ? page : -page);
}

void CStateWnd::MoveSignalsTo(int position) {
    SetOffset(std::min(position, OffsetLimit()));
}

void CStateWnd::Render(bool blit) {
    if (document_ == nullptr || Bitmap().isNull()) {
        return;
    }
    LoadColors();
    QPainter painter(&Bitmap());
    const auto missing = DrawState(painter, Frame());
    if (missing && !zoom_ && document_->GetStore().IsUploading()) {
        document_->GetStore().SetPriorityIndex(static_cast<std::uint32_t>(*missing));
    }
    if (blit) {
        update();
    }
}

StateFrame CStateWnd::Frame() {
    return {*document_, *list_,           zoom_,   list_->Tables().Board(), Colors(),
            size(),     header_.fixedEnd, topRow_, header_.offset,          bodyFont_,
            headerFont_};
}

void CStateWnd::Show(HeaderControl::Redraw redraw) {
    if (redraw == HeaderControl::Redraw::All) {
        KeepOffset();
        Render(true);
        emit LayoutChanged();
    } else if (redraw == HeaderControl::Redraw::Header) {
        QPainter painter(&Bitmap());
        DrawStateHeader(painter, Frame());
        update(0, 0, width(), stateHeaderLine);
    }
}

void CStateWnd::mousePressEvent(QMouseEvent* event) {
    if (document_ == nullptr) {
        return;
    }
    const QPoint place = event->pos();
    const bool left = event->button() == Qt::LeftButton;
    if (!left && event->button() != Qt::RightButton) {
        return;
    }
    if (place.y() >= stateHeaderLine) {
        SetMarkerAt(place.y(), left ? 1 : 2);
    } else {
        Show(left ? header_.Press(place.x(), event->modifiers())
                  : header_.SelectForMenu(place.x()));
        setCursor(header_.CursorAt(place.x()));
    }
}

/// Sets a marker on the row at a place, or clears it where it stands already.
void CStateWnd::SetMarkerAt(int y, int which) {
    if (y < stateFirstRow) {
        return;
    }
    document_->ToggleMarker(which, document_->RowToSample(RowAt(y), zoom_), zoom_);
}

void CStateWnd::mouseMoveEvent(QMouseEvent* event) {
    Show(header_.Move(event->pos().x()));
    const bool inHeader = event->pos().y() < stateHeaderLine;
    setCursor(inHeader || header_.IsActive() ? header_.CursorAt(event->pos().x())
                                             : Qt::ArrowCursor);
}

void CStateWnd::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        Show(header_.Release(event->pos().x()));
        setCursor(Qt::ArrowCursor);
    } else if (event->button() == Qt::RightButton && event->pos().y() < stateHeaderLine) {
        const HeaderControl::Hit hit = header_.HitColumn(event->pos().x());
        if (hit.signal != nullptr && prompts_ != nullptr) {
            ShowSignalMenu(*this, event->globalPosition().toPoint(), *hit.signal, *this, *prompts_);
        }
    }
}

// What the listing is offered stands under the waveform's flags: only there are the columns that
// are computed for a listing free to choose.
std::uint32_t CStateWnd::OfferMode() const {
    return ModeWaveform;
}

std::uint32_t CStateWnd::SampleRoom() const {
    return static_cast<std::uint32_t>(document_->SampleCount(zoom_));
}

void CStateWnd::SignalAdded(CSignal& signal) {
    document_->LoadSignal(*list_, signal, zoom_);
    SignalReshaped(signal);
}

void CStateWnd::SignalReshaped(CSignal& signal) {
    signal.width = MeasureColumn(signal);
}

void CStateWnd::SignalsChanged() {
    KeepOffset();
    document_->UpdateAllViews(nullptr, HintRedraw); // another window may show the same list
    emit LayoutChanged();
}

void CStateWnd::resizeEvent(QResizeEvent* event) {
    KeepOffset();
    TraceDisplay::resizeEvent(event);
}

} // namespace busquill
