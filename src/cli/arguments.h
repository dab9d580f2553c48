/// The command line: what commands and options there are, and what a user has given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace busquill::cli {

struct Arguments;

struct CommandRow {
    const char* name;
    const char* operands; // those that may be left out in square brackets
    std::size_t leastOperands;
    std::size_t mostOperands;
    std::string_view needed;  // names of options that it cannot do without, separated by blanks
    std::string_view options; // the others
    const char* help;
    int (*run)(const Arguments&);
};

struct Arguments {
    const CommandRow* command = nullptr; // null with "help" or "version" alone
    std::vector<std::string> operands;
    std::map<std::string, std::vector<std::string>, std::less<>> options; // a flag has one, empty

    [[nodiscard]] bool Has(std::string_view option) const { return options.contains(option); }
    /// The last value that was given; empty when there is none.
    [[nodiscard]] std::string Value(std::string_view option) const;
    [[nodiscard]] const std::vector<std::string>& All(std::string_view option) const;
    /// A whole number; throws ExitRequest for anything else.
    [[nodiscard]] std::optional<std::int64_t> Number(std::string_view option) const;
    /// One of some words, the first when the option is not there; throws ExitRequest for any other.
    [[nodiscard]] std::string OneOf(std::string_view option,
                                    std::initializer_list<const char*> words) const;
};

/// Throws ExitRequest for what it does not understand.
[[nodiscard]] Arguments ParseArguments(std::span<const std::string> texts);

/// What "-h" prints, of the whole program or of one command.
[[nodiscard]] std::string HelpText(const CommandRow* command);

} // namespace busquill::cli
