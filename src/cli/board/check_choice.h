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

class LineOutput;

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

/// Prints a line for each ticked check: number, group, text.
void PrintTicked(LineOutput& output, const CheckTableDocument& document, bool asJson);

} // namespace busquill::cli::board
