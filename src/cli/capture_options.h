#pragma once

#include "cli/bus.h"
#include "cli/output.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace busquill::cli {

enum class Format { Text, Csv, Json };

/// The options of commands that report on captures.
struct ReportOptions {
    OutputOptions output;
    BusOptions bus;
    std::optional<Format> format;
    bool json = false;
};

/// Those of commands that report on one capture.
struct CaptureOptions : ReportOptions {
    std::string file;
};

/// Those of commands that report on any number of captures.
struct CapturesOptions : ReportOptions {
    std::vector<std::string> operands; // files and folders
    std::int64_t jobs = 1;
};

/// FILE, --output, --overwrite, --json, --format and the options of the bus.
void AddCaptureOptions(CLI::App& command, CaptureOptions& options);
/// The same with FILE..., and --jobs.
void AddCaptureOptions(CLI::App& command, CapturesOptions& options);

/// Throws ExitRequest if --json and --format contradict each other.
[[nodiscard]] Format FormatOf(const ReportOptions& options);

} // namespace busquill::cli
