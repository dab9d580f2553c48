/// Command lines, read by CLI11: programs and their commands.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace busquill::cli {

/// A program with the options of every program here. `closing` ends its help.
[[nodiscard]] std::shared_ptr<CLI::App> MakeProgram(const char* name, const char* about,
                                                    const char* closing);
/// A command of the program; `help` is a line without a full stop. `run` returns the exit status.
CLI::App& AddCommand(CLI::App& program, const char* name, const char* help,
                     std::function<int()> run);

/// Runs the program with the words after its name; returns the exit status. For an invalid command
/// line it prints a line that names the wrong word, the option, and what would be right.
[[nodiscard]] int RunProgram(CLI::App& program, std::span<const std::string> words);

/// The output of "-h" for a program or a command.
[[nodiscard]] std::string HelpText(CLI::App& app);

[[nodiscard]] std::vector<CLI::App*> CommandsOf(CLI::App& program);

} // namespace busquill::cli
