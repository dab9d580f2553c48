#pragma once

#include "platform/text_file.h"

#include <string>
#include <string_view>

namespace busquill::cli::board {

/// Where results go: to standard output, each at once, so that whoever reads a pipe sees them as
/// they come; or to a file that replaces the old one only when it is complete.
class LineOutput {
public:
    /// Standard output, also for "" and "-". Throws ExitRequest when a file cannot be created.
    explicit LineOutput(const std::string& path = "");

    /// Writes a line, without its end.
    void Print(std::string_view line);
    /// Writes bytes as they are.
    void Write(std::string_view bytes);

    /// False when nothing more can be written to standard output: the reader has closed its end, or
    /// the disk is full. The function of the board is then to be stopped.
    [[nodiscard]] bool IsOpen() const noexcept { return error_ == 0; }
    /// Puts a file in its place. Throws ExitRequest if something could not be written; a reader
    /// that has closed the pipe does not count as a failure.
    void Close();

private:
    std::string path_; // empty: standard output
    TextWriter file_;
    int error_ = 0; // errno of a write that failed
};

} // namespace busquill::cli::board
