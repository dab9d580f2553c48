#pragma once

#include "cli/bus.h"
#include "cli/output.h"

#include <string>

namespace busquill::cli {

/// What commands have that tell something of one capture.
struct CaptureOptions {
    std::string file;
    OutputOptions output;
    BusOptions bus;
    bool json = false;
};

/// FILE, --output, --overwrite, --json and the options of the bus.
void AddCaptureOptions(CLI::App& command, CaptureOptions& options);

} // namespace busquill::cli
