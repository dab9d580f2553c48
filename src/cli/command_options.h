/// The options and operands of commands, declared for CLI11 and read back for help, man pages and
/// completions. A command declares them bound to a struct of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace busquill::cli {

struct OutputOptions;
struct PortOptions;

// Options. `names` are as typed, such as "-o,--output"; `value` is the value's name in the help. If
// an option is given more than once, the last value counts, unless it takes a list. No value may be
// empty.

CLI::Option& AddFlag(CLI::App& command, const char* names, std::function<void()> take,
                     const char* help);
CLI::Option& AddFlag(CLI::App& command, const char* names, bool& into, const char* help);
CLI::Option& AddText(CLI::App& command, const char* names,
                     std::function<void(const std::string&)> take, const char* value,
                     const char* help);
CLI::Option& AddText(CLI::App& command, const char* names, std::string& into, const char* value,
                     const char* help);
/// May be given several times.
CLI::Option& AddTexts(CLI::App& command, const char* names,
                      std::function<void(const std::vector<std::string>&)> take, const char* value,
                      const char* help);
CLI::Option& AddTexts(CLI::App& command, const char* names, std::vector<std::string>& into,
                      const char* value, const char* help);
CLI::Option& Required(CLI::Option& option);
/// Checks each value: returns the rest of a message that begins with the option, or nothing.
using Check = std::function<std::string(const std::string&)>;
CLI::Option& Checked(CLI::Option& option, Check check);
/// Only one of the two may be given.
CLI::Option& Excluding(CLI::Option& option, CLI::Option& other);
/// The command's option with this name.
CLI::Option& OptionOf(CLI::App& command, const char* name);
CLI::Option& Described(CLI::Option& option, const char* help);

/// The numbers that an option takes.
struct NumberLimits {
    std::int64_t least = std::numeric_limits<std::int64_t>::min();
    std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const char* are = nullptr; // in words, such as "a number of seconds from 1 up"
};
/// A decimal whole number, with a sign if the user likes.
CLI::Option& AddNumber(CLI::App& command, const char* names, std::function<void(std::int64_t)> take,
                       const char* value, const NumberLimits& limits, const char* help);
template <typename Number>
CLI::Option& AddNumber(CLI::App& command, const char* names, Number& into, const char* value,
                       const NumberLimits& limits, const char* help) {
    return AddNumber(
        command, names,
        [&into](std::int64_t number) {
            if constexpr (std::is_integral_v<Number>) {
                into = static_cast<Number>(number);
            } else {
                into = number; // an optional number
            }
        },
        value, limits, help);
}
/// Hexadecimal digits, with or without "0x", at most `most`.
CLI::Option& AddHexNumber(CLI::App& command, const char* names,
                          std::function<void(std::uint64_t)> take, const char* value,
                          std::uint64_t most, const char* help);

/// One of some words.
CLI::Option& AddChoice(CLI::App& command, const char* names, const std::vector<std::string>& words,
                       std::function<void(std::size_t)> take, const char* value, const char* help);
template <typename Choice, typename Into>
CLI::Option& AddChoice(CLI::App& command, const char* names,
                       const std::vector<std::pair<const char*, Choice>>& choices, Into& into,
                       const char* value, const char* help) {
    std::vector<std::string> words;
    std::vector<Choice> meanings;
    for (const auto& [word, meaning] : choices) {
        words.emplace_back(word);
        meanings.push_back(meaning);
    }
    return AddChoice(
        command, names, words, [&into, meanings](std::size_t index) { into = meanings[index]; },
        value, help);
}

// Operands, in their order. They are required unless made `Optional`, which works for options too.

CLI::Option& AddOperand(CLI::App& command, const char* name, std::string& into);
CLI::Option& AddOperands(CLI::App& command, const char* name, std::vector<std::string>& into);
CLI::Option& Optional(CLI::Option& option);

// Options of many commands.

CLI::Option& AddOutput(CLI::App& command, OutputOptions& into);
CLI::Option& AddOverwrite(CLI::App& command, OutputOptions& into);
CLI::Option& AddJson(CLI::App& command, bool& into);
CLI::Option& AddQuiet(CLI::App& command, bool& into);
/// --port, which is required, and --baud.
void AddPortOptions(CLI::App& command, PortOptions& into);

// What shells offer for a value: kept with the option, as a validator that accepts everything.

/// What a shell completes a value with.
struct Completion {
    enum class Kind { Nothing, Words, Files, Names, Patterns, Ports };
    Kind kind = Kind::Nothing;
    std::vector<std::string> words; // the words; the ending of the files, if they have one
};
/// Files with this ending, or all if it is empty.
CLI::Option& CompletedWithFiles(CLI::Option& option, const char* ending = "");
CLI::Option& CompletedWithWords(CLI::Option& option, const std::vector<std::string>& words);
/// Kinds without words.
CLI::Option& Completed(CLI::Option& option, Completion::Kind kind);
[[nodiscard]] Completion CompletionOf(CLI::Option& option);

/// The name of an option's value in the help; empty for a flag.
[[nodiscard]] std::string ValueName(const CLI::Option& option);
/// The name of an operand as in a usage line, such as "[FILE]" or "FILE...".
[[nodiscard]] std::string OperandName(const CLI::Option& option);
/// An option's long name without its dashes, and its letter, or 0.
[[nodiscard]] std::string LongName(const CLI::Option& option);
[[nodiscard]] char Letter(const CLI::Option& option);
/// Options and operands in the order of their declaration.
[[nodiscard]] std::vector<CLI::Option*> OptionsOf(CLI::App& app);
[[nodiscard]] std::vector<CLI::Option*> OperandsOf(CLI::App& app);

} // namespace busquill::cli
