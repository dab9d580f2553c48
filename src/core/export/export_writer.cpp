#include "export/export_writer.h"

#include "capture/trace_document.h"
#include "platform/text.h"

#include <cctype>

namespace busquill {

namespace {

/// A note as a sentence of a message box.
std::string Sentence(std::string note) {
    note.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(note.front())));
    return note + ".";
}

} // namespace

ExportWriter::ExportWriter(CTesselDoc& document, const What& what)
    : reader_(document, what.zoom), viewerFile_(what.viewerFile),
      export_(what.format,
              {what.list, what.use, document.setup, document.comment, what.zoom, false}) {}

bool ExportWriter::Begin(const std::string& path, std::int64_t first, std::int64_t last) {
    path_ = path;
    first_ = first;
    last_ = last;
    hasSamples_ = false;
    reader_.Start(first, last);
    isSurvey_ = export_.NeedsSurvey();
    return file_.CreateBeside(path) && (isSurvey_ || BeginFile());
}

bool ExportWriter::BeginFile() {
    // The file tells at its end whether everything could be written.
    return export_.Begin([this](std::string_view bytes) {
        file_.Write(bytes);
        return true;
    });
}

SampleStep ExportWriter::Write(std::size_t rows) {
    SampleRows read;
    const SampleStep step = reader_.Read(rows, read);
    hasSamples_ = hasSamples_ || !read.Empty();
    if (step == SampleStep::Done && !hasSamples_) {
        return SampleStep::Nothing;
    }
    if (!isSurvey_) {
        const bool good = export_.Add(read);
        return !good ? SampleStep::Failed : step == SampleStep::Done ? Finish() : step;
    }
    export_.Survey(read);
    if (step != SampleStep::Done) {
        return step;
    }
    isSurvey_ = false;
    reader_.Start(first_, last_);
    return BeginFile() ? SampleStep::More : SampleStep::Failed;
}

SampleStep ExportWriter::Finish() {
    if (!export_.End() || !file_.Close()) {
        return SampleStep::Failed;
    }
    if (viewerFile_) {
        const std::string viewerPath = ViewerPathOf(path_);
        TextWriter viewer;
        viewerFailed_ = !viewer.CreateBeside(viewerPath);
        if (!viewerFailed_) {
            viewer.Write(export_.ViewerFile(path_, viewerPath));
            viewerFailed_ = !viewer.Close();
        }
    }
    return SampleStep::Done;
}

int ExportWriter::Progress() const {
    const int done = reader_.Progress();
    return !export_.NeedsSurvey() ? done : isSurvey_ ? done / 2 : 50 + done / 2;
}

std::string ExportWriter::Note() const {
    std::string note;
    const auto add = [&](const std::string& sentence) {
        note += (note.empty() ? "" : "\n") + sentence;
    };
    if (const std::string clock = export_.ClockNote(); !clock.empty()) {
        add(Sentence(clock));
    }
    if (export_.HasGaps()) {
        add("Not all samples of the range are in the file: the filter hides some, or they are "
            "missing. Added times are too short by theirs.");
    }
    if (viewerFailed_) {
        add(Printf("Error writing file %s.", ViewerPathOf(path_).c_str()));
    }
    return note;
}

} // namespace busquill
