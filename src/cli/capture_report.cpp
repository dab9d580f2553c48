#include "cli/capture_report.h"

#include "cli/exit_request.h"
#include "cli/json.h"
#include "cli/side_by_side.h"
#include "document/csv_line.h"
#include "platform/text.h"

#include <algorithm>
#include <unistd.h>
#include <vector>

namespace busquill::cli {

namespace {

FileList ListCaptures(const CapturesOptions& options) {
    FileList list = ListFiles(options.operands, ".tra");
    if (!list.isOneFile && std::ranges::find(list.files, "-") != list.files.end()) {
        WrongUse("standard input is read alone, not beside other captures");
    }
    CheckTarget(options.output, list.files);
    return list;
}

/// Puts a heading before the first text.
class Headed final : public TextSink {
public:
    Headed(TextSink& result, std::string heading) : result_(result), heading_(std::move(heading)) {}

    void Write(std::string_view text) override {
        if (!hasRows_) {
            result_.Write(heading_);
            hasRows_ = true;
        }
        result_.Write(text);
    }
    [[nodiscard]] bool HasRows() const noexcept { return hasRows_; }

private:
    TextSink& result_;
    const std::string heading_;
    bool hasRows_ = false;
};

/// Rows that appear on the terminal show the progress themselves.
bool ShowsProgress(const OutputOptions& output) {
    const bool toStandardOutput = output.path.empty() || output.path == "-";
    return !toStandardOutput || ::isatty(STDOUT_FILENO) == 0;
}

} // namespace

std::string ReportedCapture::CsvBegin() const {
    std::string begin;
    if (!isAlone) {
        AppendCsvCell(begin, path);
        begin += ',';
    }
    return begin;
}

std::string ReportedCapture::JsonBegin() const {
    std::string begin = "{";
    if (!isAlone) {
        begin += "\"file\": ";
        AppendJsonText(begin, path);
        begin += ", ";
    }
    return begin;
}

CaptureReport::CaptureReport(const CapturesOptions& options)
    : options_(options), isText_(FormatOf(options) == Format::Text), list_(ListCaptures(options)),
      output_(options.output.path), reported_(list_.files.size()) {}

void CaptureReport::WriteCsvTitles(const std::string& titles) {
    output_.Write((list_.isOneFile ? "" : "file,") + titles + "\n");
}

void CaptureReport::ForEach(const Job& job, const std::string& textTitles) {
    if (!list_.isOneFile) {
        ForEachOfMany(job, textTitles);
        return;
    }
    output_.Write(textTitles);
    const bool found = job({list_.files.front()}, output_);
    reported_.front().outcome = found ? Outcome::Found : Outcome::Nothing;
}

void CaptureReport::ForEachOfMany(const Job& job, const std::string& textTitles) {
    const auto report = [&](std::size_t number, TextSink& result) {
        Headed headed(result, isText_ ? "File: " + list_.files[number] + "\n" + textTitles : "");
        reported_[number].outcome = OutcomeOf(job, number, headed);
        reported_[number].hasRows = headed.HasRows();
    };
    Progress progress("Captures", static_cast<std::int64_t>(list_.files.size()),
                      ShowsProgress(options_.output));
    RunSideBySide(list_.files.size(), static_cast<std::size_t>(options_.jobs), output_,
                  isText_ ? "\n" : "", report,
                  [&](std::size_t done) { progress.At(static_cast<std::int64_t>(done)); });
}

CaptureReport::Outcome CaptureReport::OutcomeOf(const Job& job, std::size_t number,
                                                TextSink& result) {
    const std::string& path = list_.files[number];
    try {
        return job({path, false, number}, result) ? Outcome::Found : Outcome::Nothing;
    } catch (const Interruption&) {
        throw;
    } catch (const ExitRequest& request) {
        // What is wrong here, such as a name that this capture lacks, may be right in others.
        Say((request.status == ExitStatus::WrongUse ? path + ": " : "") + request.message);
        return Outcome::Failed;
    }
}

void CaptureReport::NotePartlyStored(const ReportedCapture& capture) {
    reported_[capture.number].isPartlyStored = true;
}

void CaptureReport::SayPartlyStored() const {
    const auto first = std::ranges::find_if(reported_, &Reported::isPartlyStored);
    if (first == reported_.end()) {
        return;
    }
    const std::string& path = list_.files[static_cast<std::size_t>(first - reported_.begin())];
    const auto count = std::ranges::count_if(reported_, &Reported::isPartlyStored);
    const std::string who = count == 1
                                ? (path == "-" ? "standard input" : path) + ": its setup does"
                                : Printf("the setups of %td of %zu captures, such as %s, do", count,
                                         reported_.size(), path.c_str());
    Say(who + " not store every sample; what was not stored is missing in the result");
}

bool CaptureReport::Any(Outcome outcome) const noexcept {
    return std::ranges::find(reported_, outcome, &Reported::outcome) != reported_.end();
}

bool CaptureReport::AnyRead() const noexcept {
    return Any(Outcome::Nothing) || Any(Outcome::Found);
}

int CaptureReport::End(const char* nothing) {
    const bool anyFound = Any(Outcome::Found);
    const bool hasRows = anyFound || std::ranges::any_of(reported_, &Reported::hasRows);
    output_.CloseOrDiscard(hasRows);
    SayPartlyStored();
    if (AnyRead() && !hasRows) {
        const std::string& path = options_.output.path;
        const bool isFile = !path.empty() && path != "-";
        const bool isSentence = std::string_view(nothing).ends_with('.');
        Say(isFile ? Printf(isSentence ? "%s %s is not written." : "%s; %s is not written", nothing,
                            path.c_str())
                   : nothing);
    }
    if (list_.isIncomplete || Any(Outcome::Failed)) {
        return ExitStatus::Failure;
    }
    return anyFound ? ExitStatus::Done : ExitStatus::NothingFound;
}

} // namespace busquill::cli
