#include "ui/display/wave_window.h"

#include "capture/trace_document.h"
#include "ui/display/band_values.h"
#include "ui/display/marker_glyphs.h"
#include "ui/display/print_painter.h"
#include "ui/display/sample_tip.h"
#include "ui/display/state_geometry.h"
#include "ui/framework/painting.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMouseEvent>

#include <algorithm>
#include <cstdlib>

namespace busquill {

namespace {

constexpr int smallestBand = 20;
constexpr int smallestColumnDigits = 3;
constexpr int edgeReach = 2;      // pixels on both sides of the name column's edge
constexpr int valueEdgeReach = 4; // pixels left of the value column's edge; right are the waves
constexpr int stepsOfALine = 4;

} // namespace

CWaveformWnd::CWaveformWnd(QWidget* parent, const Settings& settings, Prompts* prompts)
    : TraceDisplay(parent, settings, waveformDisplay, prompts,
                   {.extent = &CSignal::height,
                    .visible = &CSignal::VisibleHeight,
                    .smallest = smallestBand,
                    .gap = 1,
                    .fixedResizes = false,
                    .anyClickDrags = false,
                    .axis = Qt::Vertical}),
      titleFont_(FontOfCellHeight(16, QFont::Bold, FontFace::Proportional)),
      smallestColumn_(smallestColumnDigits * fonts_.DigitWidth()) {
    header_.fixedEnd = waveFirstBand - 1;
}

void CWaveformWnd::Attach(CTesselDoc& document, CSignalList& list, bool zoom) {
    TraceDisplay::Attach(document, list, zoom);
    Render();
}

// Along the samples.

std::int64_t CWaveformWnd::VisibleSampleCount() const {
    return VisibleSamples(width() - nameWidth_ - valueWidth_, zoom_);
}

std::int64_t CWaveformWnd::LastSample() const {
    return SampleOfRow(place_.row + VisibleSampleCount() - 1);
}

WaveScale CWaveformWnd::Scale() const {
    return {zoom_, place_.subPixel, nameWidth_ + valueWidth_ + 1, width()};
}

std::int64_t CWaveformWnd::RowAt(int x) const {
    return place_.row + Scale().RowAt(x - nameWidth_ - valueWidth_);
}

std::int64_t CWaveformWnd::LastClickableSample() const {
    return SampleOfRow(RowAt(width() - 1));
}

std::int64_t CWaveformWnd::LastDrawnSample() const {
    return SampleOfRow(place_.row + Scale().Count() - 1);
}

std::int64_t CWaveformWnd::CenterSample() const {
    return std::max<std::int64_t>(SampleOfRow(place_.row + VisibleSampleCount() / 2), 0);
}

void CWaveformWnd::SetPlace(const WavePlace& place) {
    if (place == place_) {
        return;
    }
    place_ = place;
    RenderWaves();
}

void CWaveformWnd::ScrollToSample(std::int64_t sample) {
    const std::int64_t row = TopRowFor(document_->SampleToRow(sample, isZoom_),
                                       static_cast<int>(VisibleSampleCount()), RowCount());
    const std::int64_t first = std::max<std::int64_t>(document_->RowToSample(row, isZoom_), 0);
    const bool moves = first != firstSample_;
    place_ = {row, moves ? 0 : place_.subPixel};
    if (moves) {
        RenderMarkers(); // a marker outside the window may be the reason
    }
}

BarState CWaveformWnd::SampleBar() const {
    const std::int64_t visible = VisibleSampleCount();
    const int page = WavePage(visible, RowCount());
    const int share = RowCount() == 0 ? 0 : VerticalPage(static_cast<int>(visible), RowCount());
    return {VerticalMaximum(std::min<int>(share, scrollRange)), page,
            WavePosition(place_.row, RowCount()), RowCount() > visible};
}

void CWaveformWnd::StepSamples(bool forward) {
    const bool drawsNothing = !forward && zoom_ < 0; // the step shows with the next redraw
    WavePlace place = place_;
    for (int i = 0; i < stepsOfALine; ++i) {
        place = forward ? StepForward(place, zoom_, VisibleSampleCount(), RowCount())
                        : StepBackward(place, zoom_);
    }
    if (!drawsNothing) {
        SetPlace(place);
        return;
    }
    place_ = place;
    if (isZoom_) {
        firstSample_ = place.row;
    }
}

void CWaveformWnd::PageSamples(bool forward) {
    SetPlace(Page(place_, forward, VisibleSampleCount(), RowCount()));
}

void CWaveformWnd::MoveSamplesTo(int position) {
    const auto row =
        static_cast<std::int64_t>(static_cast<double>(RowCount()) * position / scrollRange);
    ScrollToSample(document_->RowToSample(row, isZoom_));
}

void CWaveformWnd::SetZoom(int zoom) {
    zoom_ = zoom;
    RenderWaves();
}

void CWaveformWnd::SetZoomAt(int zoom, int x) {
    const WaveScale scale = Scale();
    if (x >= scale.left && place_.row + scale.SpanAt(x).first < RowCount()) {
        place_ = scale.PlaceAfterZoom(place_.row, x, zoom);
    }
    SetZoom(zoom);
}

// Along the signals.

int CWaveformWnd::BandsRoom() const {
    return std::max(height() - waveFirstBand, 0);
}

BarState CWaveformWnd::SignalBar() const {
    if (list_ == nullptr) {
        return {};
    }
    const std::vector<int> heights = BandHeights(*list_);
    const int limit = std::max(BandsHeight(heights) - BandsRoom(), 0);
    return {limit, BandsRoom(), PositionOf(heights, top_), limit > 0};
}

void CWaveformWnd::SetTop(const BandPlace& top) {
    if (top != top_) {
        top_ = top;
        Render();
    }
}

void CWaveformWnd::StepSignals(bool forward) {
    SetTop(StepBands(BandHeights(*list_), top_, forward, BandsRoom()));
}

void CWaveformWnd::PageSignals(bool forward) {
    SetTop(PageBands(BandHeights(*list_), top_, forward, BandsRoom()));
}

void CWaveformWnd::MoveSignalsTo(int position) {
    SetTop(PlaceOf(BandHeights(*list_), position, BandsRoom()));
}

// Drawing.

WaveFrame CWaveformWnd::Frame() {
    return {*document_, *list_, isZoom_,    list_->Tables().Board(),
            Colors(),   size(), nameWidth_, valueWidth_,
            zoom_,      place_, top_,       {fonts_.body, titleFont_, fonts_.header, {}}};
}

/// Remembers the first sample shown, so that a change of the rows can return to it.
void CWaveformWnd::NoteFirstSample() {
    firstSample_ = std::max<std::int64_t>(document_->RowToSample(place_.row, isZoom_), 0);
}

void CWaveformWnd::DrawFrame(QPainter& painter) {
    NoteFirstSample();
    ReportMissing(DrawWaveFrame(painter, Frame()));
}

void CWaveformWnd::RenderWaves() {
    if (document_ == nullptr) {
        return;
    }
    const int left = nameWidth_ + valueWidth_ + 1;
    RenderPart({left, 0, width() - left, height()}, [&](QPainter& painter) {
        NoteFirstSample();
        ReportMissing(DrawWaves(painter, Frame()));
    });
}

PrintFailure CWaveformWnd::Print(QPrinter& printer, const PrintJob& job) {
    return PrintWaves(printer, Frame(), job);
}

std::string CWaveformWnd::Copy() {
    QGuiApplication::clipboard()->setImage(grab().toImage());
    return {};
}

void CWaveformWnd::RenderNames() {
    RenderPart({0, 0, nameWidth_, height()},
               [&](QPainter& painter) { DrawWaveNames(painter, Frame()); });
}

void CWaveformWnd::RenderMarkers() {
    RenderWaves();
    RenderValues();
}

void CWaveformWnd::RenderValues() {
    if (document_ != nullptr) {
        RenderPart({nameWidth_, 0, valueWidth_, height()},
                   [&](QPainter& painter) { DrawWaveValues(painter, Frame()); });
    }
}

/// The sample of marker 1 may have arrived although none in the window has.
void CWaveformWnd::SamplesChanged() {
    if (document_ != nullptr && document_->Marker(1, isZoom_) != -1) {
        RenderValues();
    }
}

// The mouse.

CWaveformWnd::Resizing CWaveformWnd::EdgeAt(int x) const {
    if (std::abs(x - nameWidth_) <= edgeReach) {
        return Resizing::Name;
    }
    const int edge = nameWidth_ + valueWidth_;
    return x >= edge - valueEdgeReach && x <= edge ? Resizing::Value : Resizing::Nothing;
}

/// Ignores a change that would leave no room for the waves.
void CWaveformWnd::ResizeColumn(int x) {
    const bool isName = resizing_ == Resizing::Name;
    int& column = isName ? nameWidth_ : valueWidth_;
    const int wanted = std::max(x - (isName ? 0 : nameWidth_), smallestColumn_);
    const int others = isName ? valueWidth_ : nameWidth_;
    if (wanted != column && width() - others - wanted > smallestColumn_) {
        column = wanted;
        Render();
        emit LayoutChanged();
    }
}

bool CWaveformWnd::AimAtNames(const QPoint& place) {
    if (place.x() >= nameWidth_ || place.y() < waveFirstBand || top_.signal < 0) {
        return false;
    }
    header_.offset = NamesOffset();
    return true;
}

int CWaveformWnd::NamesOffset() const {
    const std::vector<int> heights = BandHeights(*list_);
    const auto above =
        std::min(static_cast<std::size_t>(std::max<std::int64_t>(top_.signal, 0)), heights.size());
    return BandsHeight(std::span(heights).first(above)) + top_.offset;
}

PlaceTip CWaveformWnd::NameTip(const CSignal& signal, int start) const {
    const QString name = QString::fromStdString(signal.RowName());
    const bool isCut = QFontMetrics(fonts_.header).horizontalAdvance(name) > nameWidth_ - 2;
    return isCut ? PlaceTip{name, {0, start, nameWidth_, signal.VisibleHeight()}} : PlaceTip{};
}

std::optional<WaveBand> CWaveformWnd::BandAt(int y) const {
    for (const WaveBand& band : VisibleBands(BandHeights(*list_), top_, height())) {
        if (y >= std::max(band.top, waveFirstBand) && y < band.top + band.height) {
            return band;
        }
    }
    return std::nullopt;
}

/// In the waves about the samples that the pixel shows, in the value column about marker 1. In the
/// header and below the bands there is no signal to tell the value of.
PlaceTip CWaveformWnd::CellTip(const QPoint& place) {
    const WaveScale scale = Scale();
    const auto band = BandAt(place.y());
    const CSignal* signal = band ? &(*list_)[band->signal] : nullptr;
    const int top = band ? band->top : place.y();
    const int height = band ? band->height : 1;
    const auto tip = [&](std::int64_t first, std::int64_t last, const QRect& area,
                         const std::optional<SampleSpan>& noted = {}) {
        const BandSamples samples(*document_, isZoom_, first, last - first + 1);
        return PlaceTip{SampleTip({*document_, *list_, isZoom_, first, last, noted}, signal,
                                  [&](std::int64_t sample) {
                                      return BandText(samples, list_->Tables().Board(), *signal,
                                                      sample);
                                  }),
                        area};
    };
    if (place.x() < scale.left) {
        const std::int64_t marker = document_->Marker(1, isZoom_);
        const bool isOnValue = place.x() > nameWidth_ && band && marker != -1;
        const std::int64_t row = isOnValue ? document_->SampleToRow(marker, isZoom_) : 0;
        return !isOnValue || SampleOfRow(row) != marker
                   ? PlaceTip{}
                   : tip(row, row, {nameWidth_ + 1, top, valueWidth_, height});
    }
    const DrawnSpan span = scale.SpanAt(place.x());
    const std::int64_t first = place_.row + span.first;
    if (first >= RowCount()) {
        return {};
    }
    const std::int64_t last = std::min(place_.row + span.last, RowCount() - 1);
    const bool isHeader = place.y() < waveFirstBand;
    if (isHeader || zoom_ < 0) {
        constexpr int reach = 3; // the line is thin
        return tip(
            first, last, {place.x(), top, 1, height},
            BookmarksAt(place.x() + (isHeader ? 0 : 1), isHeader ? bookmarkFlagWidth : reach));
    }
    const int left = scale.XOf(span.first);
    return tip(first, last, {left, top, std::max(scale.XOf(span.last + 1) - left, 1), height});
}

SampleSpan CWaveformWnd::BookmarksAt(int x, int pixels) const {
    SampleSpan found{0, -1};
    const std::int64_t number = document_->FirstSampleNumber(false);
    const Bookmarks& all = document_->GetBookmarks();
    for (auto each = all.lower_bound(number + firstSample_); each != all.end(); ++each) {
        const std::int64_t sample = each->first - number;
        const std::int64_t at = Scale().MarkOf(document_->SampleToRow(sample, false) - place_.row);
        if (at > x) {
            break;
        }
        if (at > x - pixels) {
            found = {found.last < found.first ? sample : found.first, sample};
        }
    }
    return found;
}

void CWaveformWnd::PressCell(const QPoint& place, Qt::MouseButton button) {
    if (place.x() <= nameWidth_ + valueWidth_) {
        return;
    }
    const std::int64_t row = RowAt(place.x());
    std::int64_t sample = document_->RowToSample(row, isZoom_);
    if (Scale().Skipped() > 0 && sample == firstSample_) {
        sample = document_->RowToSample(row + 1, isZoom_); // the first begins left of the edge
    }
    document_->ToggleMarker(button == Qt::LeftButton ? 1 : 2, sample, isZoom_);
}

void CWaveformWnd::ShowCursor(const QPoint& place) {
    const bool onEdge = !header_.IsActive() && EdgeAt(place.x()) != Resizing::Nothing;
    if (resizing_ != Resizing::Nothing || onEdge) {
        setCursor(Qt::SizeHorCursor);
    } else {
        TraceDisplay::ShowCursor(place);
    }
}

void CWaveformWnd::mousePressEvent(QMouseEvent* event) {
    const bool left = event->button() == Qt::LeftButton;
    const Resizing edge = left ? EdgeAt(event->pos().x()) : Resizing::Nothing;
    if (list_ == nullptr || edge == Resizing::Nothing) {
        TraceDisplay::mousePressEvent(event);
    } else {
        resizing_ = edge;
        ShowCursor(event->pos());
    }
}

void CWaveformWnd::mouseMoveEvent(QMouseEvent* event) {
    if (resizing_ == Resizing::Nothing) {
        TraceDisplay::mouseMoveEvent(event);
    } else {
        ResizeColumn(event->pos().x());
        ShowCursor(event->pos());
    }
}

void CWaveformWnd::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        resizing_ = Resizing::Nothing;
    }
    TraceDisplay::mouseReleaseEvent(event);
}

std::uint32_t CWaveformWnd::OfferMode() const {
    return ModeState;
}

} // namespace busquill
