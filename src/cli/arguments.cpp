#include "cli/arguments.h"

#include "cli/commands.h"
#include "cli/exit_request.h"
#include "platform/near_names.h"
#include "platform/text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <sstream>

namespace busquill::cli {

namespace {

struct OptionRow {
    char letter;          // 0: none
    const char* name;     // without its dashes
    const char* argument; // of its value; null for a flag
    const char* help;
};

// clang-format off

constexpr OptionRow optionRows[] = {
    {'h', "help",          nullptr,      "this text"},
    {'V', "version",       nullptr,      "the program's version"},
    {'o', "output",        "FILE",       "write to FILE; - is standard output"},
    {0,   "overwrite",     nullptr,      "let -o replace a file that is read"},
    {0,   "json",          nullptr,      "print JSON"},
    {0,   "model",         "NAME",       "board that made the capture, such as VMEKite"},
    {0,   "bus",           "MODE",       "bus that was captured, such as PCI-X (default PCI)"},
    {0,   "width",         "32|64",      "width of the bus (default 32)"},
    {0,   "from",          "N",          "begin at sample N (the trigger is 0)"},
    {0,   "to",            "N",          "end at sample N"},
    {0,   "columns",       "NAME,...",   "these columns only"},
    {0,   "zoom",          nullptr,      "the Power Zoom samples"},
    {0,   "format",        "FORMAT",     "list: text, csv or json; convert: vcd, csv or sr"},
    {'p', "pattern",       "NAME=VALUE", "samples with this value; may be given several times, all must hold"},
    {0,   "backward",      nullptr,      "search towards the first sample"},
    {0,   "all",           nullptr,      "all matches, not the first alone"},
    {0,   "changes",       nullptr,      "a row for each change, not for each sample"},
    {0,   "ignore",        "NAME,...",   "leave these signals out of the comparison"},
    {0,   "align",         "trigger|start", "pair samples by number or by place (default trigger)"},
    {0,   "payload",       nullptr,      "also the bytes that go to the board"},
    {0,   "port",          "PORT",       "COM1 to COM8, the path of a terminal device, or USB"},
    {0,   "baud",          "RATE",       "rate of the serial line (default 57600)"},
    {0,   "setup",         "FILE",       "trigger program (.tsp)"},
    {0,   "timeout",       "S",          "stop the board after S seconds; what it has is still fetched"},
    {0,   "repeat",        "N",          "run N times (0: without end) into numbered files"},
    {0,   "stop-if-found", "NAME=VALUE", "end the runs when a capture holds this; may be given several times"},
};

constexpr CommandRow commandRows[] = {
    {"info",    "FILE...", 1, std::numeric_limits<std::size_t>::max(),
     "", "output overwrite json model bus width",
     "what is in captures", RunInfo},
    {"list",    "FILE", 1, 1,
     "", "output overwrite json model bus width from to columns zoom format",
     "the listing, as the State window shows it", RunList},
    {"search",  "FILE", 1, 1,
     "pattern", "output overwrite json model bus width from backward all",
     "the numbers of the samples that match a pattern", RunSearch},
    {"filter",  "FILE", 1, 1,
     "pattern output", "overwrite model bus width",
     "a capture of the samples that match a pattern", RunFilter},
    {"convert", "FILE", 1, 1,
     "output", "overwrite model bus width from to zoom format changes",
     "a value change dump (.vcd), comma separated values (.csv) or a session file (.sr)", RunConvert},
    {"compare", "A B", 2, 2,
     "", "output overwrite json model bus width ignore align",
     "where two captures differ", RunCompare},
    {"stats",   "FILE", 1, 1,
     "", "output overwrite json model bus width",
     "transactions, bytes, bursts, wait states and findings", RunStats},
    {"names",   "[FILE]", 0, 1,
     "", "output overwrite json model bus width",
     "the signals and labels of a bus, as patterns take them", RunNames},
    {"setup",   "FILE", 1, 1,
     "", "output overwrite json model bus width payload",
     "a trigger program in plain words", RunSetup},
    {"board",   "", 0, 0,
     "port", "output json baud",
     "the connected board and its bus", RunBoard},
    {"capture", "", 0, 0,
     "port setup output", "overwrite baud timeout repeat stop-if-found",
     "captures with the connected board", RunCapture},
};

// clang-format on

const OptionRow* FindOption(std::string_view name) {
    const auto* row =
        std::ranges::find_if(optionRows, [&](const OptionRow& each) { return each.name == name; });
    return row == std::end(optionRows) ? nullptr : row;
}

const OptionRow* FindLetter(char letter) {
    const auto* row = std::ranges::find_if(
        optionRows, [&](const OptionRow& each) { return letter != 0 && each.letter == letter; });
    return row == std::end(optionRows) ? nullptr : row;
}

/// The options with these names, which are separated by blanks.
std::vector<const OptionRow*> OptionsOf(std::string_view names) {
    std::vector<const OptionRow*> options;
    std::istringstream words{std::string(names)};
    for (std::string name; words >> name;) {
        options.push_back(FindOption(name));
    }
    return options;
}

bool Takes(const CommandRow& command, std::string_view option) {
    const auto has = [&](std::string_view names) {
        return std::ranges::any_of(OptionsOf(names),
                                   [&](const OptionRow* each) { return each->name == option; });
    };
    return option == "help" || option == "version" || has(command.needed) || has(command.options);
}

/// As on the command line: "-o FILE", "--port PORT".
std::string Typed(const OptionRow& option) {
    return (option.letter != 0 ? Printf("-%c", option.letter) : Printf("--%s", option.name)) +
           (option.argument != nullptr ? std::string(" ") + option.argument : "");
}

std::string OptionLine(const OptionRow& option) {
    const std::string letter = option.letter != 0 ? Printf("-%c, ", option.letter) : "    ";
    const std::string argument =
        option.argument != nullptr ? std::string(" ") + option.argument : "";
    const std::string left = letter + "--" + option.name + argument;
    return Printf("  %-32s %s\n", left.c_str(), option.help);
}

class Parser {
public:
    explicit Parser(std::span<const std::string> texts) : texts_(texts) {}

    Arguments Parse() {
        bool onlyOperands = false;
        while (at_ < texts_.size()) {
            const std::string& text = texts_[at_++];
            if (onlyOperands || text.size() < 2 || text[0] != '-') {
                TakeOperand(text);
            } else if (text == "--") {
                onlyOperands = true;
            } else if (text[1] == '-') {
                TakeLong(text.substr(2));
            } else {
                TakeShort(text);
            }
        }
        Check();
        return std::move(arguments_);
    }

private:
    void TakeOperand(const std::string& text) {
        if (arguments_.command != nullptr) {
            arguments_.operands.push_back(text);
            return;
        }
        const auto* row = std::ranges::find_if(
            commandRows, [&](const CommandRow& each) { return text == each.name; });
        if (row == std::end(commandRows)) {
            std::vector<std::string> names;
            for (const CommandRow& each : commandRows) {
                names.emplace_back(each.name);
            }
            WrongUse("no command \"" + text + "\"; there are " +
                     ListNearest(text, std::move(names)));
        }
        arguments_.command = row;
    }

    void TakeLong(const std::string& text) {
        const std::size_t sign = text.find('=');
        const std::string name = text.substr(0, sign);
        const OptionRow* option = FindOption(name);
        if (option == nullptr) {
            WrongUse("no option --" + name);
        }
        if (sign == std::string::npos) {
            TakeOption(*option, std::nullopt);
        } else if (option->argument == nullptr) {
            WrongUse("--" + name + " takes no value");
        } else {
            TakeOption(*option, text.substr(sign + 1));
        }
    }

    void TakeShort(const std::string& text) {
        for (std::size_t i = 1; i < text.size(); ++i) {
            const OptionRow* option = FindLetter(text[i]);
            if (option == nullptr) {
                WrongUse(Printf("no option -%c", text[i]));
            }
            const bool hasValue = option->argument != nullptr && i + 1 < text.size();
            TakeOption(*option, hasValue ? std::optional(text.substr(i + 1)) : std::nullopt);
            if (hasValue) {
                return;
            }
        }
    }

    void TakeOption(const OptionRow& option, std::optional<std::string> value) {
        if (option.argument != nullptr && !value) {
            if (at_ == texts_.size()) {
                WrongUse(Printf("--%s needs a value: %s", option.name, option.argument));
            }
            value = texts_[at_++];
        }
        arguments_.options[option.name].push_back(value.value_or(""));
    }

    void Check() const {
        if (arguments_.Has("help") || arguments_.Has("version")) {
            return;
        }
        if (arguments_.command == nullptr) {
            WrongUse("which command? See busquill-trace -h");
        }
        const CommandRow& command = *arguments_.command;
        for (const auto& [name, values] : arguments_.options) {
            if (!Takes(command, name)) {
                WrongUse(Printf("%s takes no --%s", command.name, name.c_str()));
            }
        }
        std::string missing;
        for (const OptionRow* option : OptionsOf(command.needed)) {
            if (arguments_.Value(option->name).empty()) {
                missing += (missing.empty() ? "" : ", ") + Typed(*option);
            }
        }
        if (!missing.empty()) {
            WrongUse(Printf("%s needs %s; see busquill-trace %s -h", command.name, missing.c_str(),
                            command.name));
        }
        const std::size_t count = arguments_.operands.size();
        if (count < command.leastOperands) {
            WrongUse(Printf("%s needs %s", command.name, command.operands));
        }
        if (count > command.mostOperands) {
            WrongUse(Printf("%s takes %s, not also \"%s\"", command.name,
                            command.mostOperands == 0 ? "no file" : command.operands,
                            arguments_.operands[command.mostOperands].c_str()));
        }
    }

    std::span<const std::string> texts_;
    std::size_t at_ = 0;
    Arguments arguments_;
};

} // namespace

std::string Arguments::Value(std::string_view option) const {
    const auto found = options.find(option);
    return found == options.end() ? std::string() : found->second.back();
}

const std::vector<std::string>& Arguments::All(std::string_view option) const {
    static const std::vector<std::string> none;
    const auto found = options.find(option);
    return found == options.end() ? none : found->second;
}

std::optional<std::int64_t> Arguments::Number(std::string_view option) const {
    if (!Has(option)) {
        return std::nullopt;
    }
    const std::string text = Value(option);
    const char* const begin = text.c_str() + (text.starts_with('+') ? 1 : 0);
    const char* const end = text.c_str() + text.size();
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error != std::errc() || stop != end || begin == end) {
        WrongUse(Printf("--%s takes a whole number, not \"%s\"", std::string(option).c_str(),
                        text.c_str()));
    }
    return number;
}

std::string Arguments::OneOf(std::string_view option,
                             std::initializer_list<const char*> words) const {
    if (!Has(option)) {
        return *words.begin();
    }
    std::string value = Value(option);
    std::string all;
    for (const char* word : words) {
        if (value == word) {
            return value;
        }
        all += std::string(all.empty() ? "" : ", ") + word;
    }
    WrongUse(Printf("--%s is one of %s; not \"%s\"", std::string(option).c_str(), all.c_str(),
                    value.c_str()));
}

Arguments ParseArguments(std::span<const std::string> texts) {
    return Parser(texts).Parse();
}

std::string HelpText(const CommandRow* command) {
    std::string text;
    if (command == nullptr) {
        text = "Usage: busquill-trace COMMAND [OPTION...] [FILE...]\n\n"
               "Captures of bus analyzer boards from the command line.\n\nCommands:\n";
        for (const CommandRow& row : commandRows) {
            text += Printf("  %-9s %-8s %s\n", row.name, row.operands, row.help);
        }
        return text + "\nOptions of every command:\n" + OptionLine(*FindOption("help")) +
               OptionLine(*FindOption("version")) +
               "\n\"busquill-trace COMMAND -h\" tells the others. \"-\" as a file is standard "
               "input "
               "or output.\n"
               "Exit status: 0 done, 1 nothing found or captures differ, 2 wrong use, 3 failure.\n";
    }
    std::string about = command->help;
    about[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(about[0])));
    std::string needed;
    for (const OptionRow* option : OptionsOf(command->needed)) {
        needed += " " + Typed(*option);
    }
    if (*command->operands != '\0') {
        needed += std::string(" ") + command->operands;
    }
    text = Printf("Usage: busquill-trace %s [OPTION...]%s\n\n%s.\n\nOptions:\n", command->name,
                  needed.c_str(), about.c_str());
    for (const OptionRow& option : optionRows) {
        if (Takes(*command, option.name)) {
            text += OptionLine(option);
        }
    }
    return text;
}

} // namespace busquill::cli
