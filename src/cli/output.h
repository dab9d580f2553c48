#pragma once

#include "platform/text_file.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace busquill::cli {

/// The options that say where results go.
struct OutputOptions {
    std::string path; // empty: standard output
    bool overwrite = false;
};

/// Takes the text of a result.
class TextSink {
public:
    TextSink() = default;
    virtual ~TextSink() = default;
    TextSink(const TextSink&) = delete;
    TextSink& operator=(const TextSink&) = delete;

    virtual void Write(std::string_view text) = 0;
};

/// Where a command's data go: standard output, or a file that replaces the old one only when it is
/// complete. Throws ExitRequest when they cannot be written, without a message if the reader has
/// closed the pipe.
class Output final : public TextSink {
public:
    /// An empty path and "-" mean standard output.
    explicit Output(const std::string& path);

    void Write(std::string_view text) override;
    /// Writes what is left and puts the file in its place.
    void Close();
    /// The same if `keep`; otherwise the file is discarded.
    void CloseOrDiscard(bool keep);

private:
    void Flush();

    std::string path_; // empty: standard output
    TextWriter file_;
    std::string buffer_;
};

/// Throws ExitRequest if the target is one of the files that the command reads, unless the user
/// allows overwriting. A pipe or a device may be both.
void CheckTarget(const OutputOptions& target, const std::vector<std::string>& read);

/// Shows the progress of a long command in percent on standard error, if that is a terminal and
/// the progress is wanted. The destructor erases the line. One at a time is wanted.
class Progress {
public:
    Progress(const char* what, std::int64_t total, bool isWanted = true);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void At(std::int64_t done);

private:
    const char* what_;
    std::int64_t total_;
    int last_ = -1;
    const bool isShown_;
};

/// The name with which the lines for the user begin.
void SetProgramName(const std::string& name);
/// Prints a line for the user on standard error. Any thread.
void Say(const std::string& text);

} // namespace busquill::cli
