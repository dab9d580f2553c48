#include "capture/trace_writer.h"

#include "capture/trace_document.h"
#include "capture/trace_parser.h"
#include "document/csv_line.h"
#include "platform/text.h"
#include "tracesetup/setup_file.h"

namespace busquill {

namespace {

void WriteList(TextWriter& file, const CSignalList& list, const char* title, const char* end) {
    file.Write(Printf("\n\"%s\"\n", title));
    list.WriteSignals(file, false);
    file.Write(Printf("\"%s\"\n", end));
}

} // namespace

TraceFileWriter::TraceFileWriter(CTesselDoc& document)
    : document_(document), store_(document.GetStore()), reader_(document) {}

bool TraceFileWriter::Begin(const std::string& path, std::int64_t first, std::int64_t last) {
    if (!file_.CreateBeside(path)) {
        return false;
    }
    file_.Write(Printf("\"FileType\",\"%s\"\n\"Version\",\"%s\"\n", traceFileType, fileVersion));
    file_.Write("\"Description\"," + CsvQuote(document_.comment) + "\n\n\"Trace Setup\"\n");
    WriteSetupBody(document_.setup, file_);
    WriteList(file_, document_.waveformList, "Waveform Signals", "End of Wave Signals");
    WriteList(file_, document_.stateList, "State Signals", "End of State Signals");
    // Only a capture with Power Zoom samples has this list.
    if (!document_.zoomList.Empty() || store_.HasZoom()) {
        WriteList(file_, document_.zoomList, "Power Zoom Signals", "End of Power Zoom Signals");
    }
    if (HasSamples()) {
        file_.Write(
            Printf("\n\"Trace Data\",%d,%d\n", static_cast<int>(first), static_cast<int>(last)));
        reader_.Start(first, last);
    }
    return true;
}

TraceFileWriter::Step TraceFileWriter::Write(std::size_t rows) {
    SampleRows read;
    const Step step = reader_.Read(rows, read);
    std::string text;
    for (std::size_t i = 0; i < read.Size(); ++i) {
        AppendRow(text, read.numbers[i], read.records[i]);
    }
    file_.Write(text);
    return step == Step::Done ? Finish() : step;
}

TraceFileWriter::Step TraceFileWriter::Finish() {
    if (HasSamples()) {
        file_.Write("\"End of Trace Data\"\n");
    }
    if (store_.HasZoom()) {
        std::string text = "\n\"Power Zoom Data\",255,256\n";
        for (std::uint32_t slot = 0; slot < zoomSampleCount; ++slot) {
            if (const auto record = store_.GetZoomSample(slot)) {
                AppendRow(text, slot + zoomFirstNumber, *record);
            }
        }
        file_.Write(text + "\"End of Power Zoom Data\"\n");
    }
    return file_.Close() ? Step::Done : Step::Failed;
}

void TraceFileWriter::Abort() {
    static_cast<void>(file_.Close()); // the file is abandoned anyway
}

} // namespace busquill
