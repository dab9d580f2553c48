#include "ui/display/trace_view.h"

#include "capture/trace_document.h"
#include "platform/working_directory.h"
#include "ui/display/state_geometry.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_frame.h"
#include "ui/framework/painting.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace busquill {

namespace {

constexpr std::uint32_t viewBackground = 0xA0A0A0;
constexpr int verticalBarTop = 17;
constexpr int wheelNotch = 120;

} // namespace

CTraceView::CTraceView(QWidget* parent, bool isState, bool isZoom, const Settings& settings)
    : CView(parent), isState_(isState), isZoom_(isZoom),
      vScroll_(new QScrollBar(Qt::Vertical, this)), hScroll_(new QScrollBar(Qt::Horizontal, this)),
      state_(new CStateWnd(this, settings)) {
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(true);
    QPalette colors = palette();
    colors.setColor(QPalette::Window, ColorOf(viewBackground));
    setPalette(colors);
    for (QScrollBar* bar : {vScroll_, hScroll_}) {
        bar->setEnabled(false);
        bar->setFocusPolicy(Qt::NoFocus);
        bar->installEventFilter(this);
    }
    connect(vScroll_, &QScrollBar::actionTriggered, this, &CTraceView::OnVerticalAction);
    connect(hScroll_, &QScrollBar::actionTriggered, this, &CTraceView::OnHorizontalAction);
    connect(vScroll_, &QScrollBar::sliderReleased, this, &CTraceView::SetVerticalPosition);
}

CTesselDoc& CTraceView::Trace() const {
    return static_cast<CTesselDoc&>(*GetDocument());
}

// A view of the waveform kind lists the waveform's signals until there are waveforms to draw.
CSignalList& CTraceView::ListOf(CTesselDoc& document) const {
    return isZoom_ ? document.zoomList : isState_ ? document.stateList : document.waveformList;
}

std::int64_t CTraceView::RowCount() const {
    return Trace().RowCount(isZoom_);
}

std::int64_t CTraceView::TopSample() const {
    return state_->TopSample();
}

std::int64_t CTraceView::CenterSample() const {
    const std::int64_t row =
        std::min(state_->TopRow() + state_->VisibleRowCount() / 2, RowCount() - 1);
    return Trace().RowToSample(std::max<std::int64_t>(row, 0), isZoom_);
}

void CTraceView::ShowSample(std::int64_t sample) {
    ScrollToSample(FirstToCenter(sample, state_->VisibleRowCount()));
}

void CTraceView::ScrollToSample(std::int64_t sample) {
    const std::int64_t row = Trace().SampleToRow(sample, isZoom_);
    state_->SetTopRow(TopRowFor(row, state_->VisibleRowCount(), RowCount()));
    SetVerticalPosition();
}

bool CTraceView::CanGoTo(GoToTarget target) const {
    switch (target) {
    case GoToTarget::Trigger:
        return Trace().Marker(0, isZoom_) != -1;
    case GoToTarget::Marker1:
        return Trace().Marker(1, isZoom_) != -1;
    case GoToTarget::Marker2:
        return Trace().Marker(2, isZoom_) != -1;
    default:
        return Trace().SampleCount(isZoom_) != 0;
    }
}

void CTraceView::GoTo(GoToTarget target) {
    if (!CanGoTo(target)) {
        return;
    }
    GoToSampleHint hint;
    hint.zoom = isZoom_;
    switch (target) {
    case GoToTarget::Start:
        hint.sample = 0;
        break;
    case GoToTarget::End:
        hint.sample = Trace().SampleCount(isZoom_) - 1;
        break;
    default:
        hint.sample = Trace().Marker(static_cast<int>(target), isZoom_);
    }
    Trace().UpdateAllViews(nullptr, HintGoToSample, &hint);
}

void CTraceView::OnInitialUpdate() {
    RefreshFrameName();
    LayOut(); // no size event comes before the view is shown
    state_->Attach(Trace(), ListOf(Trace()), isZoom_);
    SetScrollBars();
    for (DocumentView* other : Trace().Views()) {
        const auto* partner = dynamic_cast<CTraceView*>(other);
        if (partner != nullptr && partner != this && partner->isZoom_ == isZoom_) {
            ScrollToSample(partner->TopSample());
            return;
        }
    }
    if (const std::int64_t trigger = Trace().Marker(0, isZoom_); trigger != -1) {
        ShowSample(trigger);
    }
}

void CTraceView::OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* object) {
    switch (hint) {
    case HintMarker1:
    case HintMarker2:
        if (!isZoom_) {
            MarkerChanged(hint == HintMarker1 ? 1 : 2);
        }
        break;
    case HintZoomMarker1:
    case HintZoomMarker2:
        if (isZoom_) {
            MarkerChanged(hint == HintZoomMarker1 ? 1 : 2);
        }
        break;
    case HintCaptureStopped:
    case HintDataComplete:
        SetScrollBars();
        ShowSample(Trace().Marker(0, isZoom_));
        break;
    case HintBlockArrived:
        BlockArrived(object);
        break;
    case HintGoToSample:
        if (const auto* target = dynamic_cast<const GoToSampleHint*>(object);
            target != nullptr && target->zoom == isZoom_) {
            ShowSample(target->sample);
        }
        break;
    case HintNameChanged:
    case HintSetupNameChanged:
        RefreshFrameName();
        break;
    case HintFilterChanged:
        ScrollToSample(TopSample()); // its row is another one now
        SetScrollBars();
        break;
    default:
        state_->Render(true);
    }
}

void CTraceView::MarkerChanged(int which) {
    const std::int64_t marker = Trace().Marker(which, isZoom_);
    const std::int64_t lastRow =
        std::min(state_->TopRow() + state_->VisibleRowCount(), RowCount()) - 1;
    const bool shown = marker >= TopSample() && marker <= Trace().RowToSample(lastRow, isZoom_);
    if (marker == -1 || shown) {
        state_->Render(true);
    } else {
        ShowSample(marker);
    }
}

void CTraceView::BlockArrived(const HintObject* object) {
    const auto* block = dynamic_cast<const CBlockUpdate*>(object);
    if (block == nullptr || block->zoom != isZoom_) {
        return;
    }
    const std::int64_t last = Trace().RowToSample(
        std::min(state_->TopRow() + state_->VisibleRowCount(), RowCount() - 1), isZoom_);
    if (block->first <= last && std::int64_t{block->first} + block->count > TopSample()) {
        state_->Render(true);
    }
}

void CTraceView::RefreshFrameName() {
    if (frame_ != nullptr) {
        frame_->SetComment(Trace().comment);
        frame_->SetTitleName(Trace().IsRealTime() ? "New" : Trace().fileName);
    }
}

void CTraceView::SetScrollBars() {
    if (GetDocument() == nullptr) {
        return;
    }
    const int rows = state_->VisibleRowCount();
    const int page = VerticalPage(rows, RowCount());
    vScroll_->setRange(0, VerticalMaximum(page));
    vScroll_->setPageStep(page);
    SetVerticalPosition();

    const int limit =
        HorizontalLimit(state_->ColumnsWidth(), state_->width(), state_->SampleColumnWidth());
    hScroll_->setRange(0, limit);
    hScroll_->setPageStep(HorizontalPage(state_->width(), state_->SampleColumnWidth()));
    if (state_->Offset() > limit) {
        state_->SetOffset(limit);
    }
    hScroll_->setValue(state_->Offset());
    // Once enabled, a bar stays so.
    vScroll_->setEnabled(vScroll_->isEnabled() || RowCount() > rows);
    hScroll_->setEnabled(hScroll_->isEnabled() || limit > 0);
}

void CTraceView::SetVerticalPosition() {
    vScroll_->setValue(VerticalPosition(state_->TopRow(), RowCount()));
}

void CTraceView::StepRows(std::int64_t rows) {
    state_->SetTopRow(StepTopRow(state_->TopRow(), rows, state_->VisibleRowCount(), RowCount()));
    SetVerticalPosition();
    Synchronise();
}

void CTraceView::OnVerticalAction(int action) {
    switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
        StepRows(1);
        break;
    case QAbstractSlider::SliderSingleStepSub:
        StepRows(-1);
        break;
    case QAbstractSlider::SliderPageStepAdd:
        StepRows(state_->VisibleRowCount());
        break;
    case QAbstractSlider::SliderPageStepSub:
        StepRows(-state_->VisibleRowCount());
        break;
    default: {
        const std::int64_t sample =
            Trace().RowToSample(RowOfPosition(vScroll_->sliderPosition(), RowCount()), isZoom_);
        if (sample >= 0) {
            const std::int64_t row = Trace().SampleToRow(sample, isZoom_);
            state_->SetTopRow(TopRowFor(row, state_->VisibleRowCount(), RowCount()));
            Synchronise();
        }
        return; // the thumb stays under the pointer
    }
    }
    // The bar's own idea of a step is another one.
    vScroll_->setSliderPosition(VerticalPosition(state_->TopRow(), RowCount()));
}

void CTraceView::OnHorizontalAction(int action) {
    const int limit = hScroll_->maximum();
    const int page = state_->width() - state_->SampleColumnWidth() - 1;
    int offset = state_->Offset();
    switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
        offset = StepOffset(offset, 1, limit);
        break;
    case QAbstractSlider::SliderSingleStepSub:
        offset = StepOffset(offset, -1, limit);
        break;
    case QAbstractSlider::SliderPageStepAdd:
        offset = StepOffset(offset, page, limit);
        break;
    case QAbstractSlider::SliderPageStepSub:
        offset = StepOffset(offset, -page, limit);
        break;
    default:
        offset = std::min(hScroll_->sliderPosition(), limit);
    }
    state_->SetOffset(offset);
    hScroll_->setSliderPosition(offset);
}

void CTraceView::Synchronise() {
    for (DocumentView* other : std::vector(Trace().Views())) {
        auto* view = dynamic_cast<CTraceView*>(other);
        if (view != nullptr && view != this && view->isZoom_ == isZoom_) {
            view->ScrollToSample(TopSample());
        }
    }
}

void CTraceView::resizeEvent(QResizeEvent* /*event*/) {
    LayOut();
    SetScrollBars();
}

void CTraceView::LayOut() {
    const int barWidth = vScroll_->sizeHint().width();
    const int barHeight = hScroll_->sizeHint().height();
    const int right = width() - barWidth;
    const int bottom = height() - barHeight;
    vScroll_->setGeometry(right, verticalBarTop, barWidth, bottom - verticalBarTop);
    hScroll_->setGeometry(0, bottom, width(), barHeight);
    state_->setGeometry(0, 0, right, bottom);
}

void CTraceView::keyPressEvent(QKeyEvent* event) {
    if (GetDocument() == nullptr) {
        return;
    }
    switch (event->key()) {
    case Qt::Key_PageUp:
        StepRows(-state_->VisibleRowCount());
        break;
    case Qt::Key_PageDown:
        StepRows(state_->VisibleRowCount());
        break;
    case Qt::Key_Up:
        StepRows(-1);
        break;
    case Qt::Key_Down:
        StepRows(1);
        break;
    default:
        CView::keyPressEvent(event);
    }
}

void CTraceView::wheelEvent(QWheelEvent* event) {
    event->accept();
    const int delta = event->angleDelta().y();
    if (GetDocument() == nullptr || delta == 0) {
        return;
    }
    const bool turned = (delta > 0) != (wheelRest_ > 0);
    wheelRest_ = delta + (turned ? 0 : wheelRest_);
    for (; wheelRest_ >= wheelNotch; wheelRest_ -= wheelNotch) {
        StepRows(-1);
    }
    for (; wheelRest_ <= -wheelNotch; wheelRest_ += wheelNotch) {
        StepRows(1);
    }
}

bool CTraceView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        wheelEvent(static_cast<QWheelEvent*>(event)); // the same over a bar as over the listing
        return true;
    }
    return CView::eventFilter(watched, event);
}

} // namespace busquill
