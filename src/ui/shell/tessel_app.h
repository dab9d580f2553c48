#pragma once

#include "capture/trace_document.h"
#include "ui/framework/win_app.h"

#include <functional>

class QMdiArea;

namespace busquill {

class CAnalyzerLink;
class CChildFrame;
class CMDIChildWnd;
class CTraceView;
class MainThread;
class WorkingDirectory;

/// The program's documents: the nine templates, how each kind is opened, and the rule that there
/// is at most one real-time trace.
class CTesselApp final : public CWinApp {
public:
    struct Parts {
        Settings& settings;
        Prompts& prompts;
        CAnalyzerLink& link;
        const MainThread& mainThread;
        const WorkingDirectory& directory;
        CSampleStore& realTimeStore;
        QMdiArea& area;
    };
    explicit CTesselApp(const Parts& parts);
    ~CTesselApp() override;

    void NewStateTrace() { NewTrace(TraceViewKind::State, "Trigger2.tra"); }
    void NewWaveformTrace() { NewTrace(TraceViewKind::Waveform, "Trigger1.tra"); }
    /// Opens a file; a trace file with a state list is shown as State, one with Power Zoom samples
    /// has a window of them too.
    CDocument* OpenDocumentFile(const std::string& path) override;
    /// Redraws every document's views.
    void DocumentChanged();
    /// The first view of a real-time trace of that kind, or null. A Power Zoom view counts as
    /// Waveform.
    [[nodiscard]] CTraceView* FindRealTimeView(TraceViewKind kind) const;
    /// One more frame for a document that has one.
    CMDIChildWnd& AddTraceFrame(CTesselDoc& document, TraceViewKind kind);
    /// Makes a real-time trace with the lists and the setup of another one.
    void CloneTrace(CTesselDoc& source, TraceViewKind kind);
    void ActivateFrameOf(CTraceView& view);
    void ShowHelp(int topic) { showHelp(topic); }

    /// Opens the help window at a topic; set by the main frame.
    std::function<void(int)> showHelp = [](int) {};

    NewTraceContext context;
    bool stimulusStarted = false;

private:
    void NewTrace(TraceViewKind kind, const char* storedCapture);
    [[nodiscard]] CDocument* RealTimeDocument() const;
    [[nodiscard]] bool SaveTrace(CTesselDoc& document, const std::string& path);
    [[nodiscard]] bool OpenStoredCapture(const char* name);
    void OpenZoomFrame(CDocument* document);
    void RefuseClone();
    [[nodiscard]] CMultiDocTemplate& TraceTemplate() const { return *Templates().front(); }

    CAnalyzerLink& link_;
    const MainThread& mainThread_;
    const WorkingDirectory& directory_;
    QMdiArea& area_;
};

} // namespace busquill
