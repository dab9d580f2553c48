/// Which rows of a table of checks a command is about: --only, --without and --list.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace busquill {
class CheckTableDocument;
} // namespace busquill

namespace busquill::cli::board {

class BoardSession;

struct CheckChoice {
    const char* noun = "check"; // what messages call one
    std::vector<std::string> only = {};
    std::vector<std::string> without = {};
    bool list = false;
};

/// --only, --without and --list.
void AddCheckChoice(CLI::App& command, CheckChoice& choice);

/// Ticks in the document what is chosen among the checks of the board: by number, by group, or by
/// text, of which a part will do. Without a choice the ticks stay. Throws ExitRequest for a word
/// that names nothing, and when nothing is ticked.
void Tick(CheckTableDocument& document, const CheckChoice& choice);

/// Keeps a document in a file if there is a path; throws ExitRequest when it cannot be written.
void SaveChecks(BoardSession& session, CheckTableDocument& document, const std::string& path);

/// Carries out --list: prints a line for each ticked check (number, group, text), and keeps the
/// document. Returns the exit status.
[[nodiscard]] int ListTicked(BoardSession& session, CheckTableDocument& document, bool asJson,
                             const std::string& path);

} // namespace busquill::cli::board
