#pragma once

#include <string>
#include <string_view>

namespace busquill::cli::board {

/// Results on standard output, each at once, so that whoever reads a pipe sees them as they come.
class LineOutput {
public:
    /// Writes a line, without its end.
    void Print(std::string_view line);
    /// Writes bytes as they are.
    void Write(std::string_view bytes);

    /// False when nothing more can be written: the reader has closed its end, or the disk is full.
    [[nodiscard]] bool IsOpen() const noexcept { return error_ == 0; }
    /// Throws ExitRequest if something could not be written; a reader that has closed the pipe does
    /// not count as a failure.
    void Close() const;

private:
    int error_ = 0; // errno of a write that failed
};

} // namespace busquill::cli::board
