#include "testsuites/check_list.h"

#include "platform/text.h"
#include "platform/text_file.h"
#include "platform/working_directory.h"

#include <algorithm>

namespace busquill {

namespace {

/// Longer lines are read as several.
constexpr std::size_t longestLine = 511;

std::string InstructionsOf(std::string_view line) {
    std::string text(line.substr(1));
    if (const auto end = text.rfind('>'); end != std::string::npos) {
        text.erase(end, 1);
    }
    return text;
}

void TakeLine(CheckList& list, std::string_view line) {
    switch (line.front()) {
    case '[': {
        std::string_view title = line.substr(1);
        if (title.ends_with(']')) {
            title.remove_suffix(1);
        }
        list.push_back({true, std::string(line), std::string(title), {}});
        break;
    }
    case '<':
        if (!list.empty()) {
            list.back().instructions = InstructionsOf(line);
        }
        break;
    default:
        list.push_back({false, std::string(line), std::string(line), {}});
    }
}

} // namespace

std::string_view CheckItem::ShortForm() const {
    const auto dot = isGroup ? std::string::npos : text.find('.');
    return dot == std::string::npos ? std::string_view() : std::string_view(text).substr(0, dot);
}

std::string_view CheckItem::Title() const {
    if (isGroup) {
        return line;
    }
    constexpr std::size_t separator = 2; // ". "
    const auto dot = text.find('.');
    return dot == std::string::npos
               ? std::string_view(text)
               : std::string_view(text).substr(std::min(dot + separator, text.size()));
}

CheckList ReadCheckList(TextReader& file) {
    CheckList list;
    while (const auto line = file.ReadLine()) {
        for (std::string_view rest = *line; !rest.empty();) {
            TakeLine(list, ToUtf8(rest.substr(0, longestLine)));
            rest.remove_prefix(std::min(rest.size(), longestLine));
        }
    }
    return list;
}

CheckList LoadCheckList(const WorkingDirectory& directory) {
    TextReader file;
    return file.Open(directory.FilePath("ComplianceChecklist.txt")) ? ReadCheckList(file)
                                                                    : CheckList();
}

} // namespace busquill
