#include "platform/text_file.h"

#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#include <unistd.h>
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

/// The file that a path leads to after all symbolic links, whether it exists or not; writing it
/// keeps the links. Empty for a cycle of links.
std::string TargetOfLinks(std::filesystem::path path) {
    constexpr int most = 40;
    std::error_code unknown;
    for (int i = 0; i < most; ++i) {
        if (!std::filesystem::is_symlink(path, unknown)) {
            return path.string();
        }
        const auto next = std::filesystem::read_symlink(path, unknown);
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    return {};
}

/// Whether an existing file may be written. Does not change it.
bool MayWrite(const std::string& path) {
    return FileHandle(std::fopen(path.c_str(), "ab")) != nullptr;
}

/// Creates a new file with the target's name and a suffix, and sets `name`. Null on failure.
std::FILE* MakeBeside(const std::string& target, std::string& name) {
    constexpr int tries = 100;
    std::random_device random;
    for (int i = 0; i < tries; ++i) {
        name = Printf("%s.part-%08x", target.c_str(), random());
        if (std::FILE* file = std::fopen(name.c_str(), "wbx")) {
            return file;
        }
        if (errno != EEXIST) {
            return nullptr;
        }
    }
    return nullptr;
}

/// Syncs the file to the disk. Some file systems do not support that, which does not count as a
/// failure.
bool ReachesDisk(std::FILE* file) {
    return std::fflush(file) == 0 && (::fsync(::fileno(file)) == 0 || errno == EINVAL);
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
    std::setvbuf(file_.get(), nullptr, _IONBF, 0); // we buffer ourselves
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
    const std::string target = TargetOfLinks(path);
    std::error_code unknown;
    const auto present = std::filesystem::status(target, unknown);
    const bool exists = std::filesystem::exists(present);
    if (target.empty() || std::filesystem::is_directory(present)) {
        return false;
    }
    if (exists && !std::filesystem::is_regular_file(present)) {
        return Create(target); // a device or a pipe is written to, not replaced
    }
    if (exists && !MayWrite(target)) {
        return false;
    }
    Discard();
    failed_ = false;
    file_.reset(MakeBeside(target, temporary_)); // unique, in case others write to the target too
    if (!file_) {
        temporary_.clear();
        return false;
    }
    target_ = target;
    if (exists) {
        std::filesystem::permissions(temporary_, present.permissions(), unknown);
    }
    return true;
}

void TextWriter::Write(std::string_view text) {
    failed_ =
        failed_ || !file_ || std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size();
}

bool TextWriter::Close() {
    bool whole = file_ && !failed_;
    // Otherwise a power cut soon afterwards might leave neither the old file nor the new one.
    whole = whole && (target_.empty() || ReachesDisk(file_.get()));
    whole = file_ && std::fclose(file_.release()) == 0 && whole;
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
