#include "cli/command_options.h"

#include "cli/output.h"
#include "cli/session.h"
#include "platform/text.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <optional>
#include <string_view>

namespace busquill::cli {

namespace {

constexpr const char* completionName = "completion";

CLI::Option& AddValues(CLI::App& command, const char* names, const char* value, const char* help,
                       std::function<void(const std::vector<std::string>&)> take) {
    CLI::Option* option = command.add_option(
        names,
        [take = std::move(take)](const CLI::results_t& values) {
            take(values);
            return true;
        },
        help);
    option->type_name(value)->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    return *option;
}

/// A whole number without anything around it.
std::optional<std::int64_t> WholeNumber(std::string_view text) {
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<std::uint64_t> HexNumber(std::string_view text) {
    text.remove_prefix(text.starts_with("0x") || text.starts_with("0X") ? 2 : 0);
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
    return error == std::errc() && stop == end && !text.empty() ? std::optional(number)
                                                                : std::nullopt;
}

std::string WrongNumber(const std::string& text, const NumberLimits& limits) {
    const auto number = WholeNumber(text);
    if (!number) {
        return "takes a whole number, not \"" + text + "\"";
    }
    if (*number >= limits.least && *number <= limits.most) {
        return {};
    }
    if (limits.are != nullptr) {
        return "is " + std::string(limits.are) + ", not " + text;
    }
    return Printf("takes a whole number from %lld to %lld, not %s",
                  static_cast<long long>(limits.least), static_cast<long long>(limits.most),
                  text.c_str());
}

/// An empty text is mostly a mistake in a script: one of its variables is empty.
CLI::Option& NeverEmpty(CLI::Option& option) {
    const std::string complaint =
        option.get_positional() ? "is empty" : "needs a value: " + ValueName(option);
    return Checked(option, [complaint](const std::string& text) {
        return text.empty() ? complaint : std::string();
    });
}

CLI::Option& KeepCompletion(CLI::Option& option, Completion::Kind kind,
                            const std::vector<std::string>& words) {
    std::string text = std::to_string(static_cast<int>(kind));
    for (const std::string& word : words) {
        text += "\n" + word;
    }
    try {
        option.get_validator(completionName)->description(text);
    } catch (const CLI::OptionNotFound&) {
        option.check(
            CLI::Validator([](std::string&) { return std::string(); }, text, completionName));
    }
    return option;
}

} // namespace

CLI::Option& AddFlag(CLI::App& command, const char* names, std::function<void()> take,
                     const char* help) {
    CLI::Option* option = command.add_flag_callback(names, std::move(take), help);
    option->disable_flag_override()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    return *option;
}

CLI::Option& AddFlag(CLI::App& command, const char* names, bool& into, const char* help) {
    return AddFlag(
        command, names, [&into] { into = true; }, help);
}

CLI::Option& AddText(CLI::App& command, const char* names,
                     std::function<void(const std::string&)> take, const char* value,
                     const char* help) {
    return NeverEmpty(AddValues(
        command, names, value, help,
        [take = std::move(take)](const std::vector<std::string>& values) { take(values.back()); }));
}

CLI::Option& AddText(CLI::App& command, const char* names, std::string& into, const char* value,
                     const char* help) {
    return AddText(
        command, names, [&into](const std::string& text) { into = text; }, value, help);
}

CLI::Option& AddTexts(CLI::App& command, const char* names,
                      std::function<void(const std::vector<std::string>&)> take, const char* value,
                      const char* help) {
    CLI::Option& option = AddValues(command, names, value, help, std::move(take));
    return *NeverEmpty(option).multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

CLI::Option& AddTexts(CLI::App& command, const char* names, std::vector<std::string>& into,
                      const char* value, const char* help) {
    return AddTexts(
        command, names, [&into](const std::vector<std::string>& values) { into = values; }, value,
        help);
}

CLI::Option& Required(CLI::Option& option) {
    return *option.required();
}

CLI::Option& Checked(CLI::Option& option, Check check) {
    return *option.check(std::move(check));
}

CLI::Option& Excluding(CLI::Option& option, CLI::Option& other) {
    return *option.excludes(&other);
}

CLI::Option& OptionOf(CLI::App& command, const char* name) {
    return *command.get_option(name);
}

CLI::Option& Described(CLI::Option& option, const char* help) {
    return *option.description(help);
}

CLI::Option& AddNumber(CLI::App& command, const char* names, std::function<void(std::int64_t)> take,
                       const char* value, const NumberLimits& limits, const char* help) {
    CLI::Option& option =
        AddValues(command, names, value, help,
                  [take = std::move(take)](const std::vector<std::string>& values) {
                      take(WholeNumber(values.back()).value());
                  });
    return Checked(option, [limits](const std::string& text) { return WrongNumber(text, limits); });
}

CLI::Option& AddHexNumber(CLI::App& command, const char* names,
                          std::function<void(std::uint64_t)> take, const char* value,
                          std::uint64_t most, const char* help) {
    CLI::Option& option =
        AddValues(command, names, value, help,
                  [take = std::move(take)](const std::vector<std::string>& values) {
                      take(HexNumber(values.back()).value());
                  });
    return Checked(option, [most](const std::string& text) {
        const auto number = HexNumber(text);
        return number && *number <= most
                   ? std::string()
                   : Printf("takes a hexadecimal number up to %llX, not \"%s\"",
                            static_cast<unsigned long long>(most), text.c_str());
    });
}

CLI::Option& AddChoice(CLI::App& command, const char* names, const std::vector<std::string>& words,
                       std::function<void(std::size_t)> take, const char* value, const char* help) {
    const auto indexOf = [words](const std::string& text) {
        return static_cast<std::size_t>(std::ranges::find(words, text) - words.begin());
    };
    CLI::Option& option =
        AddValues(command, names, value, help,
                  [indexOf, take = std::move(take)](const std::vector<std::string>& values) {
                      take(indexOf(values.back()));
                  });
    Checked(option, [indexOf, words](const std::string& text) {
        std::string all;
        for (const std::string& word : words) {
            all += (all.empty() ? "" : ", ") + word;
        }
        return indexOf(text) < words.size() ? std::string()
                                            : "is one of " + all + "; not \"" + text + "\"";
    });
    return CompletedWithWords(option, words);
}

CLI::Option& AddOperand(CLI::App& command, const char* name, std::string& into) {
    return *AddText(command, name, into, "", "").required();
}

CLI::Option& AddOperands(CLI::App& command, const char* name, std::vector<std::string>& into) {
    // With an exact number of values the library does not take "[a]" for a list; it does not check
    // that all have come if it takes all.
    constexpr int many = 1 << 20;
    return *AddTexts(command, name, into, "", "").required()->expected(many);
}

CLI::Option& Optional(CLI::Option& option) {
    return *option.required(false);
}

CLI::Option& AddOutput(CLI::App& command, OutputOptions& into) {
    return CompletedWithFiles(
        AddText(command, "-o,--output", into.path, "FILE", "write to FILE; - is standard output"));
}

CLI::Option& AddOverwrite(CLI::App& command, OutputOptions& into) {
    return AddFlag(command, "--overwrite", into.overwrite, "let -o replace a file that is read");
}

CLI::Option& AddJson(CLI::App& command, bool& into) {
    return AddFlag(command, "--json", into, "print JSON");
}

CLI::Option& AddQuiet(CLI::App& command, bool& into) {
    return AddFlag(command, "--quiet", into, "print no progress and no notes");
}

void AddPortOptions(CLI::App& command, PortOptions& into) {
    into.baud = usualBaudRate;
    Completed(Required(AddText(command, "--port", into.port, "PORT",
                               "COM1 to COM8, the path of a terminal device, or USB")),
              Completion::Kind::Ports);
    AddChoice<std::int64_t>(command, "--baud",
                            {{"9600", 9600}, {"19200", 19200}, {"38400", 38400}, {"57600", 57600}},
                            into.baud, "RATE", "rate of the serial line (default 57600)");
}

CLI::Option& CompletedWithFiles(CLI::Option& option, const char* ending) {
    return KeepCompletion(option, Completion::Kind::Files,
                          *ending == '\0' ? std::vector<std::string>()
                                          : std::vector<std::string>{ending});
}

CLI::Option& CompletedWithWords(CLI::Option& option, const std::vector<std::string>& words) {
    return KeepCompletion(option, Completion::Kind::Words, words);
}

CLI::Option& Completed(CLI::Option& option, Completion::Kind kind) {
    return KeepCompletion(option, kind, {});
}

Completion CompletionOf(CLI::Option& option) {
    Completion completion;
    const CLI::Validator* kept = nullptr;
    try {
        kept = option.get_validator(completionName);
    } catch (const CLI::OptionNotFound&) {
        return completion;
    }
    std::istringstream lines(kept->get_description());
    std::string line;
    std::getline(lines, line);
    completion.kind = static_cast<Completion::Kind>(std::stoi(line));
    while (std::getline(lines, line)) {
        completion.words.push_back(line);
    }
    return completion;
}

std::string ValueName(const CLI::Option& option) {
    if (option.get_items_expected_max() == 0) {
        return {};
    }
    const std::string name = option.get_type_name(); // with what its validators are, after a colon
    return name.substr(0, name.find(':'));
}

std::string OperandName(const CLI::Option& option) {
    const std::string name =
        option.get_name(true) + (option.get_items_expected_max() > 1 ? "..." : "");
    return option.get_required() ? name : "[" + name + "]";
}

std::string LongName(const CLI::Option& option) {
    return option.get_lnames().empty() ? std::string() : option.get_lnames().front();
}

char Letter(const CLI::Option& option) {
    return option.get_snames().empty() ? '\0' : option.get_snames().front().front();
}

std::vector<CLI::Option*> OptionsOf(CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return !option->get_positional(); });
}

std::vector<CLI::Option*> OperandsOf(CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

} // namespace busquill::cli
