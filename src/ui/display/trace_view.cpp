#include "ui/display/trace_view.h"

#include "capture/trace_document.h"
#include "capture/trace_search.h"
#include "link/analyzer_link.h"
#include "platform/prompts.h"
#include "platform/settings.h"
#include "platform/working_directory.h"
#include "signals/cell_text.h"
#include "ui/capture/position_gauge.h"
#include "ui/capture/print_trace_dialog.h"
#include "ui/capture/trace_status_dialog.h"
#include "ui/display/go_to_sample_dialog.h"
#include "ui/display/print_painter.h"
#include "ui/display/state_geometry.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_frame.h"
#include "ui/display/wave_geometry.h"
#include "ui/display/wave_window.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/painting.h"
#include "ui/framework/printing.h"
#include "ui/framework/scroll_actions.h"
#include "ui/framework/wait_cursor.h"
#include "ui/patterns/pattern_dialogs.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <utility>

namespace busquill {

namespace {

constexpr std::uint32_t viewBackground = 0xA0A0A0;
constexpr int verticalBarTop = 17;
constexpr int zoomBarPercent = 15;

} // namespace

CTraceView::CTraceView(QWidget* parent, bool isState, bool isZoom, const TraceViewParts& parts)
    : CView(parent), parts_(parts), isState_(isState), isZoom_(isZoom),
      vScroll_(new QScrollBar(Qt::Vertical, this)), hScroll_(new QScrollBar(Qt::Horizontal, this)) {
    if (isState) {
        display_ = new CStateWnd(this, parts.settings, parts.prompts);
    } else {
        display_ = wave_ = new CWaveformWnd(this, parts.settings, parts.prompts);
        zoomScroll_ = new QScrollBar(Qt::Horizontal, this);
        zoomScroll_->setRange(smallestZoom, largestZoom);
        zoomScroll_->setPageStep(zoomStep);
        zoomScroll_->setValue(startZoom);
        zoomScroll_->setToolTip("Zoom");
        connect(zoomScroll_, &QScrollBar::actionTriggered, this, &CTraceView::ZoomAction);
        connect(zoomScroll_, &QScrollBar::sliderReleased, this, &CTraceView::ShowZoom);
    }
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(true);
    QPalette colors = palette();
    colors.setColor(QPalette::Window, ColorOf(viewBackground));
    setPalette(colors);
    for (QScrollBar* bar : findChildren<QScrollBar*>()) {
        bar->setEnabled(false);
        bar->setFocusPolicy(Qt::NoFocus);
        bar->installEventFilter(this);
    }
    QScrollBar* const samples = isState ? vScroll_ : hScroll_;
    QScrollBar* const signalBar = isState ? hScroll_ : vScroll_;
    connect(samples, &QScrollBar::actionTriggered, this, &CTraceView::SampleAction);
    connect(samples, &QScrollBar::sliderReleased, this, &CTraceView::SetSamplePosition);
    connect(signalBar, &QScrollBar::actionTriggered, this, &CTraceView::SignalAction);
    connect(display_, &TraceDisplay::LayoutChanged, this, &CTraceView::SetScrollBars);
    // Power Zoom samples are always fetched before all others.
    connect(display_, &TraceDisplay::SampleMissing, this, [this](std::int64_t sample) {
        if (!isZoom_) {
            Trace().FetchNext(sample);
        }
    });
    MakeCommands();
}

CTraceView::~CTraceView() = default;

void CTraceView::MakeCommands() {
    constexpr std::pair<CommandId, GoToTarget> targets[] = {
        {CommandId::GoToTrigger, GoToTarget::Trigger},
        {CommandId::GoToMarker1, GoToTarget::Marker1},
        {CommandId::GoToMarker2, GoToTarget::Marker2},
        {CommandId::GoToStart, GoToTarget::Start},
        {CommandId::GoToEnd, GoToTarget::End},
    };
    for (const auto& each : targets) {
        const GoToTarget target = each.second;
        commands.On(
            each.first, [this, target] { GoTo(target); },
            [this, target] { return CanGoTo(target); });
    }
    for (const int which : {1, 2}) {
        commands.On(
            which == 1 ? CommandId::PutMarker1 : CommandId::PutMarker2,
            [this, which] { PutMarker(which); }, [this] { return Trace().RowCount(isZoom_) > 0; });
    }
    constexpr std::tuple<CommandId, GoToTarget, bool> steps[] = {
        {CommandId::Marker1Back, GoToTarget::Marker1, false},
        {CommandId::Marker1Forward, GoToTarget::Marker1, true},
        {CommandId::Marker2Back, GoToTarget::Marker2, false},
        {CommandId::Marker2Forward, GoToTarget::Marker2, true},
    };
    for (const auto& [id, marker, forward] : steps) {
        commands.On(
            id,
            [this, which = static_cast<int>(marker), forward = forward] {
                Trace().StepMarker(which, forward, isZoom_);
            },
            [this, marker = marker] { return CanGoTo(marker); });
    }
    for (const bool forward : {true, false}) {
        commands.On(
            forward ? CommandId::NextBookmark : CommandId::PreviousBookmark,
            [this, forward] { GoToBookmark(forward); },
            [this, forward] { return CanGoToBookmark(forward); });
    }
    const auto hasSignals = [this] { return !ListOf(Trace()).Empty(); };
    for (const bool forward : {true, false}) {
        commands.On(
            forward ? CommandId::NextSignal : CommandId::PreviousSignal,
            [this, forward] { display_->SelectSignal(forward); }, hasSignals);
    }
    commands.On(
        CommandId::SignalMenu, [this] { display_->OpenSignalMenu(); }, hasSignals);
    const auto canSearch = [this] { return CanSearchSamples(); };
    commands.On(
        CommandId::GoToSample, [this] { GoToNumber(); }, canSearch);
    commands.On(CommandId::FindPattern, [this] { FindPattern(); });
    commands.On(
        CommandId::FindNext, [this] { Find(SearchDirection::Forward); }, canSearch);
    commands.On(
        CommandId::FindPrevious, [this] { Find(SearchDirection::Backward); }, canSearch);
    commands.On(
        CommandId::Filter, [this] { Filter(); }, [this] { return CanFilterSamples(); });
    for (const bool in : {true, false}) {
        commands.On(
            in ? CommandId::ZoomIn : CommandId::ZoomOut, [this, in] { Zoom(in); },
            [this, in] { return CanZoom(in); });
    }
    commands.On(
        CommandId::Copy, [this] { Copy(); }, [this] { return display_->CanCopy(); });
    commands.On(CommandId::Print, [this] { Print(false); });
    commands.On(CommandId::PrintPreview, [this] { Print(true); });
    // A capture from a file never changes; Save As makes a copy.
    commands.Forbid(CommandId::FileSave, [this] { return !Trace().IsRealTime(); });
}

CTesselDoc& CTraceView::Trace() const {
    return static_cast<CTesselDoc&>(*GetDocument());
}

CSignalList& CTraceView::ListOf(CTesselDoc& document) const {
    return isZoom_ ? document.zoomList : isState_ ? document.stateList : document.waveformList;
}

std::int64_t CTraceView::RowCount() const {
    return Trace().RowCount(isZoom_);
}

std::int64_t CTraceView::TopSample() const {
    return display_->FirstSample();
}

std::int64_t CTraceView::CenterSample() const {
    return display_->CenterSample();
}

void CTraceView::ShowSample(std::int64_t sample) {
    ScrollToSample(FirstToCenter(sample, display_->VisibleSampleCount()));
}

void CTraceView::ScrollToSample(std::int64_t sample) {
    display_->ScrollToSample(sample);
    SetSamplePosition();
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
    switch (target) {
    case GoToTarget::Start:
        Trace().GoToSample(0, isZoom_);
        break;
    case GoToTarget::End:
        Trace().GoToSample(Trace().SampleCount(isZoom_) - 1, isZoom_);
        break;
    default:
        Trace().GoToSample(Trace().Marker(static_cast<int>(target), isZoom_), isZoom_);
    }
}

bool CTraceView::Shows(std::int64_t sample) const {
    return sample >= TopSample() && sample <= display_->LastClickableSample();
}

std::int64_t CTraceView::MiddleSample() const {
    const std::int64_t top = Trace().SampleToRow(TopSample(), isZoom_);
    const std::int64_t last = Trace().RowCount(isZoom_) - 1;
    std::int64_t middle = Trace().SampleToRow(CenterSample(), isZoom_);
    if (middle == last) { // the rows may end above the middle of the window
        middle = (top + last) / 2;
    }
    return Trace().RowToSample(middle, isZoom_);
}

void CTraceView::PutMarker(int which) {
    Trace().ToggleMarker(which, MiddleSample(), isZoom_);
}

std::int64_t CTraceView::CurrentSample() const {
    const std::int64_t marker = Trace().Marker(1, isZoom_);
    const bool isSeen = marker != -1 && Shows(marker) && Trace().IsRowSample(marker, isZoom_);
    return isSeen ? marker : MiddleSample();
}

std::optional<std::int64_t> CTraceView::BookmarkBeside(bool forward) const {
    if (isZoom_ || RowCount() == 0) {
        return std::nullopt;
    }
    const auto last = Trace().LastBookmark();
    const auto sample = last ? Trace().SampleNumbered(*last) : std::nullopt;
    return Trace().BookmarkBeside(
        sample && Shows(*sample) ? *last : Trace().FirstSampleNumber(false) + MiddleSample(),
        forward);
}

bool CTraceView::CanGoToBookmark(bool forward) const {
    return BookmarkBeside(forward).has_value();
}

void CTraceView::GoToBookmark(bool forward) {
    if (const auto number = BookmarkBeside(forward)) {
        Trace().GoToBookmark(*number);
    }
}

bool CTraceView::CanSearchSamples() const {
    return CanSearch(Trace());
}

bool CTraceView::CanFilterSamples() const {
    return !isZoom_ && CanFilter(Trace());
}

void CTraceView::GoToNumber() {
    CGoToSampleDlg dialog(this);
    if (dialog.exec() == QDialog::Accepted) {
        Trace().GoToSample(SampleOfNumber(dialog.Number(), Trace().FirstSampleNumber(isZoom_),
                                          Trace().SampleCount(isZoom_)),
                           isZoom_);
    }
}

void CTraceView::FindPattern() {
    if (parts_.prompts != nullptr) {
        CSearchPatternDlg(this, Trace().searchPattern, *parts_.prompts).exec();
    }
}

void CTraceView::Find(SearchDirection direction) {
    if (!CanSearchSamples() || parts_.prompts == nullptr) {
        return;
    }
    const WaitCursor wait;
    const std::int64_t start = SearchStart(Trace(), direction, TopSample());
    if (!Trace().IsRealTime()) {
        SearchHost(Trace(), direction, start, *parts_.prompts);
    } else if (parts_.link != nullptr) {
        SearchOnAnalyzer(*parts_.link, Trace(), direction, start, *parts_.prompts);
    }
}

void CTraceView::Filter() {
    if (!CanFilterSamples() || parts_.prompts == nullptr ||
        CFilterPatternDlg(this, Trace().filterPattern, *parts_.prompts).exec() !=
            QDialog::Accepted) {
        return;
    }
    const WaitCursor wait;
    Trace().ApplyFilter(TopSample());
}

void CTraceView::Copy() {
    std::string failure;
    {
        const WaitCursor wait;
        failure = display_->Copy();
    }
    if (!failure.empty() && parts_.prompts != nullptr) {
        parts_.prompts->Message(failure);
    }
}

void CTraceView::Print(bool preview) {
    if (parts_.prompts == nullptr || parts_.mainThread == nullptr || parts_.printer == nullptr) {
        return;
    }
    CPrintTraceDlg dialog(this, Trace(), isState_, isZoom_, parts_.settings, *parts_.prompts,
                          *parts_.mainThread);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    Trace().FlushBlockUpdates(); // the samples have arrived, but perhaps not been unpacked
    const CMDIChildWnd* const frame = CMDIChildWnd::FrameOf(*this);
    const QString title = frame == nullptr ? QString() : frame->windowTitle();
    const auto print = [&](QPrinter& printer) {
        return PrintTo(
            printer, {dialog.First(), dialog.Last(), dialog.ScalesToPage(), {title, PrintTime()}});
    };
    preview ? ShowPrintPreview(this, *parts_.prompts, *parts_.printer, print)
            : AskAndPrint(this, *parts_.prompts, *parts_.printer, print);
}

PrintFailure CTraceView::PrintTo(QPrinter& printer, const PrintJob& job) {
    return display_->Print(printer, job);
}

void CTraceView::OnInitialUpdate() {
    const std::int64_t trigger = Trace().Marker(0, isZoom_);
    // Even a capture without samples has a trigger.
    const bool set = trigger != -1 && Trace().SampleCount(isZoom_) > 0;
    ShowCounts(set ? trigger : 0, set ? Trace().SampleCount(isZoom_) - trigger - 1 : 0);
    RefreshFrameName();
    LayOut(); // there is no resize event until the view is shown
    if (Trace().IsRealTime() && parts_.link != nullptr) {
        showStatus_ = parts_.settings.GetProfileInt(SettingsSection::display,
                                                    SettingsKey::showTraceStatus, 0) != 0;
    }
    display_->Attach(Trace(), ListOf(Trace()), isZoom_);
    SetScrollBars();
    if (zoomScroll_ != nullptr) {
        zoomScroll_->setEnabled(true);
    }
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
    if (Trace().CaptureActive()) {
        ShowFilling();
    }
    if (frame_ != nullptr) {
        frame_->GetGauge().SetMarker1(Trace().Marker(1, isZoom_));
        frame_->GetGauge().SetMarker2(Trace().Marker(2, isZoom_));
        if (!Trace().IsRealTime()) {
            frame_->SetIndicator(RunIndicator::File);
        }
    }
    ShowTimes();
    if (Trace().CaptureActive()) {
        ShowRun(); // its present state
    }
}

void CTraceView::OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* object) {
    if (hint != HintBlockArrived) {
        ShowTimes(); // for blocks: once, after all that have arrived together
    }
    if (hint == HintRedraw || (hint >= HintCaptureStarted && hint <= HintBlockArrived)) {
        display_->SamplesChanged();
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
        display_->Render(); // even if the view has not moved
        if (isZoom_ && hint == HintDataComplete) {
            ShowCounts(zoomSamplesBefore, zoomSamplesBefore);
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
        }
        break;
    case HintNameChanged:
    case HintSetupNameChanged:
        RefreshFrameName();
        break;
    case HintFilterChanged:
        ScrollToSample(TopSample()); // its row has changed
        SetScrollBars();
        display_->Render();
        break;
    case HintPolled:
        ShowRun();
        break;
    case HintBookmarks:
        ReportBookmarks();
        display_->Render();
        break;
    default:
        display_->Render();
    }
    emit Updated(hint);
}

void CTraceView::MarkerChanged(int which) {
    const std::int64_t marker = Trace().Marker(which, isZoom_);
    const std::int64_t first = TopSample();
    if (marker != -1 && (marker < first || marker > display_->LastClickableSample())) {
        ShowSample(marker);
    }
    if (TopSample() == first) { // otherwise it has just been drawn
        display_->RenderMarkers();
    }
    if (frame_ != nullptr) {
        CPositionGauge& gauge = frame_->GetGauge();
        which == 1 ? gauge.SetMarker1(marker) : gauge.SetMarker2(marker);
    }
}

void CTraceView::CaptureStarted() {
    showStatus_ = parts_.settings.GetProfileInt(SettingsSection::display,
                                                SettingsKey::showTraceStatus, 0) != 0;
    SetScrollBars();
    ScrollToSample(0);
    display_->Render();
    ShowCounts(0, 0);
    ShowFilling();
}

/// The gauge shows the board's memory while it fills.
void CTraceView::ShowFilling() {
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
    gauge.SetBookmarks({});
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
    ReportBookmarks();
}

/// Bookmarks are about the capture's samples, not those of the Power Zoom.
void CTraceView::ReportBookmarks() {
    if (frame_ == nullptr || isZoom_) {
        return;
    }
    std::vector<std::int64_t> samples;
    samples.reserve(Trace().GetBookmarks().size());
    for (const auto& [number, note] : Trace().GetBookmarks()) {
        if (const auto sample = Trace().SampleNumbered(number)) {
            samples.push_back(*sample);
        }
    }
    frame_->GetGauge().SetBookmarks(std::move(samples));
}

void CTraceView::ReportWindow() {
    if (frame_ == nullptr) {
        return;
    }
    const bool shown = RowCount() > 0;
    frame_->GetGauge().SetWindow(shown ? TopSample() : -1, shown ? display_->LastSample() : -1);
}

/// Power Zoom always has the same number of samples.
void CTraceView::ShowCounts(std::int64_t before, std::int64_t after) {
    if (frame_ != nullptr) {
        isZoom_ ? frame_->SetCounters(zoomSamplesBefore, zoomSamplesBefore)
                : frame_->SetCounters(before, after);
    }
}

void CTraceView::ShowTimes() {
    if (frame_ == nullptr) {
        return;
    }
    const auto between = [this](int a, int b) {
        return TimeBetween(Trace().Marker(a, isZoom_), Trace().Marker(b, isZoom_), ListOf(Trace()),
                           isZoom_);
    };
    frame_->SetTimes({between(1, 2), between(1, 0), between(2, 0)});
}

void CTraceView::ShowRun() {
    const RunState& state = Trace().Run().State();
    const bool running = state.indicator == RunIndicator::Running;
    if (frame_ != nullptr) {
        if (Trace().HasData()) {
            ShowCounts(state.before, state.after);
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
    if (block->first <= display_->LastDrawnSample() &&
        std::int64_t{block->first} + block->count > TopSample()) {
        display_->Render();
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
    const auto show = [](QScrollBar& bar, const BarState& state) {
        SetBarState(bar, state);
        bar.setEnabled(bar.isEnabled() || state.needed); // once enabled, it stays enabled
    };
    show(isState_ ? *vScroll_ : *hScroll_, display_->SampleBar());
    show(isState_ ? *hScroll_ : *vScroll_, display_->SignalBar());
    ReportWindow();
}

void CTraceView::SetSamplePosition() {
    (isState_ ? vScroll_ : hScroll_)->setValue(display_->SampleBar().position);
    ReportWindow();
}

void CTraceView::SampleAction(int action) {
    ApplyScrollAction(
        isState_ ? *vScroll_ : *hScroll_, action,
        [this](bool forward) { display_->StepSamples(forward); },
        [this](bool forward) { display_->PageSamples(forward); },
        [this](int position) { display_->MoveSamplesTo(position); },
        [this] { return display_->SampleBar().position; });
    Synchronise();
}

void CTraceView::SignalAction(int action) {
    ApplyScrollAction(
        isState_ ? *hScroll_ : *vScroll_, action,
        [this](bool forward) { display_->StepSignals(forward); },
        [this](bool forward) { display_->PageSignals(forward); },
        [this](int position) { display_->MoveSignalsTo(position); },
        [this] { return display_->SignalBar().position; });
}

void CTraceView::MoveColumns(int notches) {
    display_->TurnSignals(notches);
    hScroll_->setValue(display_->SignalBar().position);
}

void CTraceView::StepSamples(bool forward) {
    display_->StepSamples(forward);
    SetSamplePosition();
    Synchronise();
}

void CTraceView::PageSamples(bool forward) {
    display_->PageSamples(forward);
    SetSamplePosition();
    Synchronise();
}

// The scale follows the thumb; everything else that depends on it is updated when the thumb is
// released.
void CTraceView::ZoomAction(int action) {
    const bool stepped = ApplyScrollAction(
        *zoomScroll_, action, [this](bool in) { wave_->SetZoom(ZoomAfterLine(wave_->Zoom(), in)); },
        [this](bool in) { wave_->SetZoom(ZoomAfterPage(wave_->Zoom(), in)); },
        [this](int thumb) { wave_->SetZoom(ZoomOfThumb(thumb)); },
        [this] { return wave_->Zoom(); });
    stepped ? ShowZoom() : ReportWindow();
}

void CTraceView::ShowZoom() {
    zoomScroll_->setValue(wave_->Zoom());
    SetScrollBars();
}

bool CTraceView::CanZoom(bool in) const {
    return wave_ != nullptr && (in ? wave_->Zoom() < largestZoom : wave_->Zoom() > smallestZoom);
}

void CTraceView::Zoom(bool in) {
    if (CanZoom(in)) {
        wave_->SetZoom(in ? ZoomedIn(wave_->Zoom()) : ZoomedOut(wave_->Zoom()));
        ShowZoom();
    }
}

void CTraceView::ZoomAt(bool in, int x) {
    if (CanZoom(in)) {
        wave_->SetZoomAt(in ? ZoomedIn(wave_->Zoom()) : ZoomedOut(wave_->Zoom()), x);
        ShowZoom();
        Synchronise();
    }
}

void CTraceView::Synchronise() {
    ReportWindow();
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
    const int zoomWidth = isState_ ? 0 : width() * zoomBarPercent / 100;
    vScroll_->setGeometry(right, verticalBarTop, barWidth, bottom - verticalBarTop);
    hScroll_->setGeometry(zoomWidth, bottom, width() - zoomWidth, barHeight);
    if (zoomScroll_ != nullptr) {
        zoomScroll_->setGeometry(0, bottom, zoomWidth, barHeight);
    }
    display_->setGeometry(0, 0, right, bottom);
}

void CTraceView::keyPressEvent(QKeyEvent* event) {
    if (GetDocument() == nullptr) {
        return;
    }
    const int key = event->key();
    if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
        PageSamples(key == Qt::Key_PageDown);
    } else if (isState_ && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        StepSamples(key == Qt::Key_Down);
    } else if (!isState_ && (key == Qt::Key_Left || key == Qt::Key_Right)) {
        StepSamples(key == Qt::Key_Right);
    } else {
        CView::keyPressEvent(event);
    }
}

void CTraceView::wheelEvent(QWheelEvent* event) {
    event->accept();
    if (GetDocument() == nullptr) {
        return;
    }
    const auto [sideways, notches, zooms] = wheel_.Take(*event);
    if (sideways && isState_) {
        MoveColumns(notches);
        return;
    }
    const int x = display_->mapFromGlobal(event->globalPosition()).toPoint().x();
    // In waveforms, too, a sideways turn moves the samples.
    for (int i = 0; i < std::abs(notches); ++i) {
        zooms && !isState_ ? ZoomAt(notches < 0, x) : StepSamples(notches > 0);
    }
}

bool CTraceView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        wheelEvent(static_cast<QWheelEvent*>(event)); // works over a bar as over the display
        return true;
    }
    return CView::eventFilter(watched, event);
}

} // namespace busquill
