#include "cli/board/options.h"

#include "cli/command_options.h"

namespace busquill::cli::board {

void AddBoardOptions(CLI::App& command, BoardOptions& options) {
    AddPortOptions(command, options.port);
    AddQuiet(command, options.quiet);
    AddJson(command, options.json);
}

void AddAnswers(CLI::App& command, BoardOptions& options) {
    CLI::Option& yes = AddFlag(
        command, "--yes", [&options] { options.answers = Answers::Yes; },
        "answer each question with yes");
    CLI::Option& no = AddFlag(
        command, "--no", [&options] { options.answers = Answers::No; },
        "answer each question with no");
    Excluding(no, yes);
}

CLI::Option& AddDuration(CLI::App& command, const char* names, std::optional<Milliseconds>& into,
                         const char* help) {
    CLI::Option& option = AddText(
        command, names, [&into](const std::string& text) { into = ParseDuration(text); }, "TIME",
        help);
    return Checked(option, [](const std::string& text) {
        return ParseDuration(text) ? std::string()
                                   : "is a time such as 90, 90s, 5m or 8h, not \"" + text + "\"";
    });
}

CLI::Option& AddLimit(CLI::App& command, std::optional<Milliseconds>& into) {
    return AddDuration(command, "--for", into, "end after this time");
}

} // namespace busquill::cli::board
