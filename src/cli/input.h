#pragma once

#include "capture/trace_stream.h"
#include "cli/rows_ahead.h"

#include <optional>
#include <string>

namespace busquill::cli {

class Output;

/// Opens a file; "-" is standard input, which is copied to an unnamed file, since captures are read
/// more than once. Throws ExitRequest when it cannot be opened.
[[nodiscard]] TextReader OpenInput(const std::string& path);

/// A trace file of the command line. Its functions throw ExitRequest for an invalid file.
class TraceInput {
public:
    /// The tables outlive the input.
    TraceInput(const std::string& path, SignalTables& tables);

    [[nodiscard]] TraceStream& Stream() noexcept { return stream_; }
    /// The name of the file in messages.
    [[nodiscard]] const std::string& Name() const noexcept { return name_; }
    void ReadHead();
    [[nodiscard]] TraceSurvey Survey();
    /// Throws ExitRequest if there are no Power Zoom samples.
    void RequireZoom(const TraceSurvey& survey) const;
    /// From now on NextRows returns what a second thread has read meanwhile. Until it returns null
    /// the stream is not to be used. Worth it where a command works long on each sample.
    void ReadAhead();
    [[nodiscard]] const SampleRows* NextRows();
    /// Copies the file's bytes from one offset to another, at most to its end; returns how many.
    /// Afterwards the stream has no position: call ReadHead next.
    std::uint64_t CopyBytes(std::uint64_t from, std::uint64_t to, Output& output);

private:
    void Check(const std::string& wrong) const;
    void WarnIfCutOff(bool isCutOff);

    std::string name_;
    TextReader file_;
    TraceStream stream_;
    std::optional<RowsAhead> ahead_; // reads the stream
    bool cutOffReported_ = false;
};

/// Reads what precedes the samples of a capture that is reported on, and warns if there are none: a
/// file that was cut off early looks like an empty capture.
void ReadReportedHead(TraceInput& input);

/// The warning that times and counts are too small because samples are missing.
[[nodiscard]] std::string SamplesAreMissing(const std::string& name);

/// The Power Zoom samples with their numbers.
[[nodiscard]] SampleRows ZoomRowsOf(const TraceSurvey& survey);

} // namespace busquill::cli
