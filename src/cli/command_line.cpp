#include "cli/command_line.h"

#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/session.h"
#include "platform/near_names.h"
#include "platform/settings.h"
#include "platform/text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <new>
#include <optional>
#include <string_view>

namespace busquill::cli {

namespace {

bool IsOption(std::string_view word) {
    return word.size() >= 2 && word[0] == '-';
}

bool IsLong(std::string_view word) {
    return word.starts_with("--");
}

/// The option of any command with this name, "--from" or "-o", or null.
const CLI::Option* FindOption(CLI::App& program, const std::string& name) {
    std::vector<CLI::App*> apps = CommandsOf(program);
    apps.push_back(&program);
    for (CLI::App* app : apps) {
        if (const CLI::Option* option = app->get_option_no_throw(name)) {
            return option;
        }
    }
    return nullptr;
}

/// The option with this name if it takes a value, or null.
const CLI::Option* FindWithValue(CLI::App& program, const std::string& name) {
    const CLI::Option* option = FindOption(program, name);
    return option != nullptr && option->get_items_expected_max() > 0 ? option : nullptr;
}

/// The option in a word whose value is the next word, or null.
const CLI::Option* ValueFollows(CLI::App& program, const std::string& word) {
    if (IsLong(word)) {
        return word.find('=') == std::string::npos ? FindWithValue(program, word) : nullptr;
    }
    for (std::size_t i = 1; i < word.size(); ++i) {
        if (const auto* option = FindWithValue(program, std::string("-") + word[i])) {
            return i + 1 == word.size() ? option : nullptr;
        }
    }
    return nullptr;
}

/// The words in the order in which the library reads them as they are meant, wherever the user has
/// put the options: command, options, "--", operands. Throws ExitRequest if a value is missing at
/// the end.
std::vector<std::string> Arranged(CLI::App& program, std::span<const std::string> words) {
    std::vector<std::string> options;
    std::vector<std::string> others;
    bool onlyOthers = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (onlyOthers || !IsOption(word)) {
            others.push_back(word);
        } else if (word == "--") {
            onlyOthers = true;
        } else if (IsLong(word) && word.ends_with('=') &&
                   FindWithValue(program, word.substr(0, word.size() - 1)) != nullptr) {
            // The library would take the next word for the value.
            options.push_back(word.substr(0, word.size() - 1));
            options.emplace_back();
        } else {
            options.push_back(word);
            if (const CLI::Option* option = ValueFollows(program, word)) {
                if (i + 1 == words.size()) {
                    WrongUse("--" + LongName(*option) + " needs a value: " + ValueName(*option));
                }
                options.push_back(words[++i]);
            }
        }
    }
    std::vector<std::string> arranged;
    if (!others.empty()) {
        arranged.push_back(others.front());
        others.erase(others.begin());
    }
    arranged.insert(arranged.end(), options.begin(), options.end());
    if (!others.empty()) {
        arranged.emplace_back("--");
        arranged.insert(arranged.end(), others.begin(), others.end());
    }
    return arranged;
}

/// As on the command line: "-o FILE", "--port PORT".
std::string Typed(const CLI::Option& option) {
    const char letter = Letter(option);
    const std::string value = ValueName(option);
    return (letter != 0 ? Printf("-%c", letter) : "--" + LongName(option)) +
           (value.empty() ? "" : " " + value);
}

std::string OptionLine(const CLI::Option& option) {
    const char letter = Letter(option);
    const std::string value = ValueName(option);
    const std::string left = (letter != 0 ? Printf("-%c, ", letter) : "    ") + "--" +
                             LongName(option) + (value.empty() ? "" : " " + value);
    return Printf("  %-32s %s\n", left.c_str(), option.get_description().c_str());
}

/// "FILE", "A B"; empty without operands.
std::string OperandNames(CLI::App& app) {
    std::string names;
    for (const CLI::Option* operand : OperandsOf(app)) {
        names += (names.empty() ? "" : " ") + OperandName(*operand);
    }
    return names;
}

/// The commands with their operands, in columns.
std::string CommandTable(CLI::App& program) {
    std::size_t nameWidth = 0;
    std::size_t operandsWidth = 0;
    for (CLI::App* command : CommandsOf(program)) {
        nameWidth = std::max(nameWidth, command->get_name().size());
        operandsWidth = std::max(operandsWidth, OperandNames(*command).size());
    }
    std::string table;
    for (CLI::App* command : CommandsOf(program)) {
        table += Printf("  %-*s  %-*s  %s\n", static_cast<int>(nameWidth),
                        command->get_name().c_str(), static_cast<int>(operandsWidth),
                        OperandNames(*command).c_str(), command->get_description().c_str());
    }
    return table;
}

std::string NoCommand(CLI::App& program, const std::string& word) {
    std::vector<std::string> names;
    for (const CLI::App* command : CommandsOf(program)) {
        names.push_back(command->get_name());
    }
    return "no command \"" + word + "\"; there are " + ListNearest(word, names);
}

/// An option that the command does not take.
std::string WrongOption(CLI::App& program, const CLI::App* command, const std::string& word) {
    const std::string name = IsLong(word) ? word.substr(0, word.find('=')) : word.substr(0, 2);
    return command != nullptr && FindOption(program, name) != nullptr
               ? command->get_name() + " takes no " + name
               : "no option " + name;
}

/// What is wrong with the first word that the library could not place; empty if it placed all.
std::string WrongWord(CLI::App& program, CLI::App* command) {
    bool onlyOperands = false;
    for (const std::string& word :
         command != nullptr ? command->remaining() : program.remaining()) {
        if (word == "--") {
            onlyOperands = true;
        } else if (!onlyOperands && IsOption(word)) {
            if (command != nullptr ||
                FindOption(program, word.substr(0, word.find('='))) == nullptr) {
                return WrongOption(program, command, word);
            }
        } else if (command == nullptr) {
            return NoCommand(program, word);
        } else if (onlyOperands) {
            return Printf("%s takes %s, not also \"%s\"", command->get_name().c_str(),
                          OperandNames(*command).c_str(), word.c_str());
        }
    }
    // What stands after "--" goes back to the program if the command takes no operands.
    if (command != nullptr && !program.remaining().empty()) {
        return Printf("%s takes no file, not also \"%s\"", command->get_name().c_str(),
                      program.remaining().front().c_str());
    }
    return {};
}

/// The required options and operands that are not there; empty if all are.
std::string Lacking(CLI::App& command) {
    const std::string& name = command.get_name();
    std::string lacking;
    for (const CLI::Option* option : OptionsOf(command)) {
        if (option->get_required() && option->count() == 0) {
            lacking += (lacking.empty() ? "" : ", ") + Typed(*option);
        }
    }
    return lacking.empty() ? name + " needs " + OperandNames(command)
                           : name + " needs " + lacking + "; see " +
                                 command.get_parent()->get_name() + " " + name + " -h";
}

/// The line for the user about an invalid command line.
std::string MessageOf(const CLI::ParseError& error, CLI::App& program) {
    const auto commands = program.get_subcommands();
    CLI::App* command = commands.empty() ? nullptr : commands.front();
    if (std::string wrong = WrongWord(program, command); !wrong.empty()) {
        return wrong;
    }
    if (command == nullptr) {
        return "which command? See " + program.get_name() + " -h";
    }
    std::string text = error.what();
    // The library's messages begin with the option's name.
    const std::string name = text.substr(0, text.find_first_of(": "));
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        return Lacking(*command);
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        return "--" + name + " takes no value"; // a flag with one
    }
    if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr) {
        const std::size_t end = name.size() + std::string_view(": ").size();
        return name + " " + text.substr(std::min(end, text.size()));
    }
    return text;
}

void Print(const std::string& text) {
    Output output("");
    output.Write(text);
    output.Close();
}

bool IsHelpAsked(const CLI::App& app) {
    return app.get_help_ptr() != nullptr && app.get_help_ptr()->count() > 0;
}

/// Parses, and runs the command. Throws ExitRequest at the end.
void ParseAndRun(CLI::App& program, std::span<const std::string> words) {
    std::vector<std::string> arranged = Arranged(program, words);
    std::ranges::reverse(arranged); // the library takes them from the back
    try {
        program.parse(std::move(arranged));
    } catch (const CLI::ParseError& error) {
        const auto commands = program.get_subcommands();
        CLI::App& app = commands.empty() ? program : *commands.front();
        if (IsHelpAsked(app)) {
            Print(HelpText(app));
        } else if (dynamic_cast<const CLI::CallForVersion*>(&error) != nullptr) {
            Print(program.get_name() + " " BUSQUILL_VERSION "\n");
        } else {
            WrongUse(MessageOf(error, program));
        }
    }
}

void AddHelpAndVersion(CLI::App& app) {
    app.set_help_flag("-h,--help", "this text")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    app.set_version_flag("-V,--version", "", "the program's version")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

} // namespace

std::shared_ptr<CLI::App> MakeProgram(const char* name, const char* about, const char* closing) {
    auto program = std::make_shared<CLI::App>(about, name);
    AddHelpAndVersion(*program);
    program->footer(closing);
    program->require_subcommand(1);
    return program;
}

CLI::App& AddCommand(CLI::App& program, const char* name, const char* help,
                     std::function<int()> run) {
    CLI::App& command = *program.add_subcommand(name, help);
    AddHelpAndVersion(command);
    command.callback([run = std::move(run)] { throw ExitRequest{run(), {}}; });
    return command;
}

int RunProgram(CLI::App& program, std::span<const std::string> words) {
    SetProgramName(program.get_name());
    NoticeInterrupts();
    try {
        ParseAndRun(program, words);
        return ExitStatus::Done;
    } catch (const ExitRequest& request) {
        if (!request.message.empty()) {
            Say(request.message);
        }
        return request.status;
    } catch (const std::bad_alloc&) {
        Say("there is not enough memory");
        return ExitStatus::Failure;
    }
}

std::string HelpText(CLI::App& app) {
    std::string text;
    if (app.get_parent() == nullptr) {
        text = Printf("Usage: %s COMMAND [OPTION...] [FILE...]\n\n%s\n\nCommands:\n",
                      app.get_name().c_str(), app.get_description().c_str());
        text += CommandTable(app);
        text += "\nOptions of every command:\n";
        for (const CLI::Option* option : OptionsOf(app)) {
            text += OptionLine(*option);
        }
        return text + "\n" + app.get_footer();
    }
    std::string needed;
    for (const CLI::Option* option : OptionsOf(app)) {
        needed += option->get_required() ? " " + Typed(*option) : "";
    }
    const std::string operands = OperandNames(app);
    needed += operands.empty() ? "" : " " + operands;
    std::string about = app.get_description();
    about[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(about[0])));
    text = Printf("Usage: %s %s [OPTION...]%s\n\n%s.\n\nOptions:\n",
                  app.get_parent()->get_name().c_str(), app.get_name().c_str(), needed.c_str(),
                  about.c_str());
    for (const CLI::Option* option : OptionsOf(app)) {
        text += OptionLine(*option);
    }
    return text;
}

std::vector<CLI::App*> CommandsOf(CLI::App& program) {
    return program.get_subcommands([](const CLI::App*) { return true; });
}

} // namespace busquill::cli
