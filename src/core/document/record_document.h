/// Documents whose files are lists of records: a key and its values in each line, beginning with
/// the type of the file and its version, each line ended by a carriage return and a line feed.
#pragma once

#include "document/document.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

class Prompts;
class TextReader;
class TextWriter;

/// How the files of a document type begin, and what messages call them.
struct RecordFileKind {
    std::string_view fileType; // "Master File"
    std::string_view name;     // "master"
};

/// What a reader does with a line that ends inside a quoted value.
enum class OpenQuote {
    GoesOn,        // the value goes on in the next line
    DropsNextLine, // the value ends there, and the next line is lost; files of old rely on it
};

class RecordWriter {
public:
    explicit RecordWriter(TextWriter& file) : file_(file) {}
    /// Values of digits alone go out bare, others in double quotes.
    void Write(std::initializer_list<std::string_view> fields);
    void WriteEmptyLine();

private:
    TextWriter& file_;
};

class RecordDocument : public CDocument {
public:
    RecordDocument(RecordFileKind kind, OpenQuote openQuote, Prompts& prompts)
        : kind_(kind), openQuote_(openQuote), prompts_(prompts) {}

    /// Refuses, in the words of its kind, a file of another type or version.
    bool OnOpenDocument(const std::string& path) override;
    /// The file comes into its place when it is whole.
    bool OnSaveDocument(const std::string& path) override;

protected:
    [[nodiscard]] Prompts& Messages() const noexcept { return prompts_; }

    /// Before the first record of a file.
    virtual void BeginReading() {}
    /// A record with at least one field, its key; the type and the version are not among them.
    virtual void TakeRecord(const std::vector<std::string>& fields, TextReader& file) = 0;
    /// After the last record, when type and version are right.
    virtual void EndReading() = 0;
    /// All records but the type and the version.
    virtual void WriteRecords(RecordWriter& writer) const = 0;

private:
    const RecordFileKind kind_;
    const OpenQuote openQuote_;
    Prompts& prompts_;
};

} // namespace busquill
