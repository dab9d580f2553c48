#pragma once

#include "platform/text_file.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace busquill::cli {

struct Arguments;

/// Where a command's data go: standard output, or a file that is in its place only when it is
/// whole. Throws ExitRequest when they cannot be written; quietly where nobody reads any more.
class Output {
public:
    /// An empty path and "-" are standard output.
    explicit Output(const std::string& path);

    void Write(std::string_view text);
    /// Everything is out, and the file in its place.
    void Close();
    /// The same, but a file of nothing is none: it does not come into its place.
    void CloseUnlessNothing(bool isSomething);

private:
    void Flush();

    std::string path_; // empty: standard output
    TextWriter file_;
    std::string buffer_;
};

/// Throws ExitRequest where a target is one of the files that the command reads, unless the user
/// allows that. A pipe or a device may be both.
void CheckTarget(const Arguments& arguments, const std::string& path);

/// How far a long command is, in hundredths, on standard error while that is a terminal. The line
/// goes with the object.
class Progress {
public:
    Progress(const char* what, std::int64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void At(std::int64_t done);

private:
    const char* what_;
    std::int64_t total_;
    bool shown_ = false;
    int last_ = -1;
    const bool terminal_;
};

/// A line for the user on standard error.
void Say(const std::string& text);

/// Text in quotes, as JSON has it.
[[nodiscard]] std::string JsonText(std::string_view text);
} // namespace busquill::cli
