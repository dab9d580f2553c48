#include "cli/output.h"

#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "platform/text.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <unistd.h>

namespace busquill::cli {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 16;

std::string programName; // before each line for the user

constexpr const char* eraseLine = "\r\033[K";
std::atomic<bool> progressIsShown = false; // in the terminal's current line

[[noreturn]] void CannotWrite(const std::string& path) {
    Fail(Printf("Error writing file %s.", path.c_str()));
}

} // namespace

Output::Output(const std::string& path) : path_(path == "-" ? "" : path) {
    if (!path_.empty() && !file_.CreateBeside(path_)) {
        Fail(Printf("Error creating file %s.", path_.c_str()));
    }
}

void Output::Write(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() >= bufferSize) {
        Flush();
    }
}

void Output::Flush() {
    EndIfInterrupted();
    if (!path_.empty()) {
        file_.Write(buffer_);
        if (file_.Failed()) { // a full disk does not become empty before the end
            CannotWrite(path_);
        }
    } else if (std::fwrite(buffer_.data(), 1, buffer_.size(), stdout) != buffer_.size()) {
        // A reader that closes the pipe early does not count as a failure.
        throw ExitRequest{errno == EPIPE ? ExitStatus::Done : ExitStatus::Failure,
                          errno == EPIPE ? "" : "standard output cannot be written"};
    }
    buffer_.clear();
}

void Output::Close() {
    Flush();
    if (!path_.empty()) {
        if (!file_.Close()) {
            CannotWrite(path_);
        }
    } else if (std::fflush(stdout) != 0) {
        throw ExitRequest{errno == EPIPE ? ExitStatus::Done : ExitStatus::Failure,
                          errno == EPIPE ? "" : "standard output cannot be written"};
    }
}

void Output::CloseOrDiscard(bool keep) {
    if (keep || path_.empty()) {
        Close();
    }
}

void CheckTarget(const OutputOptions& target, const std::vector<std::string>& read) {
    std::error_code unknown;
    if (target.overwrite || !std::filesystem::is_regular_file(target.path, unknown)) {
        return;
    }
    const bool isRead = std::ranges::any_of(read, [&](const std::string& each) {
        return std::filesystem::equivalent(each == "-" ? "/dev/stdin" : each, target.path, unknown);
    });
    if (isRead) {
        WrongUse(target.path + " is read, and would be replaced; --overwrite allows that");
    }
}

Progress::Progress(const char* what, std::int64_t total, bool isWanted)
    : what_(what), total_(total), isShown_(isWanted && ::isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
    if (isShown_ && progressIsShown.exchange(false)) {
        std::fputs(eraseLine, stderr);
    }
}

void Progress::At(std::int64_t done) {
    const int percent = total_ > 0 ? static_cast<int>(done * 100 / total_) : 100;
    if (isShown_ && percent != last_) {
        progressIsShown = true; // before, since another thread may say something
        std::fprintf(stderr, "\r%s %d%%", what_, percent);
        std::fflush(stderr);
        last_ = percent;
    }
}

void SetProgramName(const std::string& name) {
    programName = name;
}

void Say(const std::string& text) {
    std::fprintf(stderr, "%s%s: %s\n", progressIsShown.exchange(false) ? eraseLine : "",
                 programName.c_str(), text.c_str());
}

} // namespace busquill::cli
