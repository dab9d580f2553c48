/// The commands of busquill-board. Each declares its options, bound to a struct of its own, and
/// what runs after parsing.
#pragma once

namespace CLI {
class App;
} // namespace CLI

namespace busquill::cli::board {

void AddAnomaly(CLI::App& program);
void AddBackplane(CLI::App& program);
void AddCompliance(CLI::App& program);
void AddConfig(CLI::App& program);
void AddDump(CLI::App& program);
void AddFirmware(CLI::App& program);
void AddInfo(CLI::App& program);
void AddMaster(CLI::App& program);
void AddPerformance(CLI::App& program);
void AddPorts(CLI::App& program);
void AddStimulus(CLI::App& program);
void AddTarget(CLI::App& program);

/// Adds all commands.
void AddCommands(CLI::App& program);

} // namespace busquill::cli::board
