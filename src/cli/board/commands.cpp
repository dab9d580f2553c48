#include "cli/board/commands.h"

namespace busquill::cli::board {

namespace {

/// In the order of the program's help.
constexpr void (*adders[])(CLI::App&) = {
    AddInfo,    AddPorts,     AddPerformance, AddMaster,   AddDump,   AddConfig,
    AddAnomaly, AddBackplane, AddStimulus,    AddFirmware, AddTarget, AddCompliance,
};

} // namespace

void AddCommands(CLI::App& program) {
    for (const auto add : adders) {
        add(program);
    }
}

} // namespace busquill::cli::board
