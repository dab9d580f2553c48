/// The commands of busquill-board. Each declares its options, bound to a struct of its own, and
/// what runs after parsing.
#pragma once

namespace CLI {
class App;
} // namespace CLI

namespace busquill::cli::board {

void AddConfig(CLI::App& program);
void AddDump(CLI::App& program);
void AddInfo(CLI::App& program);
void AddMaster(CLI::App& program);
void AddPerformance(CLI::App& program);
void AddPorts(CLI::App& program);

/// Adds all commands.
void AddCommands(CLI::App& program);

} // namespace busquill::cli::board
