#include "cli/bus.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/output.h"
#include "cli/range.h"
#include "export/export_signals.h"
#include "export/sample_period.h"
#include "export/session_file.h"
#include "export/value_dump.h"
#include "export/value_table.h"
#include "platform/text.h"
#include "platform/working_directory.h"

#include <algorithm>
#include <filesystem>

namespace busquill::cli {

namespace {

enum class Format { Vcd, Csv, Sr };

constexpr std::array<std::pair<const char*, Format>, 3> formats = {
    {{"vcd", Format::Vcd}, {"csv", Format::Csv}, {"sr", Format::Sr}}};

struct Options {
    std::string file;
    OutputOptions output;
    BusOptions bus;
    NumberRange range;
    bool zoom = false;
    std::optional<Format> format; // otherwise by the ending of the output
    bool changes = false;
};

/// The input of a conversion: samples in order.
class Source {
public:
    Source(const Options& options, TraceInput& input)
        : input_(input), range_(options.range), zoom_(options.zoom) {
        if (zoom_) {
            const TraceSurvey survey = input.Survey();
            input.RequireZoom(survey);
            zoomRows_ = ZoomRowsOf(survey);
        } else {
            input.ReadHead();
        }
    }

    [[nodiscard]] bool IsZoom() const noexcept { return zoom_; }
    [[nodiscard]] TraceStream& Stream() const { return input_.Stream(); }
    [[nodiscard]] ExportList List() const { return ListToExport(Stream(), zoom_); }

    /// Calls `take` for each piece of the samples. Returns whether there are any.
    template <typename Take>
    [[nodiscard]] bool ForEach(Take take) {
        bool any = false;
        last_.reset();
        hasGaps_ = false;
        if (zoom_) {
            return TakePiece(zoomRows_, take);
        }
        const std::int64_t first = Stream().First();
        Progress progress("Converting", Stream().Last() - first + 1);
        while (const SampleRows* rows = input_.NextRows()) {
            progress.At(rows->numbers.back() - first);
            any = TakePiece(*rows, take) || any;
            if (rows->numbers.back() >= range_.to) {
                break;
            }
        }
        return any;
    }

    /// Whether samples are missing between those that ForEach has passed on.
    [[nodiscard]] bool HasGaps() const noexcept { return hasGaps_; }
    [[nodiscard]] const std::string& Name() const noexcept { return input_.Name(); }
    /// Back to the first sample.
    void Rewind() {
        if (!zoom_) {
            input_.ReadHead();
        }
    }

private:
    template <typename Take>
    void Give(const SampleRows& rows, Take take) {
        const std::int64_t first = rows.numbers.front();
        const std::int64_t last = rows.numbers.back();
        hasGaps_ = hasGaps_ || (last_ && first != *last_ + 1) ||
                   last - first + 1 != static_cast<std::int64_t>(rows.Size());
        last_ = last;
        take(rows);
    }

    template <typename Take>
    bool TakePiece(const SampleRows& rows, Take take) {
        if (range_.Has(rows.numbers.front()) && range_.Has(rows.numbers.back())) {
            Give(rows, take);
            return true;
        }
        SampleRows inside;
        for (std::size_t i = 0; i < rows.Size(); ++i) {
            if (range_.Has(rows.numbers[i])) {
                inside.Add(rows.numbers[i], rows.records[i]);
            }
        }
        if (!inside.Empty()) {
            Give(inside, take);
        }
        return !inside.Empty();
    }

    TraceInput& input_;
    const NumberRange range_;
    const bool zoom_;
    SampleRows zoomRows_;
    std::optional<std::int64_t> last_; // the last number that ForEach has passed on
    bool hasGaps_ = false;
};

Format FormatOf(const Options& options) {
    if (options.format) {
        return *options.format;
    }
    const std::string& path = options.output.path;
    for (const auto& [ending, format] : formats) {
        if (ToLower(path).ends_with(std::string(".") + ending)) {
            return format;
        }
    }
    if (path == "-") {
        WrongUse("standard output needs --format vcd, csv or sr");
    }
    WrongUse(Printf("what is \"%s\" to be? Its name ends in .vcd, .csv or .sr, or --format tells",
                    path.c_str()));
}

std::string WholePath(const std::string& path) {
    std::error_code unknown;
    return std::filesystem::absolute(path, unknown).lexically_normal().string();
}

bool ToDump(Source& source, const Bus& bus, const Options& options) {
    const std::string& path = options.output.path;
    const std::size_t point = path.size() - FileNameOf(path).size() + BaseNameOf(path).size();
    const std::string viewerPath = path.substr(0, point) + ".gtkw";
    CheckTarget({viewerPath, options.output.overwrite}, {options.file});
    const ExportList list = source.List();
    ValueDump dump(list.list, list.use, {bus.Board(), source.IsZoom(), source.Stream().comment});
    Output output(path);
    std::string text;
    dump.Begin(text);
    const bool any = source.ForEach([&](const SampleRows& rows) {
        dump.Add(rows, text);
        output.Write(text);
        text.clear();
    });
    dump.End(text);
    output.Write(text);
    if (!any) {
        return false;
    }
    output.Close();
    std::error_code unknown;
    if (path != "-" && std::filesystem::is_regular_file(path, unknown)) {
        Output viewer(viewerPath);
        viewer.Write(dump.ViewerFile(WholePath(path), WholePath(viewerPath)));
        viewer.Close();
    }
    return true;
}

bool ToTable(Source& source, const Bus& bus, const std::string& path, bool changes) {
    const ExportList list = source.List();
    ValueTable table(list.list, list.use, {bus.Board(), source.IsZoom(), changes});
    Output output(path);
    std::string text;
    table.Begin(text);
    const bool any = source.ForEach([&](const SampleRows& rows) {
        table.Add(rows, text);
        output.Write(text);
        text.clear();
    });
    if (any) {
        output.Close();
    }
    return any;
}

/// The time between samples in picoseconds, if it is the same for all.
std::optional<std::int64_t> SteadyPeriodOf(Source& source) {
    SteadyPeriod steady;
    const bool any = source.ForEach([&](const SampleRows& rows) { steady.Take(rows); });
    source.Rewind();
    return any && !source.HasGaps() ? steady.Period() : std::nullopt;
}

bool ToSession(Source& source, const Bus& bus, const std::string& path) {
    SessionFile::Capture capture;
    capture.channels = SessionChannels(bus.Tables());
    const TraceSetup& setup = source.Stream().setup;
    auto period =
        source.IsZoom() ? PowerZoomPeriod(setup.powerZoomClock) : ClockPeriod(setup.clock);
    if (!period && !source.IsZoom()) {
        period = SteadyPeriodOf(source); // that of the bus clock, if it runs without a pause
    }
    if (period) {
        capture.sampleRate = SampleRate(*period);
    }
    Output output(path);
    // An exception must not pass through the library.
    std::optional<ExitRequest> failure;
    SessionFile session(capture, [&](std::string_view bytes) {
        try {
            output.Write(bytes);
        } catch (const ExitRequest& request) {
            failure = request;
        }
        return !failure;
    });
    bool good = true;
    PeriodCheck steady(period.value_or(0), source.IsZoom());
    const bool any = source.ForEach([&](const SampleRows& rows) {
        good = good && session.Add(rows);
        steady.Take(rows);
    });
    if (!any) {
        return false;
    }
    if (!good || !session.End()) {
        throw failure.value_or(ExitRequest{ExitStatus::Failure, "the session file cannot be made"});
    }
    output.Close();
    if (period && !steady.Holds()) {
        Say("the samples are not evenly spaced; a session file knows one rate only, so it shows "
            "samples, not time");
    }
    if (!period) {
        Say(Printf("the clock of the samples is \"%s\", that of the bus; a session file knows one "
                   "rate only, so it shows samples, one a second, not time",
                   std::string(ClockText(setup.clock)).c_str()));
    }
    return true;
}

void CheckUse(const Options& options, Format format) {
    CheckRange(options.range);
    if (format == Format::Vcd && ToLower(options.output.path).ends_with(".gtkw")) {
        WrongUse("a .gtkw is what the viewer gets beside the dump; the dump itself ends in .vcd");
    }
    if (options.changes && format != Format::Csv) {
        WrongUse(format == Format::Vcd ? "--changes is for .csv; a .vcd holds changes in any case"
                                       : "--changes is for .csv; a .sr holds all samples");
    }
}

int Run(const Options& options) {
    CheckTarget(options.output, {options.file});
    const Format format = FormatOf(options);
    CheckUse(options, format);
    Bus bus(options.bus);
    const std::string& path = options.output.path;
    TraceInput input(options.file, bus.Tables());
    Source source(options, input);
    const bool any = format == Format::Vcd   ? ToDump(source, bus, options)
                     : format == Format::Csv ? ToTable(source, bus, path, options.changes)
                                             : ToSession(source, bus, path);
    if (!any) {
        Say(Printf("there are no such samples; %s is not written", path.c_str()));
    } else if (source.HasGaps()) {
        Say(TimesAreShort(source.Name()));
    }
    return any ? ExitStatus::Done : ExitStatus::NothingFound;
}

} // namespace

void AddConvert(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(
        program, "convert",
        "a value change dump (.vcd), comma separated values (.csv) or a session file (.sr)",
        [options] { return Run(*options); });
    CompletedWithFiles(AddOperand(command, "FILE", options->file), ".tra");
    Required(AddOutput(command, options->output));
    AddOverwrite(command, options->output);
    AddBusOptions(command, options->bus);
    AddRange(command, options->range);
    AddFlag(command, "--zoom", options->zoom, "the Power Zoom samples");
    AddChoice<Format>(command, "--format", {formats.begin(), formats.end()}, options->format,
                      "vcd|csv|sr", "form of the file (default by its ending)");
    AddFlag(command, "--changes", options->changes, "a row for each change, not for each sample");
}

} // namespace busquill::cli
