/// Documents whose files are lists of records: a key and its values in each line, beginning with
/// the type of the file and its version, each line ended by a carriage return and a line feed.
#pragma once

#include "document/document.h"

#include <initializer_list>
#include <span>
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
    GoesOn, // the value goes on in the next line
    /// The value ends there with the line end, and the next line is lost. Where none follows, the
    /// line is split once more behind its own fields.
    DropsNextLine,
};

class RecordWriter {
public:
    explicit RecordWriter(TextWriter& file) : file_(file) {}
    /// Values of digits alone go out bare, others in double quotes.
    void Write(std::span<const std::string_view> fields);
    void Write(std::initializer_list<std::string_view> fields) {
        Write(std::span(fields.begin(), fields.size()));
    }
    void WriteEmptyLine();
    /// For what is written in a form of its own.
    [[nodiscard]] TextWriter& File() const noexcept { return file_; }

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
    /// A record, which begins with its key; the type and the version are not among them. It is kept
    /// aside: whether the file is of the right kind is known at its end.
    virtual void TakeRecord(const std::vector<std::string>& fields, TextReader& file) = 0;
    /// After the last record, when type and version are right: what was kept aside is taken over.
    virtual void EndReading() = 0;
    /// All records but the type and the version.
    virtual void WriteRecords(RecordWriter& writer) const = 0;

private:
    const RecordFileKind kind_;
    const OpenQuote openQuote_;
    Prompts& prompts_;
};

} // namespace busquill
