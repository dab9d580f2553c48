#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

/// Reads a text file line by line. A line ends in a line feed, with or without a carriage return
/// before it, or at the end of the file.
class TextReader {
public:
    /// Longer lines are cut. None of the program's files has one, and a binary file must not take
    /// memory according to its size.
    static constexpr std::size_t maxLine = std::size_t{1} << 20;

    /// Opens a regular file; false for anything else, and when it cannot be read.
    [[nodiscard]] bool Open(const std::string& path);
    /// Reads a file that is already open, from its beginning.
    void Take(FileHandle file);
    /// Goes back to the beginning.
    void Rewind();
    /// The next line without its end; valid until the next call. Nothing at the end of the file.
    [[nodiscard]] std::optional<std::string_view> ReadLine();
    /// Where in the file the last line that was read begins.
    [[nodiscard]] std::uint64_t LineStart() const noexcept { return lineStart_; }
    /// How many bytes of the file have been read.
    [[nodiscard]] std::uint64_t Position() const noexcept { return bufferStart_ + next_; }
    /// Whether a read has failed since the file was opened; its lines then ended early.
    [[nodiscard]] bool Failed() const noexcept;

    /// The buffered bytes, many lines or part of one; empty at the end of the file. `readable` more
    /// bytes after them may be accessed; their content is undefined.
    [[nodiscard]] std::string_view AtHand();
    static constexpr std::size_t readable = 128;
    /// Consumes bytes returned by AtHand, up to the end of a line.
    void Skip(std::size_t count) noexcept { next_ += count; }

private:
    bool Refill();

    FileHandle file_;
    std::uint64_t bufferStart_ = 0; // where in the file the buffer begins
    std::uint64_t lineStart_ = 0;
    std::vector<char> buffer_; // `readable` bytes longer than its content
    std::size_t next_ = 0;     // unread bytes are buffer_[next_] to buffer_[end_ - 1]
    std::size_t end_ = 0;
    std::string joined_; // a line split across two fills of the buffer
};

/// Writes a text file. Failures are reported by Close, and by Failed as soon as they are known.
/// Without a Close, the destructor closes the file and failures go unreported.
class TextWriter {
public:
    TextWriter() = default;
    /// Removes a file made by CreateBeside that was not closed.
    ~TextWriter();
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;

    /// Creates the file, replacing an old one. False on failure.
    [[nodiscard]] bool Create(const std::string& path);
    /// Creates a temporary file beside the target. Close puts it in the target's place when it is
    /// complete and on the disk, with the permissions of the old file. Links are kept; a device or
    /// a pipe is written directly. False when the target may not be written or the file cannot be
    /// created.
    [[nodiscard]] bool CreateBeside(const std::string& path);
    void Write(std::string_view text);
    /// Whether a write has failed. The last bytes may still be on their way until Close.
    [[nodiscard]] bool Failed() const noexcept { return failed_; }
    /// Closes the file. Returns whether everything was written and the file is in its place.
    [[nodiscard]] bool Close();

private:
    void Discard();

    FileHandle file_;
    std::string target_;    // empty unless created by CreateBeside
    std::string temporary_; // the file beside the target
    bool failed_ = false;
};

} // namespace busquill
