#pragma once

#include "cli/capture_options.h"
#include "cli/file_list.h"
#include "cli/output.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace busquill::cli {

/// A capture among those of a command. One that is alone is not named in the result.
struct ReportedCapture {
    std::string path;
    bool isAlone = true;
    std::size_t number = 0; // among those of the command

    /// Begins a row of a table with the file, such as "a.tra,"; empty if it is alone.
    [[nodiscard]] std::string CsvBegin() const;
    /// Begins a JSON object: {"file": "a.tra", or the bracket alone.
    [[nodiscard]] std::string JsonBegin() const;
};

/// What a command reports on captures, in the order of its operands. Several are read side by side.
class CaptureReport {
public:
    /// Writes what it finds in one capture. Returns whether it found anything. Runs on any thread
    /// beside others; a capture that cannot be read ends it by an ExitRequest.
    using Job = std::function<bool(const ReportedCapture& capture, TextSink& result)>;

    /// Finds the captures and opens the output.
    explicit CaptureReport(const CapturesOptions& options);

    /// Writes the titles of a table's columns, without the one for the file.
    void WriteCsvTitles(const std::string& titles);
    /// Reads all captures. The others go on after one that fails, which is reported; its rows until
    /// then stay. In the text form each result of many has a heading. `textTitles` are written
    /// before each result.
    void ForEach(const Job& job, const std::string& textTitles = {});
    /// The capture's setup did not store every sample, which is said once for all. Called by its
    /// job.
    void NotePartlyStored(const ReportedCapture& capture);
    [[nodiscard]] bool AnyRead() const noexcept;
    [[nodiscard]] const FileList& Captures() const noexcept { return list_; }
    [[nodiscard]] TextSink& Result() noexcept { return output_; }
    /// Ends the output; `nothing` is said if no capture has anything. Returns the exit status.
    [[nodiscard]] int End(const char* nothing);

private:
    enum class Outcome { Failed, Nothing, Found };
    /// What became of a capture. Written by the thread of its job.
    struct Reported {
        Outcome outcome = Outcome::Failed;
        bool hasRows = false;
        bool isPartlyStored = false;
    };

    void ForEachOfMany(const Job& job, const std::string& textTitles);
    [[nodiscard]] Outcome OutcomeOf(const Job& job, std::size_t number, TextSink& result);
    [[nodiscard]] bool Any(Outcome outcome) const noexcept;
    void SayPartlyStored() const;

    const CapturesOptions& options_;
    const bool isText_;
    const FileList list_;
    Output output_;
    std::vector<Reported> reported_; // by number
};

} // namespace busquill::cli
