#pragma once

#include "export/export_writer.h"
#include "ui/framework/feature.h"
#include "ui/trace/child_frame.h"

#include <memory>
#include <string>
#include <vector>

namespace busquill {

class CDocument;
class CMDIChildWnd;
class CMultiDocTemplate;
class CTesselDoc;
class CTraceView;

/// Opens the documents and windows of traces, and ensures that there is at most one real-time
/// trace.
class TraceDocuments {
public:
    static constexpr auto docString =
        "\nTrace\nTrace\nTrace Data (*.tra)\n.tra\nTessel.Trace\nTessel Trace";

    explicit TraceDocuments(const FeatureParts& parts) : parts_(parts) {}
    TraceDocuments(const TraceDocuments&) = delete;
    TraceDocuments& operator=(const TraceDocuments&) = delete;

    void NewStateTrace() { NewTrace(TraceViewKind::State, nullptr); }
    void NewWaveformTrace() { NewTrace(TraceViewKind::Waveform, nullptr); }
    /// The first view of that kind of a real-time trace, or null. A Power Zoom view counts as
    /// Waveform.
    [[nodiscard]] CTraceView* FindRealTimeView(TraceViewKind kind) const;

    // For the template:

    [[nodiscard]] std::unique_ptr<CDocument> MakeFileDocument();
    [[nodiscard]] CMDIChildWnd* MakeFrame(CDocument& document, TraceViewKind kind);
    /// The types beside its own in which a trace can be written.
    [[nodiscard]] static std::vector<FileType> ExportTypes();
    /// Writes a range of samples in one of those types, with the signals of the active window; of a
    /// Power Zoom window, its samples. False when nothing is written.
    bool Export(CTesselDoc& document, const std::string& path);
    /// Shows a file with a state list as State, and opens another window for Power Zoom samples.
    void FileOpened(CDocument& document);

private:
    void NewTrace(TraceViewKind kind, CTesselDoc* cloneSource);
    /// Opens another frame for a document that already has one.
    CMDIChildWnd& AddTraceFrame(CTesselDoc& document, TraceViewKind kind);
    [[nodiscard]] bool OpenStoredCapture(TraceViewKind kind);
    [[nodiscard]] std::unique_ptr<CDocument> MakeDocument(bool isRealTime, CTesselDoc* cloneSource);
    /// A function for the template that makes frames of one kind.
    [[nodiscard]] CMultiDocTemplate::MakeFrame FramesOf(TraceViewKind kind);
    [[nodiscard]] CTesselDoc* RealTimeDocument() const;
    [[nodiscard]] bool SaveTrace(CTesselDoc& document, const std::string& path);
    /// The documents of a capture's file, but for one.
    [[nodiscard]] std::vector<CTesselDoc*> OthersOf(const std::string& capture,
                                                    const CTesselDoc& but) const;
    void OpenZoomFrame(CTesselDoc& document);
    [[nodiscard]] ExportWriter::What WhatToExport(CTesselDoc& document, ExportFormat format) const;
    [[nodiscard]] CMultiDocTemplate& Template() const;

    const FeatureParts parts_;
};

} // namespace busquill
