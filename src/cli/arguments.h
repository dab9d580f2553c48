/// The command line: commands and options, and the user's arguments.
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
    const char* operands; // optional ones in square brackets
    std::size_t leastOperands;
    std::size_t mostOperands;
    std::string_view needed;  // names of required options, separated by blanks
    std::string_view options; // names of optional ones
    const char* help;
    int (*run)(const Arguments&);
};

struct Arguments {
    const CommandRow* command = nullptr; // null with "help" or "version" alone
    std::vector<std::string> operands;
    std::map<std::string, std::vector<std::string>, std::less<>>
        options; // a flag has one empty value

    [[nodiscard]] bool Has(std::string_view option) const { return options.contains(option); }
    /// The last value given; empty when there is none.
    [[nodiscard]] std::string Value(std::string_view option) const;
    [[nodiscard]] const std::vector<std::string>& All(std::string_view option) const;
    /// The value as a whole number; throws ExitRequest for anything else.
    [[nodiscard]] std::optional<std::int64_t> Number(std::string_view option) const;
    /// The value, which must be one of `words`; the first of these without the option. Throws
    /// ExitRequest for any other value.
    [[nodiscard]] std::string OneOf(std::string_view option,
                                    std::initializer_list<const char*> words) const;
};

/// Throws ExitRequest for an invalid command line.
[[nodiscard]] Arguments ParseArguments(std::span<const std::string> texts);

/// The output of "-h" for a command, or for the whole program if that is null.
[[nodiscard]] std::string HelpText(const CommandRow* command);

} // namespace busquill::cli
