#include "cli/capture_report.h"

#include "cli/exit_request.h"
#include "cli/json.h"
#include "cli/side_by_side.h"
#include "document/csv_line.h"

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
        if (!heading_.empty()) {
            result_.Write(heading_);
            heading_.clear();
        }
        result_.Write(text);
    }

private:
    TextSink& result_;
    std::string heading_;
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
      output_(options.output.path), anyFailed_(list_.isIncomplete) {}

void CaptureReport::WriteCsvTitles(const std::string& titles) {
    output_.Write((list_.isOneFile ? "" : "file,") + titles + "\n");
}

void CaptureReport::ForEach(const Job& job, const std::string& textTitles) {
    if (!list_.isOneFile) {
        ForEachOfMany(job, textTitles);
        return;
    }
    output_.Write(textTitles);
    anyFound_ = job({list_.files.front(), true}, output_);
    anyRead_ = true;
}

void CaptureReport::ForEachOfMany(const Job& job, const std::string& textTitles) {
    std::vector<Outcome> outcomes(list_.files.size(), Outcome::Failed); // each of its own thread
    const auto report = [&](std::size_t number, TextSink& result) {
        if (isText_) {
            Headed headed(result, "File: " + list_.files[number] + "\n" + textTitles);
            outcomes[number] = OutcomeOf(job, number, headed);
        } else {
            outcomes[number] = OutcomeOf(job, number, result);
        }
    };
    Progress progress("Captures", static_cast<std::int64_t>(list_.files.size()),
                      ShowsProgress(options_.output));
    RunSideBySide(list_.files.size(), static_cast<std::size_t>(options_.jobs), output_,
                  isText_ ? "\n" : "", report,
                  [&](std::size_t done) { progress.At(static_cast<std::int64_t>(done)); });
    for (const Outcome outcome : outcomes) {
        anyFailed_ = anyFailed_ || outcome == Outcome::Failed;
        anyRead_ = anyRead_ || outcome != Outcome::Failed;
        anyFound_ = anyFound_ || outcome == Outcome::Found;
    }
}

CaptureReport::Outcome CaptureReport::OutcomeOf(const Job& job, std::size_t number,
                                                TextSink& result) {
    const std::string& path = list_.files[number];
    try {
        return job({path, false}, result) ? Outcome::Found : Outcome::Nothing;
    } catch (const Interruption&) {
        throw;
    } catch (const ExitRequest& request) {
        if (request.status == ExitStatus::WrongUse) {
            WrongUse(path + ": " + request.message); // concerns the others too
        }
        Say(request.message);
        return Outcome::Failed;
    }
}

int CaptureReport::End(const char* nothing) {
    output_.CloseOrDiscard(anyFound_);
    if (anyRead_ && !anyFound_) {
        Say(nothing);
    }
    if (anyFailed_) {
        return ExitStatus::Failure;
    }
    return anyFound_ ? ExitStatus::Done : ExitStatus::NothingFound;
}

} // namespace busquill::cli
