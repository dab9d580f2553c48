#pragma once

#include "cli/bus.h"
#include "cli/output.h"

#include <string>

namespace busquill::cli {

/// The options of commands that report on one capture.
struct CaptureOptions {
    std::string file;
    OutputOptions output;
    BusOptions bus;
    bool json = false;
};

/// FILE, --output, --overwrite, --json and the options of the bus.
void AddCaptureOptions(CLI::App& command, CaptureOptions& options);

} // namespace busquill::cli
