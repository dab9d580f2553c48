#include "stimulus/stimulus_document.h"

#include "platform/text_file.h"
#include "tracesetup/setup_file.h"

namespace busquill {

namespace {

constexpr RecordFileKind fileKind = {"Stimulus File", "stimulus", "\n"};

} // namespace

CStimulusDoc::CStimulusDoc(SignalTables& tables, Prompts& prompts)
    : RecordDocument(fileKind, OpenQuote::DropsNextLine, prompts), program_(tables),
      current_(&program_.control.events) {}

bool CStimulusDoc::OnNewDocument() {
    program_.Reset();
    return true;
}

// The records go into the document as they are read, whatever the type of the file proves to be.
void CStimulusDoc::BeginReading() {
    program_.Clear();
    current_ = &program_.control.events;
}

void CStimulusDoc::TakeRecord(const std::vector<std::string>& fields, TextReader& file) {
    const std::string& key = fields[0];
    const std::string_view second = fields.size() > 1 ? fields[1] : std::string_view();
    if (key == "Stimulus") {
        current_ = &program_.patterns;
    } else if (key == "Events") {
        current_ = &program_.control.events;
    } else if (key == "Signal" && second != "Name") {
        current_->ReadSignal(fields, file);
    } else if (key == "Control" && second != "Level") {
        ParseLevelRow(program_.control, fields, true);
    }
}

void CStimulusDoc::EndReading() {
    program_.patterns.RebuildAfterRead();
    program_.control.events.RebuildAfterRead();
    UpdateAllViews(nullptr, hintLoaded);
}

void CStimulusDoc::Refuse(const char* /*what*/, const std::string& /*found*/) {
    EndReading();
}

void CStimulusDoc::WriteRecords(RecordWriter& writer) const {
    writer.WriteEmptyLine();
    writer.Write({"Stimulus"});
    program_.patterns.WriteSignals(writer.File(), true);
    writer.WriteEmptyLine();
    writer.Write({"Events"});
    program_.control.events.WriteSignals(writer.File(), true);
    writer.WriteEmptyLine();
    writer.Write({"Control"});
    writer.File().Write(LevelHeader(true));
    for (int level = 1; level <= stimulusLevels; ++level) {
        writer.File().Write(LevelRow(program_.control, level, true));
    }
}

} // namespace busquill
