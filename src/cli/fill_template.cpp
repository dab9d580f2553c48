#include "cli/fill_template.h"

#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/output.h"
#include "platform/text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>

namespace busquill::cli {

namespace {

using Kind = Completion::Kind;

// Each stands on a line of its own.
constexpr std::string_view conditionBegin = "if ";
constexpr std::string_view conditionEnd = "@end@\n";

constexpr const char* portNames = "COM1 COM2 COM3 COM4 COM5 COM6 COM7 COM8 USB USB2";

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// Each of the characters with a backslash before it.
std::string Escaped(std::string_view text, std::string_view characters) {
    std::string escaped;
    for (const char c : text) {
        escaped += characters.find(c) != std::string_view::npos ? "\\" : "";
        escaped += c;
    }
    return escaped;
}

std::string Join(const std::vector<std::string>& texts, std::string_view between) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : std::string(between)) + text;
    }
    return all;
}

bool MayRepeat(const CLI::Option& option) {
    return option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
}

std::vector<std::string> CommandNames(CLI::App& program) {
    std::vector<std::string> names;
    for (const CLI::App* command : CommandsOf(program)) {
        names.push_back(command->get_name());
    }
    return names;
}

/// A line for each command, from its own lines.
std::string ForEachCommand(CLI::App& program, const std::function<std::string(CLI::App&)>& lines) {
    std::string text;
    for (CLI::App* command : CommandsOf(program)) {
        text += lines(*command);
    }
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

// bash

/// A call that offers values, with the prefix of the program's functions.
std::string BashAction(const Completion& completion) {
    const std::string prefix = "_@function@_";
    switch (completion.kind) {
    case Kind::Words: {
        const std::string words = Escaped(Join(completion.words, "\n"), "\\'");
        return prefix + "words $'" + ReplaceAll(words, "\n", "\\n") + "'";
    }
    case Kind::Files:
        return prefix + "files '*" +
               (completion.words.empty() ? std::string() : completion.words.front()) + "'";
    case Kind::Ports:
        return prefix + "ports '" + portNames + "'";
    case Kind::Names:
        return prefix + "list_names";
    case Kind::Patterns:
        return prefix + "patterns";
    case Kind::Nothing:
        break;
    }
    return ":";
}

/// The names of the options, and as typed those with a value.
std::string BashOptions(CLI::App& command) {
    std::vector<std::string> names;
    std::vector<std::string> valued;
    for (const CLI::Option* option : OptionsOf(command)) {
        names.push_back(LongName(*option));
        if (!ValueName(*option).empty()) {
            valued.push_back("--" + LongName(*option));
            if (const char letter = Letter(*option); letter != 0) {
                valued.push_back(Printf("-%c", letter));
            }
        }
    }
    return Printf("    %s) options=\"%s\" valued=\"%s\" ;;\n", command.get_name().c_str(),
                  Join(names, " ").c_str(), Join(valued, " ").c_str());
}

std::string BashValues(CLI::App& command) {
    std::string arms;
    for (CLI::Option* option : OptionsOf(command)) {
        if (ValueName(*option).empty()) {
            continue;
        }
        const std::string name = command.get_name() + ",";
        const char letter = Letter(*option);
        arms += "    " + name + "--" + LongName(*option) +
                (letter != 0 ? " | " + name + Printf("-%c", letter) : "") + ") " +
                BashAction(CompletionOf(*option)) + " ;;\n";
    }
    return arms;
}

std::string BashOperands(CLI::App& command) {
    std::string arms;
    int place = 0;
    for (CLI::Option* operand : OperandsOf(command)) {
        arms += "    " + command.get_name() + "," +
                (MayRepeat(*operand) ? "*" : std::to_string(place)) + ") " +
                BashAction(CompletionOf(*operand)) + " ;;\n";
        ++place;
    }
    return arms;
}

// zsh

std::string Quoted(const std::string& text) {
    return "'" + ReplaceAll(text, "'", "'\\''") + "'";
}

std::string ZshAction(const Completion& completion) {
    const std::string prefix = "_@program@-";
    switch (completion.kind) {
    case Kind::Words: {
        std::vector<std::string> words;
        for (const std::string& word : completion.words) {
            words.push_back(Escaped(word, " :()\\"));
        }
        return "(" + Join(words, " ") + ")";
    }
    case Kind::Files:
        return completion.words.empty() ? "_files"
                                        : "_files -g \"*" + completion.words.front() + "\"";
    case Kind::Ports:
        return prefix + "ports";
    case Kind::Names:
        return prefix + "columns";
    case Kind::Patterns:
        return prefix + "patterns";
    case Kind::Nothing:
        break;
    }
    return " ";
}

std::string ZshOption(CLI::Option& option) {
    const std::string value = ValueName(option);
    const std::string name = "--" + LongName(option);
    const std::string help = "[" + Escaped(option.get_description(), "[]\\") + "]";
    const std::string action =
        value.empty() ? "" : ":" + Escaped(value, ":") + ":" + ZshAction(CompletionOf(option));
    const bool ends = name == "--help" || name == "--version"; // nothing comes after these
    const std::string sign = value.empty() ? "" : "=";
    if (Letter(option) == 0) {
        return Quoted((MayRepeat(option) ? "*" : "") + name + sign + help + action);
    }
    const std::string letter = Printf("-%c", Letter(option));
    const std::string before = ends                ? "(- *)"
                               : MayRepeat(option) ? "*"
                                                   : "(" + letter + " " + name + ")";
    return Quoted(before) + "{" + letter + (value.empty() ? "" : "+") + "," + name + sign + "}" +
           Quoted(help + action);
}

std::string ZshArguments(CLI::App& command) {
    std::string arm = "    " + command.get_name() + ")\n      arguments=(\n";
    for (CLI::Option* option : OptionsOf(command)) {
        arm += "        " + ZshOption(*option) + "\n";
    }
    int place = 1;
    for (CLI::Option* operand : OperandsOf(command)) {
        const std::string where = MayRepeat(*operand) ? "*" : std::to_string(place);
        arm += "        " +
               Quoted(where + ":" + operand->get_name(true) + ":" +
                      ZshAction(CompletionOf(*operand))) +
               "\n";
        ++place;
    }
    return arm + "      ) ;;\n";
}

// fish

std::string FishText(const std::string& text) {
    return "\"" + Escaped(text, "\\\"$") + "\"";
}

/// The part of a `complete` line that offers values.
std::string FishAction(const Completion& completion) {
    const std::string prefix = "(__@function@_";
    switch (completion.kind) {
    case Kind::Words: {
        std::vector<std::string> words;
        for (const std::string& word : completion.words) {
            words.push_back(Escaped(word, " "));
        }
        return " -x -a \"" + Join(words, " ") + "\"";
    }
    case Kind::Files:
        return completion.words.empty()
                   ? " -r -F"
                   : " -r -k -a \"(__fish_complete_suffix " + completion.words.front() + ")\"";
    case Kind::Ports:
        return std::string(" -r -F -a \"") + portNames + "\"";
    case Kind::Names:
        return " -x -a \"(__fish_complete_list , __@function@_columns)\"";
    case Kind::Patterns:
        return " -x -a \"" + prefix + "patterns)\"";
    case Kind::Nothing:
        break;
    }
    return " -x";
}

std::string FishCommand(CLI::App& command) {
    return "complete -c @program@ -n \"not $some $commands\" -a " + command.get_name() + " -d " +
           FishText(command.get_description()) + "\n";
}

std::string FishArguments(CLI::App& command) {
    const std::string begin = "complete -c @program@ -n \"$some " + command.get_name() + "\"";
    std::string lines;
    for (CLI::Option* operand : OperandsOf(command)) {
        const Completion completion = CompletionOf(*operand);
        if (completion.kind != Kind::Nothing) {
            lines += begin + FishAction(completion) + "\n";
        }
    }
    for (CLI::Option* option : OptionsOf(command)) {
        const char letter = Letter(*option);
        lines += begin + (letter != 0 ? Printf(" -s %c", letter) : "") + " -l " +
                 LongName(*option) +
                 (ValueName(*option).empty() ? "" : FishAction(CompletionOf(*option))) + " -d " +
                 FishText(option->get_description()) + "\n";
    }
    return lines;
}

// The man page

std::string Roff(const std::string& text) {
    return ReplaceAll(text, "-", "\\-");
}

CLI::App& CommandNamed(CLI::App& program, const std::string& name) {
    for (CLI::App* command : CommandsOf(program)) {
        if (command->get_name() == name) {
            return *command;
        }
    }
    Fail("the template names a command " + name + ", which does not exist");
}

/// The options of all commands with this name.
std::vector<CLI::Option*> OptionsNamed(CLI::App& program, const std::string& name) {
    std::vector<CLI::Option*> options;
    for (CLI::App* command : CommandsOf(program)) {
        if (CLI::Option* option = command->get_option_no_throw("--" + name)) {
            options.push_back(option);
        }
    }
    if (options.empty()) {
        Fail("the template names an option --" + name + ", which does not exist");
    }
    return options;
}

/// A usage in the order in which the options are declared, what may be left out in brackets.
std::string Synopsis(CLI::App& program, CLI::App& command) {
    std::string text = ".B " + Roff(program.get_name() + " " + command.get_name()) + "\n";
    for (const CLI::Option* option : OptionsOf(command)) {
        const std::string name = "\\fB" + Roff("--" + LongName(*option)) + "\\fR";
        const std::string value = ValueName(*option);
        const std::string whole = name + (value.empty() ? "" : " \\fI" + Roff(value) + "\\fR");
        if (name.find("help") == std::string::npos && name.find("version") == std::string::npos) {
            text += (option->get_required() ? whole : "[" + whole + "]") +
                    (MayRepeat(*option) && option->get_required() ? " ..." : "") + "\n";
        }
    }
    for (const CLI::Option* operand : OperandsOf(command)) {
        text += "\\fI" + OperandName(*operand) + "\\fR\n";
    }
    text.pop_back();
    return text;
}

/// The heading of an option in the list of options.
std::string Heading(CLI::App& program, const std::string& name) {
    const auto options = OptionsNamed(program, name);
    std::vector<std::string> values;
    for (const CLI::Option* option : options) {
        if (const std::string value = ValueName(*option);
            !value.empty() && std::ranges::find(values, value) == values.end()) {
            values.push_back(value);
        }
    }
    const char letter = Letter(*options.front());
    return ".TP\n" + (letter != 0 ? Printf("\\fB\\-%c\\fR, ", letter) : std::string()) + "\\fB" +
           Roff("--" + name) + "\\fR" +
           (values.empty() ? "" : " \\fI" + Roff(Join(values, "\\fR or \\fI")) + "\\fR");
}

/// "PCI, PCI-X and VME".
std::string Words(CLI::App& program, const std::string& name) {
    const std::vector<std::string> words = CompletionOf(*OptionsNamed(program, name).front()).words;
    if (words.empty()) {
        Fail("the template asks for the words of --" + name + ", which has none");
    }
    const std::vector<std::string> first(words.begin(), words.end() - 1);
    return Roff(Join(first, ", ") + " or " + words.back());
}

/// What stands for `@part@`; nothing for an unknown part.
std::optional<std::string> Filled(CLI::App& program, const std::string& part) {
    const std::size_t blank = part.find(' ');
    const std::string what = part.substr(0, blank);
    const std::string name = blank == std::string::npos ? "" : part.substr(blank + 1);
    if (what == "synopsis") {
        return Synopsis(program, CommandNamed(program, name));
    }
    if (what == "option") {
        return Heading(program, name);
    }
    if (what == "words") {
        return Words(program, name);
    }
    const std::map<std::string, std::function<std::string()>> others = {
        {"version", [] { return BUSQUILL_VERSION; }},
        {"program", [&] { return program.get_name(); }},
        {"function", [&] { return ReplaceAll(program.get_name(), "-", "_"); }},
        {"commands", [&] { return Join(CommandNames(program), " "); }},
        {"bash options", [&] { return ForEachCommand(program, BashOptions); }},
        {"bash values", [&] { return ForEachCommand(program, BashValues); }},
        {"bash operands", [&] { return ForEachCommand(program, BashOperands); }},
        {"zsh commands",
         [&] {
             return ForEachCommand(program, [](CLI::App& command) {
                 return "    " + Quoted(command.get_name() + ":" + command.get_description()) +
                        "\n";
             });
         }},
        {"zsh arguments", [&] { return ForEachCommand(program, ZshArguments); }},
        {"fish commands", [&] { return ForEachCommand(program, FishCommand); }},
        {"fish arguments", [&] { return ForEachCommand(program, FishArguments); }},
    };
    const auto found = others.find(part);
    return found == others.end() ? std::nullopt : std::optional(found->second());
}

/// Whether any value of the program is completed in one of these ways.
bool Completes(CLI::App& program, std::initializer_list<Kind> kinds) {
    const auto isOne = [&](CLI::Option* option) {
        return std::ranges::find(kinds, CompletionOf(*option).kind) != kinds.end();
    };
    return std::ranges::any_of(CommandsOf(program), [&](CLI::App* command) {
        return std::ranges::any_of(OptionsOf(*command), isOne) ||
               std::ranges::any_of(OperandsOf(*command), isOne);
    });
}

/// Whether the lines between "@if what@" and "@end@" belong to the program; nothing for an unknown
/// condition.
std::optional<bool> Holds(CLI::App& program, const std::string& what) {
    return what == "names" ? std::optional(Completes(program, {Kind::Names, Kind::Patterns}))
                           : std::nullopt;
}

/// Whether the text between two @ may be a part's name.
bool IsPart(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || c == ' ' || c == '-';
    });
}

} // namespace

std::string FillTemplate(CLI::App& program, std::string_view text) {
    std::string filled;
    while (true) {
        const std::size_t begin = text.find('@');
        const std::size_t end = begin == std::string_view::npos ? begin : text.find('@', begin + 1);
        if (end == std::string_view::npos) {
            return filled + std::string(text);
        }
        const std::string part(text.substr(begin + 1, end - begin - 1));
        filled += text.substr(0, begin);
        if (!IsPart(part)) {
            filled += '@';
            text.remove_prefix(begin + 1);
            continue;
        }
        if (part.starts_with(conditionBegin)) {
            const std::size_t last = text.find(conditionEnd, end);
            const auto holds = Holds(program, part.substr(conditionBegin.size()));
            if (!holds || last == std::string_view::npos) {
                Fail("the template has an unknown condition, or one without an end: @" + part +
                     "@");
            }
            filled += *holds ? FillTemplate(program, text.substr(end + 2, last - end - 2)) : "";
            text.remove_prefix(last + conditionEnd.size());
            continue;
        }
        const auto found = Filled(program, part);
        if (!found) {
            Fail("the template has an unknown part @" + part + "@");
        }
        // What is filled in names the program too.
        filled += found->find('@') == std::string::npos ? *found : FillTemplate(program, *found);
        text.remove_prefix(end + 1);
    }
}

int PrintTemplate(CLI::App& program, const std::string& path) {
    SetProgramName(program.get_name());
    try {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            Fail("Error opening file " + path + ".");
        }
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        Output output("");
        output.Write(FillTemplate(program, text));
        output.Close();
        return ExitStatus::Done;
    } catch (const ExitRequest& request) {
        Say(request.message);
        return request.status;
    }
}

} // namespace busquill::cli
