#pragma once

#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace busquill::cli {

/// The text of a man page or of a shell's completions: a template whose `@name@` parts are replaced
/// by what the program's commands and options are. Throws ExitRequest for an unknown part.
///
/// Everywhere: `@program@`, `@function@` (the program's name as part of a function's), `@version@`.
/// In a man page: `@synopsis COMMAND@`, `@option NAME@` (its heading), `@words NAME@`.
/// In completions: `@bash ...@`, `@zsh ...@` and `@fish ...@`, see the source.
[[nodiscard]] std::string FillTemplate(CLI::App& program, std::string_view text);

/// Writes the template in a file, filled, to standard output; returns the exit status.
[[nodiscard]] int PrintTemplate(CLI::App& program, const std::string& path);

} // namespace busquill::cli
