#include "ui/display/trace_view.h"

#include "capture/trace_document.h"
#include "capture/trace_run.h"
#include "link/analyzer_link.h"
#include "platform/settings.h"
#include "platform/working_directory.h"
#include "signals/value_text.h"
#include "ui/capture/position_gauge.h"
#include "ui/capture/trace_status_dialog.h"
#include "ui/display/state_geometry.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_frame.h"
#include "ui/framework/painting.h"
#include "ui/framework/window_timer.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace busquill {

namespace {

constexpr std::uint32_t viewBackground = 0xA0A0A0;
constexpr int verticalBarTop = 17;
constexpr int wheelNotch = 120;
constexpr int runPeriod = 200; // milliseconds

} // namespace

CTraceView::CTraceView(QWidget* parent, bool isState, bool isZoom, const TraceViewParts& parts)
    : CView(parent), parts_(parts), isState_(isState), isZoom_(isZoom),
      vScroll_(new QScrollBar(Qt::Vertical, this)), hScroll_(new QScrollBar(Qt::Horizontal, this)),
      state_(new CStateWnd(this, parts.settings, parts.prompts)) {
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
    connect(state_, &CStateWnd::ColumnsChanged, this, &CTraceView::SetScrollBars);
    connect(vScroll_, &QScrollBar::sliderReleased, this, &CTraceView::SetVerticalPosition);
}

CTraceView::~CTraceView() = default;

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
    const std::int64_t trigger = Trace().Marker(0, isZoom_);
    if (frame_ != nullptr) {
        const bool set = trigger != -1;
        frame_->SetCounters(set ? trigger : 0,
                            set ? Trace().SampleCount(isZoom_) - trigger - 1 : 0);
    }
    RefreshFrameName();
    LayOut(); // no size event comes before the view is shown
    if (Trace().IsRealTime() && parts_.link != nullptr) {
        showStatus_ = parts_.settings.GetProfileInt("Display", "ShowTraceStatus", 0) != 0;
        runTimer_ = new WindowTimer(this, *parts_.mainThread, [this] { Tick(); });
        runTimer_->start(runPeriod);
    }
    state_->Attach(Trace(), ListOf(Trace()), isZoom_);
    SetScrollBars();
    const auto& views = Trace().Views();
    const auto partner = std::find_if(views.begin(), views.end(), [this](DocumentView* other) {
        const auto* view = dynamic_cast<CTraceView*>(other);
        return view != nullptr && view != this && view->isZoom_ == isZoom_;
    });
    if (partner != views.end()) {
        ScrollToSample(dynamic_cast<CTraceView*>(*partner)->TopSample());
    } else if (trigger != -1) {
        ShowSample(trigger);
    }
    ShowWholeCapture();
    if (frame_ != nullptr) {
        frame_->GetGauge().SetMarker1(Trace().Marker(1, isZoom_));
        frame_->GetGauge().SetMarker2(Trace().Marker(2, isZoom_));
        if (!Trace().IsRealTime()) {
            frame_->SetIndicator(RunIndicator::File);
        }
    }
    ShowTimes();
}

void CTraceView::OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* object) {
    if (hint == HintRedraw || hint == HintBlockArrived) {
        timesShown_.reset(); // the samples or the columns are others
    }
    if (hint != HintBlockArrived) {
        ShowTimes(); // else when all blocks of the tick are in
    }
    if (hint == HintRedraw || (hint >= HintCaptureStarted && hint <= HintBlockArrived)) {
        state_->ForgetTimes();
    }
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
    case HintCaptureStarted:
        CaptureStarted();
        break;
    case HintCaptureStopped:
    case HintDataComplete:
        SetScrollBars();
        ShowSample(Trace().Marker(0, isZoom_));
        if (isZoom_ && hint == HintDataComplete && frame_ != nullptr) {
            frame_->SetCounters(zoomSamplesBefore, zoomSamplesBefore);
        }
        ShowWholeCapture();
        break;
    case HintBlockArrived:
        BlockArrived(object);
        break;
    case HintGoToSample:
        if (const auto* target = dynamic_cast<const GoToSampleHint*>(object);
            target != nullptr && target->zoom == isZoom_) {
            ShowSample(target->sample);
            ReportWindow();
        }
        break;
    case HintNameChanged:
    case HintSetupNameChanged:
        RefreshFrameName();
        break;
    case HintFilterChanged:
        ScrollToSample(TopSample()); // its row is another one now
        SetScrollBars();
        ReportWindow();
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
    if (frame_ != nullptr) {
        CPositionGauge& gauge = frame_->GetGauge();
        which == 1 ? gauge.SetMarker1(marker) : gauge.SetMarker2(marker);
    }
}

/// The gauge shows the board's memory while it fills.
void CTraceView::CaptureStarted() {
    showStatus_ = parts_.settings.GetProfileInt("Display", "ShowTraceStatus", 0) != 0;
    SetScrollBars();
    state_->SetTopRow(0);
    if (frame_ == nullptr || parts_.link == nullptr) {
        return;
    }
    constexpr std::int64_t kilo = 1024;
    const std::int64_t total = parts_.link->Identity().bufferSizeK * kilo;
    CPositionGauge& gauge = frame_->GetGauge();
    gauge.SetTotal(total);
    gauge.SetTrigger(TriggerSampleOf(Trace().setup, total));
    gauge.SetCounts(-1, -1);
    gauge.SetMarker1(-1);
    gauge.SetMarker2(-1);
    gauge.SetWindow(-1, -1);
}

/// The gauge shows the capture as it is now.
void CTraceView::ShowWholeCapture() {
    if (frame_ == nullptr) {
        return;
    }
    CPositionGauge& gauge = frame_->GetGauge();
    gauge.SetTotal(Trace().SampleCount(isZoom_));
    gauge.SetTrigger(Trace().Marker(0, isZoom_));
    gauge.SetCounts(-1, -1);
    gauge.SetMarker1(-1);
    gauge.SetMarker2(-1);
    ReportWindow();
}

void CTraceView::ReportWindow() {
    if (frame_ == nullptr) {
        return;
    }
    const std::int64_t rows = RowCount();
    const std::int64_t last = std::min(state_->TopRow() + state_->VisibleRowCount(), rows) - 1;
    const bool shown = rows > 0;
    frame_->GetGauge().SetWindow(shown ? TopSample() : -1,
                                 shown ? Trace().RowToSample(last, isZoom_) : -1);
}

void CTraceView::ShowTimes() {
    if (frame_ == nullptr) {
        return;
    }
    const TimesOf wanted{
        {Trace().Marker(0, isZoom_), Trace().Marker(1, isZoom_), Trace().Marker(2, isZoom_)},
        Trace().SampleCount(isZoom_)};
    if (timesShown_ == wanted) {
        return; // the walk over the samples is long
    }
    timesShown_ = wanted;
    const auto between = [&](std::size_t a, std::size_t b) {
        return TimeBetween(wanted.markers[a], wanted.markers[b], ListOf(Trace()), isZoom_);
    };
    frame_->SetTimes({between(1, 2), between(1, 0), between(2, 0)});
}

void CTraceView::Tick() {
    const RunState state = FollowRun(*parts_.link, Trace());
    ShowTimes();
    const bool running = state.indicator == RunIndicator::Running;
    if (frame_ != nullptr) {
        if (!isZoom_ && Trace().HasData()) {
            frame_->SetCounters(state.before, state.after);
        } else if (isZoom_ && state.indicator == RunIndicator::Uploading) {
            frame_->SetCounters(zoomSamplesBefore, zoomSamplesBefore);
        }
        frame_->SetIndicator(state.indicator, running ? state.level + 1 : -1);
        if (running) {
            frame_->GetGauge().SetCounts(state.before, state.after);
        }
    }
    FollowStatus(state);
}

void CTraceView::FollowStatus(const RunState& state) {
    if (state.indicator != RunIndicator::Running) {
        statusDialog_.reset();
        return;
    }
    if (statusDialog_ == nullptr && showStatus_) {
        statusDialog_ = std::make_unique<CTraceStatusDialog>(window(), Trace().setup);
        statusDialog_->show();
    }
    if (statusDialog_ != nullptr) {
        statusDialog_->Follow(state);
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
        frame_->ShowSetupName();
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
    const int page = std::max(state_->width() - state_->SampleColumnWidth() - 1, 1);
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
    ReportWindow();
    for (DocumentView* other : std::vector(Trace().Views())) {
        auto* view = dynamic_cast<CTraceView*>(other);
        if (view != nullptr && view != this && view->isZoom_ == isZoom_) {
            view->ScrollToSample(TopSample());
            view->ReportWindow();
        }
    }
}

void CTraceView::resizeEvent(QResizeEvent* /*event*/) {
    LayOut();
    SetScrollBars();
    if (GetDocument() != nullptr) {
        ReportWindow();
    }
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
