#include "cli/bus.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/output.h"
#include "cli/range.h"
#include "export/capture_export.h"
#include "platform/text.h"
#include "platform/working_directory.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace busquill::cli {

namespace {

struct Options {
    std::string file;
    OutputOptions output;
    BusOptions bus;
    NumberRange range;
    bool zoom = false;
    std::optional<ExportFormat> format; // otherwise by the ending of the output
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

    [[nodiscard]] const std::string& Name() const noexcept { return input_.Name(); }
    /// Back to the first sample.
    void Rewind() {
        if (!zoom_) {
            input_.ReadHead();
        }
    }

private:
    template <typename Take>
    bool TakePiece(const SampleRows& rows, Take take) {
        if (range_.Has(rows.numbers.front()) && range_.Has(rows.numbers.back())) {
            take(rows);
            return true;
        }
        SampleRows inside;
        for (std::size_t i = 0; i < rows.Size(); ++i) {
            if (range_.Has(rows.numbers[i])) {
                inside.Add(rows.numbers[i], rows.records[i]);
            }
        }
        if (!inside.Empty()) {
            take(inside);
        }
        return !inside.Empty();
    }

    TraceInput& input_;
    const NumberRange range_;
    const bool zoom_;
    SampleRows zoomRows_;
};

ExportFormat FormatOf(const Options& options) {
    if (options.format) {
        return *options.format;
    }
    const std::string& path = options.output.path;
    if (const auto format = ExportFormatOf(path)) {
        return *format;
    }
    if (path == "-") {
        WrongUse("standard output needs --format vcd, csv or sr");
    }
    WrongUse(Printf("what is \"%s\" to be? Its name ends in .vcd, .csv or .sr, or --format tells",
                    path.c_str()));
}

void WriteViewer(const CaptureExport& capture, const std::string& path) {
    std::error_code unknown;
    if (path == "-" || !std::filesystem::is_regular_file(path, unknown)) {
        return;
    }
    const std::string viewerPath = ViewerPathOf(path);
    Output viewer(viewerPath);
    viewer.Write(capture.ViewerFile(path, viewerPath));
    viewer.Close();
}

/// Writes the file. False if there are no samples; the file is then not written.
bool Write(Source& source, CaptureExport& capture, const std::string& path) {
    if (capture.NeedsSurvey()) {
        static_cast<void>(source.ForEach([&](const SampleRows& rows) { capture.Survey(rows); }));
        source.Rewind();
    }
    Output output(path);
    // An exception must not pass through the library that packs session files.
    std::optional<ExitRequest> failure;
    bool good = capture.Begin([&](std::string_view bytes) {
        try {
            output.Write(bytes);
        } catch (const ExitRequest& request) {
            failure = request;
        }
        return !failure;
    });
    const bool any = source.ForEach([&](const SampleRows& rows) {
        good = good && capture.Add(rows);
        if (failure) {
            throw *failure;
        }
    });
    if (!any) {
        return false;
    }
    if (!good || !capture.End()) {
        throw failure.value_or(ExitRequest{ExitStatus::Failure, "the session file cannot be made"});
    }
    output.Close();
    return true;
}

void CheckUse(const Options& options, ExportFormat format) {
    CheckRange(options.range);
    if (format == ExportFormat::Dump && ToLower(options.output.path).ends_with(".gtkw")) {
        WrongUse("a .gtkw is what the viewer gets beside the dump; the dump itself ends in .vcd");
    }
    if (options.changes && format != ExportFormat::Table) {
        WrongUse(format == ExportFormat::Dump
                     ? "--changes is for .csv; a .vcd holds changes in any case"
                     : "--changes is for .csv; a .sr holds all samples");
    }
}

int Run(const Options& options) {
    CheckTarget(options.output, {options.file});
    const ExportFormat format = FormatOf(options);
    CheckUse(options, format);
    Bus bus(options.bus);
    const std::string& path = options.output.path;
    TraceInput input(options.file, bus.Tables());
    Source source(options, input);
    if (format == ExportFormat::Dump) {
        CheckTarget({ViewerPathOf(path), options.output.overwrite}, {options.file});
    }
    const ExportList list = source.List();
    CaptureExport capture(format, {list.list, list.use, source.Stream().setup,
                                   source.Stream().comment, source.IsZoom(), options.changes});
    const bool any = Write(source, capture, path);
    if (!any) {
        Say(Printf("there are no such samples; %s is not written", path.c_str()));
        return ExitStatus::NothingFound;
    }
    if (format == ExportFormat::Dump) {
        WriteViewer(capture, path);
    }
    if (const std::string note = capture.ClockNote(); !note.empty()) {
        Say(note);
    }
    if (capture.HasGaps()) {
        Say(SamplesAreMissing(source.Name()));
    }
    return ExitStatus::Done;
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
    std::vector<std::pair<const char*, ExportFormat>> formats;
    formats.reserve(exportFileTypes.size());
    for (const ExportFileType& type : exportFileTypes) {
        formats.emplace_back(type.extension, type.format);
    }
    AddChoice<ExportFormat>(command, "--format", formats, options->format, "vcd|csv|sr",
                            "form of the file (default by its ending)");
    AddFlag(command, "--changes", options->changes, "a row for each change, not for each sample");
}

} // namespace busquill::cli
