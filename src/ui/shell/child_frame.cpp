#include "ui/shell/child_frame.h"

#include "ui/display/trace_view.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr int largestWidth = 0x352;
constexpr QSize zoomFrameSize(560, 360);
constexpr int usualHeight = 420;

} // namespace

CChildFrame::CChildFrame(CTesselDoc& document, TraceViewKind kind, int clientWidth,
                         const Settings& settings)
    : CMDIChildWnd(document), settings_(settings), isState_(kind == TraceViewKind::State),
      isZoom_(kind == TraceViewKind::PowerZoom), titleKind_(isZoom_ ? "Power Zoom" : "Trace") {
    resize(isZoom_ ? zoomFrameSize : QSize(std::min(clientWidth, largestWidth), usualHeight));
    SetView(MakeView());
    UpdateTitle();
}

CTraceView* CChildFrame::MakeView() {
    auto* view = new CTraceView(this, isState_, isZoom_, settings_);
    view->AttachDocument(&GetDocument());
    view->SetFrame(this);
    return view;
}

CTraceView& CChildFrame::TraceView() const {
    return static_cast<CTraceView&>(*GetActiveView());
}

void CChildFrame::SetTitleName(const std::string& name) {
    titleName_ = QString::fromStdString(name);
    UpdateTitle();
}

void CChildFrame::SetComment(const std::string& text) {
    // A title has one line; a description may have several.
    titleComment_ = QString::fromStdString(text).simplified();
    UpdateTitle();
}

void CChildFrame::UpdateTitle() {
    const QString title = titleKind_ + " - " + titleName_;
    setWindowTitle(titleComment_.isEmpty() ? title : title + " (" + titleComment_ + ")");
}

void CChildFrame::SwitchDisplay(bool toState) {
    isState_ = toState;
    const std::int64_t center = TraceView().CenterSample();
    CTraceView* view = MakeView();
    SetView(view);
    view->show();
    view->OnInitialUpdate();
    view->ShowSample(center);
    view->setFocus();
}

} // namespace busquill
