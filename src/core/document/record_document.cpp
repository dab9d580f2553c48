#include "document/record_document.h"

#include "document/csv_line.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"

namespace busquill {

namespace {

constexpr std::string_view version = "1.0";

using Fields = std::vector<std::string>;

/// Reads one record into `fields`. False at the end of the file.
bool ReadRecord(TextReader& file, OpenQuote openQuote, Fields& fields) {
    if (openQuote == OpenQuote::GoesOn) {
        return ReadCsvRecord(file, fields);
    }
    fields.clear();
    const auto read = file.ReadLine();
    if (!read) {
        return false;
    }
    const std::string line(*read);
    if (CsvSplitLine(line, fields) && !file.ReadLine()) {
        static_cast<void>(CsvSplitLine(line, fields));
    }
    return true;
}

} // namespace

void RecordWriter::Write(std::span<const std::string_view> fields) {
    std::string line;
    for (const std::string_view field : fields) {
        line += line.empty() ? "" : ",";
        line += CsvQuote(field);
    }
    file_.Write(line);
    WriteEmptyLine();
}

void RecordWriter::WriteEmptyLine() {
    file_.Write(lineEnd_);
}

bool RecordDocument::OnOpenDocument(const std::string& path) {
    TextReader file;
    if (!file.Open(path)) {
        prompts_.Message(Printf("Error opening file %s.", path.c_str()));
        return false;
    }
    std::string foundType;
    std::string foundVersion;
    BeginReading();
    for (Fields fields; ReadRecord(file, openQuote_, fields);) {
        if (fields.empty()) {
            continue;
        }
        const std::string_view key = fields[0];
        if (key == "FileType" || key == "Version") {
            if (fields.size() > 1) {
                (key == "Version" ? foundVersion : foundType) = fields[1];
            }
        } else {
            TakeRecord(fields, file);
        }
    }
    if (foundType != kind_.fileType) {
        Refuse("type", foundType);
        return false;
    }
    if (foundVersion != version) {
        Refuse("version", foundVersion);
        return false;
    }
    EndReading();
    return true;
}

void RecordDocument::Refuse(const char* what, const std::string& found) {
    const std::string name(kind_.name);
    prompts_.Message(Printf("Invalid %s file %s of '%s'.", name.c_str(), what, found.c_str()));
}

bool RecordDocument::OnSaveDocument(const std::string& path) {
    TextWriter file;
    const auto fail = [&] {
        prompts_.Message(Printf("Error creating file %s.", path.c_str()));
        return false;
    };
    if (!file.CreateBeside(path)) {
        return fail();
    }
    RecordWriter writer(file, kind_.lineEnd);
    writer.Write({"FileType", kind_.fileType});
    writer.Write({"Version", version});
    WriteRecords(writer);
    return file.Close() || fail();
}

} // namespace busquill
