/// The commands of busquill-board. Each declares its options; when its line has been read, it runs
/// and ends the program by an ExitRequest with its exit status (Runs).
#pragma once

#include "cli/exit_request.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace busquill::cli::board {

void AddInfo(CLI::App& program);

/// Adds all commands.
void AddCommands(CLI::App& program);

/// Runs a command with its options, to which those of the command line are bound.
template <class Options>
void Runs(CLI::App& command, int (*run)(const Options&), std::shared_ptr<const Options> options) {
    command.callback([run, options] { throw ExitRequest{run(*options), ""}; });
}

} // namespace busquill::cli::board
