#include "ui/trace/trace_documents.h"

#include "capture/analyzer.h"
#include "capture/trace_document.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/working_directory.h"
#include "ui/capture/save_trace_dialog.h"
#include "ui/display/trace_view.h"
#include "ui/framework/win_app.h"
#include "ui/framework/window_timer.h"
#include "ui/trace/reading_progress.h"

#include <QMainWindow>
#include <QMdiArea>

#include <filesystem>

namespace busquill {

CMultiDocTemplate& TraceDocuments::Template() const {
    return *parts_.app.TemplateNamed("Trace");
}

std::unique_ptr<CDocument> TraceDocuments::MakeDocument(bool isRealTime, CTesselDoc* cloneSource) {
    NewTraceContext context{parts_.analyzer.Tables()};
    context.newDocRealTime = isRealTime;
    context.cloneSource = cloneSource;
    context.analyzer = &parts_.analyzer;
    context.makeTimer = [this] {
        return std::make_unique<WindowTimer>(nullptr, parts_.mainThread);
    };
    context.saveTrace = [this](CTesselDoc& document, const std::string& path) {
        return SaveTrace(document, path);
    };
    context.bookmarksWritten = [this](const CTesselDoc& by, const std::string& capture) {
        for (CTesselDoc* each : OthersOf(capture, by)) {
            each->RenewBookmarks();
        }
    };
    context.captureReplaced = [this](const CTesselDoc& by, const std::string& capture) {
        for (CTesselDoc* each : OthersOf(capture, by)) {
            each->OnFileReplaced();
        }
    };
    if (auto* window = qobject_cast<QMainWindow*>(parts_.area.window())) {
        context.onReading = [progress = std::make_shared<ReadingProgress>(window->statusBar())](
                                const std::string& path, std::uint64_t bytes) {
            progress->At(path, bytes);
        };
    }
    return std::make_unique<CTesselDoc>(context, parts_.prompts);
}

std::unique_ptr<CDocument> TraceDocuments::MakeFileDocument() {
    return MakeDocument(false, nullptr);
}

CMDIChildWnd* TraceDocuments::MakeFrame(CDocument& document, TraceViewKind kind) {
    TraceActions actions{
        [this](CTesselDoc& source, TraceViewKind wanted) { NewTrace(wanted, &source); },
        [this](CTesselDoc& shown, TraceViewKind wanted) -> CMDIChildWnd& {
            return AddTraceFrame(shown, wanted);
        }};
    return new CChildFrame(parts_, std::move(actions), static_cast<CTesselDoc&>(document), kind);
}

CMultiDocTemplate::MakeFrame TraceDocuments::FramesOf(TraceViewKind kind) {
    return [this, kind](CDocument& document) { return MakeFrame(document, kind); };
}

void TraceDocuments::FileOpened(CDocument& document) {
    auto& trace = static_cast<CTesselDoc&>(document);
    if (trace.HasStateList()) {
        if (auto* frame = dynamic_cast<CChildFrame*>(parts_.area.activeSubWindow())) {
            frame->SwitchDisplay(true);
        }
    }
    OpenZoomFrame(trace);
}

/// Opens a window for the Power Zoom samples of a file, if it has any. The capture's own window
/// stays active.
void TraceDocuments::OpenZoomFrame(CTesselDoc& document) {
    if (!document.HasZoomSamples()) {
        return;
    }
    QMdiSubWindow* const own = parts_.area.activeSubWindow();
    AddTraceFrame(document, TraceViewKind::PowerZoom);
    parts_.area.setActiveSubWindow(own);
}

CMDIChildWnd& TraceDocuments::AddTraceFrame(CTesselDoc& document, TraceViewKind kind) {
    CMDIChildWnd& frame = *Template().CreateNewFrame(document, FramesOf(kind));
    Template().InitialUpdateFrame(frame);
    return frame;
}

CTraceView* TraceDocuments::FindRealTimeView(TraceViewKind kind) const {
    const CTesselDoc* document = RealTimeDocument();
    if (document == nullptr) {
        return nullptr;
    }
    for (DocumentView* each : document->Views()) {
        auto* view = dynamic_cast<CTraceView*>(each);
        if (view != nullptr && view->IsState() == (kind == TraceViewKind::State)) {
            return view;
        }
    }
    return nullptr;
}

bool TraceDocuments::SaveTrace(CTesselDoc& document, const std::string& path) {
    return CSaveTraceDialog(parts_.area.window(), document, path, parts_.prompts, parts_.mainThread)
               .exec() == QDialog::Accepted;
}

std::vector<CTesselDoc*> TraceDocuments::OthersOf(const std::string& capture,
                                                  const CTesselDoc& but) const {
    std::vector<CTesselDoc*> others;
    for (const auto& each : Template().Documents()) {
        auto& document = static_cast<CTesselDoc&>(*each);
        std::error_code unknown;
        if (&document != &but &&
            std::filesystem::equivalent(document.GetPathName(), capture, unknown)) {
            others.push_back(&document);
        }
    }
    return others;
}

std::vector<FileType> TraceDocuments::ExportTypes() {
    std::vector<FileType> types;
    types.reserve(exportFileTypes.size());
    for (const ExportFileType& type : exportFileTypes) {
        types.push_back(
            {Printf("%s (*.%s)", type.name, type.extension), std::string(".") + type.extension});
    }
    return types;
}

/// What to write of a document: what its active window shows.
ExportWriter::What TraceDocuments::WhatToExport(CTesselDoc& document, ExportFormat format) const {
    const auto* frame = dynamic_cast<const CChildFrame*>(parts_.area.activeSubWindow());
    const CTraceView* view =
        frame != nullptr && &frame->Trace() == &document ? &frame->TraceView() : nullptr;
    if (view != nullptr && view->IsZoom()) {
        return {format, document.zoomList, ListUse::Wave, true};
    }
    return view != nullptr && view->IsState()
               ? ExportWriter::What{format, document.stateList, ListUse::State}
               : ExportWriter::What{format, document.waveformList, ListUse::Wave};
}

bool TraceDocuments::Export(CTesselDoc& document, const std::string& path) {
    ExportWriter::What what =
        WhatToExport(document, ExportFormatOf(path).value_or(ExportFormat::Table));
    const SampleRange range = SampleReader(document, what.zoom).Range();
    if (!range.hasSamples) {
        parts_.prompts.Message("There are no samples to save.");
        return false;
    }
    if (what.format == ExportFormat::Dump) {
        std::error_code unknown;
        const std::string viewer = ViewerPathOf(path);
        what.viewerFile =
            !std::filesystem::exists(viewer, unknown) ||
            parts_.prompts.AskYesNo(
                Printf("The file %s for the viewer already exists. Overwrite?", viewer.c_str()));
    }
    CSaveTraceDialog dialog(
        parts_.area.window(), range, [&] { return std::make_unique<ExportWriter>(document, what); },
        path, parts_.prompts, parts_.mainThread);
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    if (const std::string note = dialog.Note(); !note.empty()) {
        parts_.prompts.Message(note);
    }
    return true;
}

CTesselDoc* TraceDocuments::RealTimeDocument() const {
    for (const auto& each : Template().Documents()) {
        auto& document = static_cast<CTesselDoc&>(*each);
        if (document.IsRealTime()) {
            return &document;
        }
    }
    return nullptr;
}

bool TraceDocuments::OpenStoredCapture(TraceViewKind kind) {
    const char* const name = kind == TraceViewKind::State ? "Trigger2.tra" : "Trigger1.tra";
    CDocument* document = Template().OpenDocument(MakeFileDocument(),
                                                  parts_.directory.FilePath(name), FramesOf(kind));
    if (document == nullptr) {
        return false;
    }
    OpenZoomFrame(static_cast<CTesselDoc&>(*document));
    return true;
}

void TraceDocuments::NewTrace(TraceViewKind kind, CTesselDoc* cloneSource) {
    const bool cloning = cloneSource != nullptr;
    // Without a board, a stored capture is opened instead.
    if (parts_.analyzer.Link().IsDemoMode() && !cloning && OpenStoredCapture(kind)) {
        return;
    }
    CTesselDoc* const document = RealTimeDocument();
    if (document == nullptr) {
        Template().OpenDocument(MakeDocument(true, cloneSource), std::nullopt, FramesOf(kind));
    } else if (cloning) {
        parts_.prompts.Message("A real-time view already exists. Close the real-time view before "
                               "creating a new one.");
    } else if (CTraceView* view = FindRealTimeView(kind)) {
        parts_.area.setActiveSubWindow(CMDIChildWnd::FrameOf(*view));
    } else {
        AddTraceFrame(*document, kind);
    }
}

} // namespace busquill
