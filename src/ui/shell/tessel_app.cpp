#include "ui/shell/tessel_app.h"

#include "link/analyzer_link.h"
#include "platform/prompts.h"
#include "platform/working_directory.h"
#include "ui/capture/save_trace_dialog.h"
#include "ui/display/trace_view.h"
#include "ui/shell/child_frame.h"

#include <QMdiArea>

#include <algorithm>
#include <utility>

namespace busquill {

namespace {

// Window title, document name, file-new name, filter name, extension, file type id and name.
constexpr const char* docStrings[] = {
    "\nTrace\nTrace\nTrace Data (*.tra)\n.tra\nTessel.Trace\nTessel Trace",
    "\nPerformance\nPerformance\nPerformance (*.per)\n.per\nTessel.Performance\nTessel Performance",
    "\nMaster\nMaster\nMaster (*.mst)\n.mst\nTessel.Master\nTessel Master",
    "\nConfig\nConfig\nConfig (*.cfg)\n.cfg\nTessel.Config\nTessel Config",
    "\nCompliance\nCompliance\nCompliance (*.cpl)\n.cpl\nTessel.Compliance\nTessel Compliance",
    "\nAnDet\nAnDet\nAnomaly Detection (*.adt)\n.adt\nTessel.AnomalyDetection\n"
    "Tessel Anomaly Detection",
    "\nTarget\nTarget\nTarget (*.tgt)\n.tgt\nTessel.Target\nTessel Target",
    "\nStimulus\nStimulus\nStimulus (*.stm)\n.stm\nTessel.Stimulus\nTessel Stimulus",
    "\nBackplane Test\nBackplaneTest\nBackplane Test (*.bpt)\n.bpt\nTessel.BackplaneTest\n"
    "Tessel Backplane Test",
};
constexpr std::size_t templateCount = 9;
static_assert(std::size(docStrings) == templateCount);

} // namespace

CTesselApp::CTesselApp(const Parts& parts)
    : CWinApp(parts.settings, parts.prompts), link_(parts.link), mainThread_(parts.mainThread),
      directory_(parts.directory), area_(parts.area) {
    context.realTimeStore = &parts.realTimeStore;
    context.saveTrace = [this](CTesselDoc& document, const std::string& path) {
        return SaveTrace(document, path);
    };
    CMultiDocTemplate::Factories trace;
    trace.makeDocument = [this] { return std::make_unique<CTesselDoc>(context, prompts_); };
    trace.makeFrame = [this](CDocument& document) {
        return new CChildFrame({*this, link_, settings_, prompts_, mainThread_, directory_},
                               static_cast<CTesselDoc&>(document), context.traceViewKind,
                               area_.width());
    };
    commands.On(CommandId::FileOpen, [this] { OnFileOpen(area_.window()); });
    commands.On(
        CommandId::NewStateTrace, [this] { NewStateTrace(); },
        [this] { return FindRealTimeView(TraceViewKind::State) == nullptr; });
    commands.On(
        CommandId::NewWaveformTrace, [this] { NewWaveformTrace(); },
        [this] { return FindRealTimeView(TraceViewKind::Waveform) == nullptr; });
    for (std::size_t i = 0; i < templateCount; ++i) {
        AddDocTemplate(std::make_unique<CMultiDocTemplate>(
            docStrings[i], i == 0 ? trace : CMultiDocTemplate::Factories(), area_, prompts_));
    }
}

CTesselApp::~CTesselApp() {
    // Documents refer to the context.
    CloseTemplates();
}

CDocument* CTesselApp::OpenDocumentFile(const std::string& path) {
    context.traceViewKind = TraceViewKind::Waveform;
    context.newDocRealTime = false;
    context.fileWantsStateView = false;
    CDocument* document = CWinApp::OpenDocumentFile(path);
    if (context.fileWantsStateView) {
        context.fileWantsStateView = false;
        if (auto* frame = dynamic_cast<CChildFrame*>(area_.activeSubWindow())) {
            frame->SwitchDisplay(true);
        }
    }
    OpenZoomFrame(document);
    return document;
}

/// The window of the Power Zoom samples, where a file that has just been opened holds some. The
/// capture's own window stays the active one.
void CTesselApp::OpenZoomFrame(CDocument* document) {
    auto* trace = dynamic_cast<CTesselDoc*>(document);
    if (!std::exchange(context.fileWantsZoomView, false) || trace == nullptr) {
        return;
    }
    QMdiSubWindow* const own = area_.activeSubWindow();
    AddTraceFrame(*trace, TraceViewKind::PowerZoom);
    area_.setActiveSubWindow(own);
}

void CTesselApp::DocumentChanged() {
    for (const auto& each : Templates()) {
        for (const auto& document : each->Documents()) {
            document->UpdateAllViews(nullptr, HintRedraw);
        }
    }
}

CTraceView* CTesselApp::FindRealTimeView(TraceViewKind kind) const {
    for (const auto& document : TraceTemplate().Documents()) {
        if (!static_cast<const CTesselDoc&>(*document).IsRealTime()) {
            continue;
        }
        for (DocumentView* each : document->Views()) {
            auto* view = dynamic_cast<CTraceView*>(each);
            if (view != nullptr && view->IsState() == (kind == TraceViewKind::State)) {
                return view;
            }
        }
    }
    return nullptr;
}

CMDIChildWnd& CTesselApp::AddTraceFrame(CTesselDoc& document, TraceViewKind kind) {
    context.traceViewKind = kind;
    CMDIChildWnd& frame = *TraceTemplate().CreateNewFrame(document);
    TraceTemplate().InitialUpdateFrame(frame);
    return frame;
}

void CTesselApp::ActivateFrameOf(CTraceView& view) {
    area_.setActiveSubWindow(CMDIChildWnd::FrameOf(view));
}

void CTesselApp::CloneTrace(CTesselDoc& source, TraceViewKind kind) {
    context.cloneSource = &source;
    if (kind == TraceViewKind::State) {
        NewStateTrace();
    } else {
        NewWaveformTrace();
    }
}

bool CTesselApp::SaveTrace(CTesselDoc& document, const std::string& path) {
    return CSaveTraceDialog(area_.window(), document, path, prompts_, mainThread_).exec() ==
           QDialog::Accepted;
}

CDocument* CTesselApp::RealTimeDocument() const {
    const auto& documents = TraceTemplate().Documents();
    const auto found = std::find_if(documents.begin(), documents.end(), [](const auto& document) {
        return static_cast<const CTesselDoc&>(*document).IsRealTime();
    });
    return found == documents.end() ? nullptr : found->get();
}

bool CTesselApp::OpenStoredCapture(const char* name) {
    context.newDocRealTime = false;
    CDocument* document = TraceTemplate().OpenDocumentFile(directory_.FilePath(name));
    context.fileWantsStateView = false;
    OpenZoomFrame(document);
    return document != nullptr;
}

void CTesselApp::RefuseClone() {
    prompts_.Message("A real-time view already exists. Close the real-time view before creating a "
                     "new one.");
    context.cloneSource = nullptr;
}

void CTesselApp::NewTrace(TraceViewKind kind, const char* storedCapture) {
    context.traceViewKind = kind;
    const bool cloning = context.cloneSource != nullptr;
    // Without a board, a stored capture is what there is to work with.
    if (link_.IsDemoMode() && !cloning && OpenStoredCapture(storedCapture)) {
        return;
    }
    context.newDocRealTime = true;
    if (CTraceView* view = FindRealTimeView(kind)) {
        if (cloning) {
            RefuseClone();
        } else {
            ActivateFrameOf(*view);
        }
        return;
    }
    if (CDocument* document = RealTimeDocument()) {
        if (cloning) {
            RefuseClone();
        } else {
            AddTraceFrame(static_cast<CTesselDoc&>(*document), kind);
        }
        return;
    }
    TraceTemplate().OpenDocumentFile(std::nullopt);
}

} // namespace busquill
