#pragma once

#include "capture/trace_document.h"
#include "ui/framework/win_app.h"

#include <QObject>

class QMdiArea;

namespace busquill {

class CAnalyzerLink;
class CChildFrame;
class CTraceView;
class WorkingDirectory;

/// The program's documents: the nine templates, how each kind is opened, and the rule that there
/// is at most one real-time trace.
class CTesselApp final : public CWinApp {
public:
    struct Parts {
        Settings& settings;
        Prompts& prompts;
        CAnalyzerLink& link;
        const WorkingDirectory& directory;
        CSampleStore& realTimeStore;
        QMdiArea& area;
    };
    explicit CTesselApp(const Parts& parts);
    ~CTesselApp() override;

    void NewStateTrace() { NewTrace(TraceViewKind::State, "Trigger2.tra"); }
    void NewWaveformTrace() { NewTrace(TraceViewKind::Waveform, "Trigger1.tra"); }
    /// Opens a file; a trace file with a state list is shown as State.
    CDocument* OpenDocumentFile(const std::string& path) override;
    /// Redraws every document's views.
    void DocumentChanged();
    /// The first view of a real-time trace of that kind, or null. A Power Zoom view counts as
    /// Waveform.
    [[nodiscard]] CTraceView* FindRealTimeView(TraceViewKind kind) const;
    /// One more frame for a document that has one.
    void AddTraceFrame(CTesselDoc& document, TraceViewKind kind);

    NewTraceContext context;
    bool stimulusStarted = false;

private:
    void NewTrace(TraceViewKind kind, const char* storedCapture);
    [[nodiscard]] CDocument* RealTimeDocument() const;
    [[nodiscard]] bool OpenStoredCapture(const char* name);
    void RefuseClone();
    [[nodiscard]] CMultiDocTemplate& TraceTemplate() const { return *Templates().front(); }

    CAnalyzerLink& link_;
    const WorkingDirectory& directory_;
    QMdiArea& area_;
};

} // namespace busquill
