#include "platform/text_file.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace busquill {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 18;

std::string_view WithoutCarriageReturn(std::string_view line) {
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace

bool TextReader::Open(const std::string& path) {
    next_ = end_ = 0;
    file_.reset();
    // A directory opens for reading but holds no text; a pipe or a device may have no end.
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(path, unknown)) {
        return false;
    }
    file_.reset(std::fopen(path.c_str(), "rb"));
    if (!file_) {
        return false;
    }
    buffer_.resize(bufferSize);
    return true;
}

bool TextReader::Refill() {
    next_ = 0;
    end_ = file_ ? std::fread(buffer_.data(), 1, buffer_.size(), file_.get()) : 0;
    return end_ != 0;
}

std::optional<std::string_view> TextReader::ReadLine() {
    joined_.clear();
    bool inLine = false;
    while (next_ != end_ || Refill()) {
        const char* start = buffer_.data() + next_;
        const std::size_t unread = end_ - next_;
        const auto* feed = static_cast<const char*>(std::memchr(start, '\n', unread));
        const std::size_t length =
            feed != nullptr ? static_cast<std::size_t>(feed - start) : unread;
        next_ += feed != nullptr ? length + 1 : length;
        if (feed != nullptr && !inLine) {
            return WithoutCarriageReturn({start, length});
        }
        joined_.append(start, std::min(length, maxLine - joined_.size()));
        inLine = true;
        if (feed != nullptr) {
            return WithoutCarriageReturn(joined_);
        }
    }
    if (inLine) {
        return WithoutCarriageReturn(joined_);
    }
    return std::nullopt;
}

bool TextWriter::Create(const std::string& path) {
    file_.reset(std::fopen(path.c_str(), "wb"));
    failed_ = false;
    return file_ != nullptr;
}

void TextWriter::Write(std::string_view text) {
    failed_ =
        failed_ || !file_ || std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size();
}

bool TextWriter::Close() {
    return file_ && std::fclose(file_.release()) == 0 && !failed_;
}

} // namespace busquill
