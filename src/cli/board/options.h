/// Options that several commands have.
#pragma once

#include "cli/board/durations.h"
#include "cli/session.h"

#include <optional>

namespace CLI {
class App;
class Option;
} // namespace CLI

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
CLI::Option& AddDuration(CLI::App& command, const char* names, std::optional<Milliseconds>& into,
                         const char* help);
/// --for, after which a function that runs ends by itself.
CLI::Option& AddLimit(CLI::App& command, std::optional<Milliseconds>& into);

} // namespace busquill::cli::board
