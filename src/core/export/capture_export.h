#pragma once

#include "export/export_signals.h"
#include "export/sample_period.h"
#include "export/session_file.h"
#include "export/value_dump.h"
#include "export/value_table.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace busquill {

class TraceSetup;

enum class ExportFormat { Dump, Table, Session };

struct ExportFileType {
    ExportFormat format;
    const char* extension; // without the point
    const char* name;
};
constexpr std::array<ExportFileType, 3> exportFileTypes = {{
    {ExportFormat::Dump, "vcd", "Value Change Dump"},
    {ExportFormat::Table, "csv", "Comma Separated Values"},
    {ExportFormat::Session, "sr", "Session File"},
}};

/// The format of a file by the end of its name: .vcd, .csv or .sr.
[[nodiscard]] std::optional<ExportFormat> ExportFormatOf(std::string_view path);

/// Beside a dump, the file that sets up its viewer.
[[nodiscard]] std::string ViewerPathOf(const std::string& dumpPath);

/// A capture in the format of another program. Takes the samples in order, in pieces of any size.
class CaptureExport {
public:
    struct Capture {
        const CSignalList& list; // of the signals; outlives the export
        ListUse use = ListUse::Wave;
        const TraceSetup& setup; // for the clock of the samples
        std::string description;
        bool zoom = false;        // Power Zoom samples
        bool changesOnly = false; // only in a table
    };
    /// Takes bytes of the file; false on failure.
    using Sink = std::function<bool(std::string_view)>;

    CaptureExport(ExportFormat format, const Capture& capture);
    CaptureExport(const CaptureExport&) = delete;
    CaptureExport& operator=(const CaptureExport&) = delete;

    /// Whether all samples must go through Survey before Begin: a session file begins with their
    /// rate, which the setup does not tell if they follow the bus clock.
    [[nodiscard]] bool NeedsSurvey() const noexcept;
    void Survey(const SampleRows& rows);

    // Each returns false when the sink has failed. The sink is called only by these.

    [[nodiscard]] bool Begin(Sink sink);
    [[nodiscard]] bool Add(const SampleRows& rows);
    [[nodiscard]] bool End();

    /// Whether samples are missing between those added, so that times are too short.
    [[nodiscard]] bool HasGaps() const noexcept { return run_.hasGaps; }
    /// Why the file shows samples and no times, as a sentence without capital and point; empty if
    /// it shows times.
    [[nodiscard]] std::string ClockNote() const;
    /// The viewer's file for a dump that has ended; see ValueDump.
    [[nodiscard]] std::string ViewerFile(std::string_view dumpPath,
                                         std::string_view viewerPath) const;

private:
    /// Samples by their numbers.
    struct Run {
        std::optional<std::int64_t> last;
        bool hasGaps = false;

        void Take(const SampleRows& rows);
    };

    [[nodiscard]] bool Put(std::string_view bytes) const;
    [[nodiscard]] bool BeginSession();
    [[nodiscard]] bool InSession(const std::function<bool()>& write);

    const ExportFormat format_;
    const Capture capture_;
    bool hasClock_ = true; // whether the setup tells the samples' rate
    Sink sink_;
    bool takes_ = false; // whether the sink takes bytes of the session file now
    Run run_;
    std::optional<ValueDump> dump_;
    std::optional<ValueTable> table_;
    std::unique_ptr<SessionFile> session_;
    std::optional<std::int64_t> period_; // of the samples, in picoseconds
    std::optional<PeriodCheck> steady_;
    SteadyPeriod surveyed_;
    Run surveyedRun_;
};

} // namespace busquill
