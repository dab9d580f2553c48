#include "cli/board/check_choice.h"

#include "cli/board/board_session.h"
#include "cli/board/line_output.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/json.h"
#include "cli/name_list.h"
#include "cli/output.h"
#include "platform/near_names.h"
#include "platform/text.h"
#include "testsuites/check_table_document.h"

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

/// A row of the table that is a check and not a group.
struct Check {
    int row;
    int number; // from 1
    std::vector<std::string> groups;
    std::string text; // without the number that it may begin with
};

bool IsNumber(std::string_view text) {
    return !text.empty() &&
           std::ranges::all_of(text, [](unsigned char c) { return std::isdigit(c) != 0; });
}

std::string WithoutNumber(std::string_view text) {
    constexpr std::string_view separator = " - ";
    const auto end = text.find(separator);
    const bool isNumbered = end != std::string_view::npos && IsNumber(text.substr(0, end));
    return std::string(isNumbered ? text.substr(end + separator.size()) : text);
}

std::vector<Check> ChecksOf(CheckTable table) {
    if (table.empty()) {
        return {};
    }
    const int level = std::ranges::max(table, {}, &CheckTableRow::level).level;
    std::vector<Check> checks;
    std::vector<std::string> groups;
    for (std::size_t row = 0; row < table.size(); ++row) {
        groups.resize(static_cast<std::size_t>(table[row].level));
        if (table[row].level == level) {
            checks.push_back({static_cast<int>(row), static_cast<int>(checks.size()) + 1, groups,
                              WithoutNumber(table[row].text)});
        } else {
            groups.emplace_back(table[row].text);
        }
    }
    return checks;
}

std::string PathOf(const std::vector<std::string>& groups) {
    std::string path;
    for (const std::string& group : groups) {
        path += (path.empty() ? "" : "/") + group;
    }
    return path;
}

/// Whether a word is the check's number, its text, one of its groups or the path to it.
bool IsNamed(const Check& check, const std::string& word) {
    return word == std::to_string(check.number) || EqualIgnoringCase(word, check.text) ||
           EqualIgnoringCase(word, Printf("%d - %s", check.number, check.text.c_str())) ||
           EqualIgnoringCase(word, PathOf(check.groups)) ||
           std::ranges::any_of(check.groups, [&](const std::string& group) {
               return EqualIgnoringCase(word, group);
           });
}

bool Contains(const std::string& text, const std::string& word) {
    return ToLower(text).find(ToLower(word)) != std::string::npos;
}

[[noreturn]] void NoSuch(const std::vector<Check>& checks, const std::string& noun,
                         const std::string& word) {
    if (IsNumber(word)) {
        WrongUse(Printf("no %s %s; their numbers are 1 to %d", noun.c_str(), word.c_str(),
                        static_cast<int>(checks.size())));
    }
    std::vector<std::string> names;
    for (const Check& check : checks) {
        for (const std::string& group : check.groups) {
            if (std::ranges::find(names, group) == names.end()) {
                names.push_back(group);
            }
        }
    }
    std::ranges::transform(checks, std::back_inserter(names), &Check::text);
    WrongUse("no " + noun + " \"" + word + "\"; there are " + ListNearest(word, names));
}

/// The rows of the checks that words name.
std::vector<int> RowsOf(const std::vector<Check>& checks, const std::string& noun,
                        const std::vector<std::string>& values) {
    std::vector<int> rows;
    for (const std::string& word : SplitNames(values)) {
        const std::size_t before = rows.size();
        const auto take = [&](auto isMeant) {
            for (const Check& check : checks) {
                if (isMeant(check)) {
                    rows.push_back(check.row);
                }
            }
        };
        take([&](const Check& check) { return IsNamed(check, word); });
        if (rows.size() == before && !word.empty() && !IsNumber(word)) {
            take([&](const Check& check) { return Contains(check.text, word); });
        }
        if (rows.size() == before) {
            NoSuch(checks, noun, word);
        }
    }
    return rows;
}

/// A group is ticked when all its checks are.
void TickGroups(CheckTableDocument& document) {
    const CheckTable table = document.Table();
    for (int row = static_cast<int>(table.size()) - 1; row >= 0; --row) {
        bool isGroup = false;
        bool areAllTicked = true;
        for (int below = row + 1; RowAt(table, below) != nullptr &&
                                  RowAt(table, below)->level > RowAt(table, row)->level;
             ++below) {
            isGroup = true;
            areAllTicked = areAllTicked && document.IsEnabled(below);
        }
        if (isGroup) {
            document.Enable(row, areAllTicked);
        }
    }
}

} // namespace

void AddCheckChoice(CLI::App& command, CheckChoice& choice) {
    const std::string noun = choice.noun;
    AddTexts(command, "--only", choice.only, "LIST",
             (noun + "s by number, group or text, separated by commas").c_str());
    AddTexts(command, "--without", choice.without, "LIST", "leave these out");
    AddFlag(command, "--list", choice.list,
            ("print the chosen " + noun + "s: number, group, text").c_str());
}

void Tick(CheckTableDocument& document, const CheckChoice& choice) {
    const std::vector<Check> checks = ChecksOf(document.Table());
    const std::vector<int> only = RowsOf(checks, choice.noun, choice.only);
    const std::vector<int> without = RowsOf(checks, choice.noun, choice.without);
    if (!only.empty()) {
        document.EnableAll(false);
    }
    for (const int row : only) {
        document.Enable(row, true);
    }
    for (const int row : without) {
        document.Enable(row, false);
    }
    if (!only.empty() || !without.empty()) {
        TickGroups(document);
    }
    if (std::ranges::none_of(checks,
                             [&](const Check& check) { return document.IsEnabled(check.row); })) {
        WrongUse(std::string("no ") + choice.noun + " is left");
    }
}

void SaveChecks(BoardSession& session, CheckTableDocument& document, const std::string& path) {
    if (!path.empty() && !document.OnSaveDocument(path)) {
        session.PrintMessages();
        throw ExitRequest{};
    }
}

int ListTicked(BoardSession& session, CheckTableDocument& document, bool asJson,
               const std::string& path) {
    LineOutput output;
    const std::vector<Check> checks = ChecksOf(document.Table());
    std::size_t width = 0;
    for (const Check& check : checks) {
        width = std::max(width, PathOf(check.groups).size());
    }
    for (const Check& check : checks) {
        if (!document.IsEnabled(check.row)) {
            continue;
        }
        const std::string groups = PathOf(check.groups);
        output.Print(asJson ? JsonLine({{"number", check.number},
                                        {"group", JsonString(groups)},
                                        {"text", JsonString(check.text)}})
                            : Printf("%3d  %-*s  %s", check.number, static_cast<int>(width),
                                     groups.c_str(), check.text.c_str()));
    }
    output.Close();
    SaveChecks(session, document, path);
    return ExitStatus::Done;
}

} // namespace busquill::cli::board
