/// Options that several commands have.
#pragma once

#include "cli/board/durations.h"
#include "cli/session.h"

#include <CLI/CLI.hpp>
#include <optional>

namespace busquill::cli::board {

/// How a question is answered that a window would ask.
enum class Answers { Ask, Yes, No };

/// What every command with a board has.
struct BoardOptions {
    PortOptions port;
    Answers answers = Answers::Ask;
    bool quiet = false;
    bool json = false;
};

/// --port, --baud, --quiet and --json.
void AddBoardOptions(CLI::App& command, BoardOptions& options);
/// --yes and --no, for a command that may ask.
void AddAnswers(CLI::App& command, BoardOptions& options);
/// An option whose value is a duration.
CLI::Option* AddDuration(CLI::App& command, const std::string& name,
                         std::optional<Milliseconds>& duration, const std::string& help);
/// An option whose value is a whole number in a range.
CLI::Option* AddNumber(CLI::App& command, const std::string& name,
                       std::optional<std::int64_t>& number, std::int64_t from, std::int64_t to,
                       const std::string& help);

} // namespace busquill::cli::board
