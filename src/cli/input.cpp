#include "cli/input.h"

#include "capture/missing_samples.h"
#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/temporary_file.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace busquill::cli {

namespace {

/// Waits until there is something to read, or the end. A pipe may have nobody who writes, and the
/// thread of another capture does not get the signal of an interrupt.
void WaitForInput(int input) {
    constexpr int period = 100; // ms
    pollfd polled{input, POLLIN, 0};
    do {
        EndIfInterrupted();
    } while (::poll(&polled, 1, period) <= 0);
}

FileHandle CopyOf(int input, const std::string& name) {
    FileHandle copy = TemporaryFile("").Create();
    std::array<char, std::size_t{1} << 16> buffer;
    while (true) {
        WaitForInput(input);
        const ssize_t count = ::read(input, buffer.data(), buffer.size());
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
            continue;
        }
        if (count < 0) {
            Fail(name + " cannot be read");
        }
        if (count == 0) {
            break;
        }
        const auto bytes = static_cast<std::size_t>(count);
        if (std::fwrite(buffer.data(), 1, bytes, copy.get()) != bytes) {
            Fail("a temporary file cannot be written");
        }
    }
    if (std::fflush(copy.get()) != 0) {
        Fail("a temporary file cannot be written");
    }
    return copy;
}

/// A copy of a pipe, a device or the like, which is opened without waiting for somebody who writes.
/// Null if it cannot be opened.
FileHandle CopyOfPipe(const std::string& path) {
    const int input = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (input < 0) {
        return nullptr;
    }
    const FileHandle file(::fdopen(input, "rb"));
    return CopyOf(input, path);
}

} // namespace

TextReader OpenInput(const std::string& path) {
    namespace fs = std::filesystem;
    TextReader reader;
    if (path == "-") {
        reader.Take(CopyOf(STDIN_FILENO, "standard input"));
        return reader;
    }
    std::error_code unknown;
    const fs::file_status status = fs::status(path, unknown);
    FileHandle file;
    if (fs::is_directory(status)) {
        errno = EISDIR; // opens, but cannot be read
    } else if (fs::exists(status) && !fs::is_regular_file(status)) {
        file = CopyOfPipe(path);
    } else {
        file.reset(std::fopen(path.c_str(), "rb"));
    }
    if (!file) {
        Fail(Printf("Error opening file %s. %s.", path.c_str(), std::strerror(errno)));
    }
    reader.Take(std::move(file));
    return reader;
}

TraceInput::TraceInput(const std::string& path, SignalTables& tables)
    : name_(path == "-" ? "standard input" : path), file_(OpenInput(path)), stream_(file_, tables) {
}

void TraceInput::Check(const std::string& wrong) const {
    if (!wrong.empty()) {
        Fail(name_ + ": " + wrong);
    }
}

void TraceInput::ReadHead() {
    Check(stream_.ReadHead());
}

void TraceInput::WarnIfCutOff(bool isCutOff) {
    if (isCutOff && !cutOffReported_) {
        cutOffReported_ = true;
        Say(name_ + " ends before its samples do");
    }
}

TraceSurvey TraceInput::Survey() {
    TraceSurvey survey;
    Check(stream_.Survey(survey));
    WarnIfCutOff(survey.cutOff);
    return survey;
}

void TraceInput::ReadAhead() {
    WarnIfCutOff(stream_.CutOff());
    try {
        ahead_.emplace([this] { return stream_.NextRows(); });
    } catch (const std::system_error&) {
        // The system has no more threads: this one reads.
    }
}

const SampleRows* TraceInput::NextRows() {
    EndIfInterrupted();
    const SampleRows* rows = ahead_ ? ahead_->Next() : stream_.NextRows();
    if (ahead_ && rows != nullptr) {
        return rows;
    }
    ahead_.reset();
    WarnIfCutOff(stream_.CutOff());
    Check(stream_.Wrong());
    return rows;
}

void TraceInput::RequireZoom(const TraceSurvey& survey) const {
    if (!survey.hasZoom) {
        throw ExitRequest{ExitStatus::NothingFound, name_ + " has no Power Zoom samples"};
    }
}

void ReadReportedHead(TraceInput& input) {
    input.ReadHead();
    const TraceStream& stream = input.Stream();
    if (!stream.HasSamples() || stream.Last() < stream.First()) {
        Say(input.Name() + " has no samples");
    }
}

std::string SamplesAreMissing(const std::string& name) {
    return name + ": samples of the capture " + areMissing;
}

SampleRows ZoomRowsOf(const TraceSurvey& survey) {
    SampleRows rows;
    for (std::size_t i = 0; i < survey.zoom.size(); ++i) {
        rows.Add(static_cast<std::int32_t>(zoomFirstNumber + static_cast<std::int64_t>(i)),
                 survey.zoom[i]);
    }
    return rows;
}

std::uint64_t TraceInput::CopyBytes(std::uint64_t from, std::uint64_t to, Output& output) {
    file_.Rewind();
    std::uint64_t at = 0;
    std::uint64_t copied = 0;
    while (at < to) {
        const std::string_view bytes = file_.AtHand();
        if (bytes.empty()) {
            break;
        }
        const std::uint64_t end = std::min<std::uint64_t>(at + bytes.size(), to);
        if (end > from) {
            const std::uint64_t begin = std::max(at, from);
            output.Write(bytes.substr(begin - at, end - begin));
            copied += end - begin;
        }
        at += bytes.size();
        file_.Skip(bytes.size());
    }
    return copied;
}

} // namespace busquill::cli
