#include "cli/input.h"

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
#include <filesystem>

namespace busquill::cli {

namespace {

FileHandle CopyOf(std::FILE* input, const std::string& name) {
    FileHandle copy = TemporaryFile("").Create();
    std::array<char, std::size_t{1} << 16> buffer;
    while (copy) {
        const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), input);
        EndIfInterrupted();
        if (count == 0) {
            break;
        }
        if (std::fwrite(buffer.data(), 1, count, copy.get()) != count) {
            copy.reset();
        }
    }
    if (!copy || std::ferror(input) != 0 || std::fflush(copy.get()) != 0) {
        Fail(name + " cannot be read");
    }
    return copy;
}

} // namespace

TextReader OpenInput(const std::string& path) {
    TextReader reader;
    if (path == "-") {
        reader.Take(CopyOf(stdin, "standard input"));
        return reader;
    }
    FileHandle file(std::fopen(path.c_str(), "rb"));
    std::error_code unknown;
    if (file && std::filesystem::is_directory(path, unknown)) {
        file.reset(); // opens, but cannot be read
        errno = EISDIR;
    }
    if (!file) {
        Fail(Printf("Error opening file %s. %s.", path.c_str(), std::strerror(errno)));
    }
    const bool isPipe = !std::filesystem::is_regular_file(path, unknown);
    reader.Take(isPipe ? CopyOf(file.get(), path) : std::move(file));
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

const SampleRows* TraceInput::NextRows() {
    EndIfInterrupted();
    const SampleRows* rows = stream_.NextRows();
    WarnIfCutOff(stream_.CutOff());
    Check(stream_.Wrong());
    return rows;
}

void TraceInput::RequireZoom(const TraceSurvey& survey) const {
    if (!survey.hasZoom) {
        throw ExitRequest{ExitStatus::NothingFound, name_ + " has no Power Zoom samples"};
    }
}

std::string TimesAreShort(const std::string& name) {
    return name + ": samples of the capture are missing, and so are their times in the sums";
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
