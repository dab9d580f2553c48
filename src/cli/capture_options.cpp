#include "cli/capture_options.h"

#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "platform/text.h"

#include <algorithm>
#include <thread>

namespace busquill::cli {

namespace {

constexpr std::int64_t mostJobs = 128; // each needs some open files

void AddReportOptions(CLI::App& command, ReportOptions& options) {
    AddOutput(command, options.output);
    AddOverwrite(command, options.output);
    AddJson(command, options.json);
    AddChoice<Format>(command, "--format",
                      {{"text", Format::Text}, {"csv", Format::Csv}, {"json", Format::Json}},
                      options.format, "text|csv|json", "form of the result (default text)");
    AddBusOptions(command, options.bus);
}

} // namespace

void AddCaptureOptions(CLI::App& command, CaptureOptions& options) {
    CompletedWithFiles(AddOperand(command, "FILE", options.file), ".tra");
    AddReportOptions(command, options);
}

void AddCaptureOptions(CLI::App& command, CapturesOptions& options) {
    CompletedWithFiles(AddOperands(command, "FILE", options.operands), ".tra");
    AddReportOptions(command, options);
    const std::int64_t cores = std::thread::hardware_concurrency(); // 0: unknown
    options.jobs = std::clamp<std::int64_t>(cores, 1, mostJobs);
    AddNumber(command, "-j,--jobs", options.jobs, "N", {1, mostJobs},
              "read N captures side by side (default: as many as there are cores)");
}

Format FormatOf(const ReportOptions& options) {
    if (options.json && options.format && *options.format != Format::Json) {
        WrongUse(Printf("--json and --format %s contradict each other",
                        *options.format == Format::Csv ? "csv" : "text"));
    }
    return options.json ? Format::Json : options.format.value_or(Format::Text);
}

} // namespace busquill::cli
