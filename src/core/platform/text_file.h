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
    /// Lines longer than this are cut: no file of the program has one, and a file that is no text
    /// must not take memory by its size.
    static constexpr std::size_t maxLine = std::size_t{1} << 20;

    /// Opens a regular file; false for anything else, and when it cannot be read.
    [[nodiscard]] bool Open(const std::string& path);
    /// Reads on in a file that is open already, from its beginning.
    void Take(FileHandle file);
    /// To the beginning again.
    void Rewind();
    /// The next line without its end; valid until the next call. Nothing at the end of the file.
    [[nodiscard]] std::optional<std::string_view> ReadLine();
    /// Where in the file the last line that was read begins.
    [[nodiscard]] std::uint64_t LineStart() const noexcept { return lineStart_; }
    /// Whether reading has failed since the file was opened; its lines then ended early.
    [[nodiscard]] bool Failed() const noexcept;

    /// The bytes that are at hand without another read, many lines or the piece of one; empty at
    /// the end of the file. `readable` more bytes behind them can be read, whatever they hold.
    [[nodiscard]] std::string_view AtHand();
    static constexpr std::size_t readable = 128;
    /// Takes bytes that AtHand gave, which end with a line.
    void Skip(std::size_t count) noexcept { next_ += count; }

private:
    bool Refill();

    FileHandle file_;
    std::uint64_t bufferStart_ = 0; // where in the file the buffer begins
    std::uint64_t lineStart_ = 0;
    std::vector<char> buffer_; // `readable` bytes longer than what is read into it
    std::size_t next_ = 0;     // unread bytes are buffer_[next_] to buffer_[end_ - 1]
    std::size_t end_ = 0;
    std::string joined_; // a line that lay across two fillings of the buffer
};

/// Writes a text file. Failures are remembered until Close. Without a Close the file is closed by
/// the destructor, and nobody hears of a failure.
class TextWriter {
public:
    TextWriter() = default;
    /// A file beside its target that was not closed is removed.
    ~TextWriter();
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;

    /// Creates the file anew.
    [[nodiscard]] bool Create(const std::string& path);
    /// Creates a file beside the target; Close puts it in the target's place when it is whole and
    /// on the disk, with the rights of the file that was there. A target that may not be written is
    /// none; a link stays a link; a device or a pipe is written directly.
    [[nodiscard]] bool CreateBeside(const std::string& path);
    void Write(std::string_view text);
    /// Whether everything has reached the file, and the file its place.
    [[nodiscard]] bool Close();

private:
    void Discard();

    FileHandle file_;
    std::string target_;    // empty unless the file is written beside it
    std::string temporary_; // the file beside the target
    bool failed_ = false;
};

} // namespace busquill
