/// Documents whose files are lists of records: a key and its values in each line, beginning with
/// the type of the file and its version.
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

/// The type line of a document type's files, the name that messages use for them, and the end of
/// their lines.
struct RecordFileKind {
    std::string_view fileType; // "Master File"
    std::string_view name;     // "master"
    std::string_view lineEnd = "\r\n";
};

/// How a reader treats a line that ends inside a quoted value.
enum class OpenQuote {
    GoesOn, // the value continues in the next line
    /// The value ends there with the line end, and the next line is lost. If no line follows, the
    /// line is split once more and its fields are appended again.
    DropsNextLine,
};

class RecordWriter {
public:
    RecordWriter(TextWriter& file, std::string_view lineEnd) : file_(file), lineEnd_(lineEnd) {}
    /// Values of digits alone are written without quotes, others in double quotes.
    void Write(std::span<const std::string_view> fields);
    void Write(std::initializer_list<std::string_view> fields) {
        Write(std::span(fields.begin(), fields.size()));
    }
    void WriteEmptyLine();
    /// For content in another form.
    [[nodiscard]] TextWriter& File() const noexcept { return file_; }

private:
    TextWriter& file_;
    const std::string_view lineEnd_;
};

class RecordDocument : public CDocument {
public:
    RecordDocument(RecordFileKind kind, OpenQuote openQuote, Prompts& prompts)
        : kind_(kind), openQuote_(openQuote), prompts_(prompts) {}

    /// Rejects a file of another type or version with a message that names this kind of file.
    bool OnOpenDocument(const std::string& path) override;
    /// The old file is replaced only when the new one is complete.
    bool OnSaveDocument(const std::string& path) override;

protected:
    [[nodiscard]] Prompts& Messages() const noexcept { return prompts_; }

    /// Called before the first record of a file.
    virtual void BeginReading() {}
    /// Called for each record, which begins with its key, except type and version. Whether the file
    /// is of the right kind is known only at its end, so most derived classes keep it aside.
    virtual void TakeRecord(const std::vector<std::string>& fields, TextReader& file) = 0;
    /// Called after the last record if type and version are right: the records kept aside are taken
    /// over.
    virtual void EndReading() = 0;
    /// Called instead of EndReading if the type or the version, `what`, is wrong. Reports it.
    virtual void Refuse(const char* what, const std::string& found);
    /// Writes all records except type and version.
    virtual void WriteRecords(RecordWriter& writer) const = 0;

private:
    const RecordFileKind kind_;
    const OpenQuote openQuote_;
    Prompts& prompts_;
};

} // namespace busquill
