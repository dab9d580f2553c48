#include "platform/text_file.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <utility>

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
    file_.reset();
    // A directory opens for reading but holds no text; a pipe or a device may have no end.
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(path, unknown)) {
        return false;
    }
    FileHandle file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        return false;
    }
    Take(std::move(file));
    return true;
}

void TextReader::Take(FileHandle file) {
    file_ = std::move(file);
    std::setvbuf(file_.get(), nullptr, _IONBF, 0); // the buffer is here
    buffer_.resize(bufferSize + readable);
    Rewind();
}

void TextReader::Rewind() {
    std::rewind(file_.get());
    next_ = end_ = 0;
    bufferStart_ = lineStart_ = 0;
}

bool TextReader::Failed() const noexcept {
    return file_ && std::ferror(file_.get()) != 0;
}

bool TextReader::Refill() {
    bufferStart_ += end_;
    next_ = 0;
    end_ = file_ ? std::fread(buffer_.data(), 1, bufferSize, file_.get()) : 0;
    return end_ != 0;
}

std::string_view TextReader::AtHand() {
    if (next_ == end_ && !Refill()) {
        return {};
    }
    return {buffer_.data() + next_, end_ - next_};
}

std::optional<std::string_view> TextReader::ReadLine() {
    joined_.clear();
    lineStart_ = bufferStart_ + next_;
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

TextWriter::~TextWriter() {
    Discard();
}

bool TextWriter::Create(const std::string& path) {
    Discard();
    file_.reset(std::fopen(path.c_str(), "wb"));
    failed_ = false;
    return file_ != nullptr;
}

bool TextWriter::CreateBeside(const std::string& path) {
    // A device or a pipe is written to, not replaced, and a link stays a link.
    std::error_code unknown;
    if (std::filesystem::exists(path, unknown) &&
        !std::filesystem::is_regular_file(path, unknown)) {
        return Create(path);
    }
    const std::string target = std::filesystem::is_symlink(path, unknown)
                                   ? std::filesystem::weakly_canonical(path, unknown).string()
                                   : path;
    if (target.empty()) {
        return false;
    }
    const std::string beside = target + ".part";
    if (!Create(beside)) {
        return false;
    }
    target_ = target;
    temporary_ = beside;
    return true;
}

void TextWriter::Write(std::string_view text) {
    failed_ =
        failed_ || !file_ || std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size();
}

bool TextWriter::Close() {
    bool whole = file_ && std::fclose(file_.release()) == 0 && !failed_;
    if (whole && !target_.empty()) {
        whole = std::rename(temporary_.c_str(), target_.c_str()) == 0;
        if (whole) {
            temporary_.clear();
        }
    }
    Discard();
    return whole;
}

void TextWriter::Discard() {
    file_.reset();
    if (!temporary_.empty()) {
        std::remove(temporary_.c_str());
    }
    temporary_.clear();
    target_.clear();
}

} // namespace busquill
