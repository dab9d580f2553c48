#include "cli/board/options.h"

#include "cli/exit_request.h"
#include "platform/text.h"

#include <charconv>

namespace busquill::cli::board {

void AddBoardOptions(CLI::App& command, BoardOptions& options) {
    options.port.baud = usualBaudRate;
    command
        .add_option("--port", options.port.port,
                    "COM1 to COM8, the path of a terminal device, or USB")
        ->required()
        ->type_name("PORT");
    command.add_option("--baud", options.port.baud, "rate of the serial line (default 57600)")
        ->type_name("RATE");
    command.add_flag("--quiet", options.quiet, "no status lines");
    command.add_flag("--json", options.json, "print JSON");
}

void AddAnswers(CLI::App& command, BoardOptions& options) {
    auto* yes = command.add_flag_callback(
        "--yes", [&options] { options.answers = Answers::Yes; }, "answer every question with yes");
    auto* no = command.add_flag_callback(
        "--no", [&options] { options.answers = Answers::No; }, "answer every question with no");
    yes->excludes(no);
}

CLI::Option* AddDuration(CLI::App& command, const std::string& name,
                         std::optional<Milliseconds>& duration, const std::string& help) {
    return command
        .add_option_function<std::string>(
            name, [name, &duration](const std::string& text) { duration = DurationOf(name, text); },
            help)
        ->type_name("TIME");
}

CLI::Option* AddNumber(CLI::App& command, const std::string& name,
                       std::optional<std::int64_t>& number, std::int64_t from, std::int64_t to,
                       const std::string& help) {
    const auto read = [=, &number](const std::string& text) {
        std::int64_t value = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, value);
        if (error != std::errc() || stop != end || value < from || value > to) {
            WrongUse(Printf("%s is a whole number from %lld to %lld; not \"%s\"", name.c_str(),
                            static_cast<long long>(from), static_cast<long long>(to),
                            text.c_str()));
        }
        number = value;
    };
    return command.add_option_function<std::string>(name, read, help)->type_name("N");
}

} // namespace busquill::cli::board
