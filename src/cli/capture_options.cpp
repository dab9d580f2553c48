#include "cli/capture_options.h"

#include "cli/command_options.h"

namespace busquill::cli {

void AddCaptureOptions(CLI::App& command, CaptureOptions& options) {
    CompletedWithFiles(AddOperand(command, "FILE", options.file), ".tra");
    AddOutput(command, options.output);
    AddOverwrite(command, options.output);
    AddJson(command, options.json);
    AddBusOptions(command, options.bus);
}

} // namespace busquill::cli
