#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// Reads a text file line by line. A line ends in a line feed, with or without a carriage return
/// before it, or at the end of the file.
class TextReader {
public:
    /// Lines longer than this are cut: no file of the program has one, and a file that is no text
    /// must not take memory by its size.
    static constexpr std::size_t maxLine = std::size_t{1} << 20;

    /// Opens a regular file; false for anything else, and when it cannot be read.
    [[nodiscard]] bool Open(const std::string& path);
    /// The next line without its end; valid until the next call. Nothing at the end of the file.
    [[nodiscard]] std::optional<std::string_view> ReadLine();

private:
    struct Closer {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    bool Refill();

    std::unique_ptr<std::FILE, Closer> file_;
    std::vector<char> buffer_;
    std::size_t next_ = 0; // unread bytes are buffer_[next_] to buffer_[end_ - 1]
    std::size_t end_ = 0;
    std::string joined_; // a line that lay across two fillings of the buffer
};

/// Writes a text file. Failures are remembered until Close. Without a Close the file is closed by
/// the destructor, and nobody hears of a failure.
class TextWriter {
public:
    /// Creates the file anew.
    [[nodiscard]] bool Create(const std::string& path);
    void Write(std::string_view text);
    /// Whether everything has reached the file.
    [[nodiscard]] bool Close();

private:
    struct Closer {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> file_;
    bool failed_ = false;
};

} // namespace busquill
