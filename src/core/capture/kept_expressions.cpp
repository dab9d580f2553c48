#include "capture/kept_expressions.h"

#include "platform/text.h"
#include "platform/text_file.h"
#include "platform/user_folder.h"

#include <algorithm>
#include <system_error>

namespace busquill {

namespace {

using Kept = KeptExpressions::Kept;

bool BeginsKeptName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsInKeptName(char c) {
    return BeginsKeptName(c) || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

} // namespace

std::filesystem::path KeptExpressions::UsualFile() {
    return UserDataFolder() / "expressions.txt";
}

bool KeptExpressions::IsName(std::string_view name) noexcept {
    return !name.empty() && BeginsKeptName(name.front()) && std::ranges::all_of(name, IsInKeptName);
}

bool KeptExpressions::Read(const std::filesystem::path& file) {
    lines_.clear();
    std::error_code unknown;
    if (!std::filesystem::exists(file, unknown)) {
        return !unknown;
    }
    TextReader reader;
    if (!reader.Open(file.string())) {
        return false;
    }
    while (const auto line = reader.ReadLine()) {
        std::string_view read = *line;
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; // of some editors
        if (lines_.empty() && read.starts_with(byteOrderMark)) {
            read.remove_prefix(byteOrderMark.size());
        }
        const std::size_t colon = std::min(read.find(':'), read.size());
        const std::string_view name = Trim(read.substr(0, colon));
        const std::string_view text = Trim(read.substr(std::min(colon + 1, read.size())));
        if (IsName(name) && !text.empty() && Find(name) == nullptr) {
            lines_.push_back({std::string(name), std::string(text)});
        } else {
            lines_.push_back({{}, std::string(*line)});
        }
    }
    return !reader.Failed();
}

bool KeptExpressions::Write(const std::filesystem::path& file) const {
    std::error_code failed;
    std::filesystem::create_directories(file.parent_path(), failed);
    TextWriter writer;
    if (failed || !writer.CreateBeside(file.string())) {
        return false;
    }
    for (const Kept& line : lines_) {
        writer.Write(line.name.empty() ? line.text + "\n" : line.name + ": " + line.text + "\n");
    }
    return writer.Close();
}

std::vector<const Kept*> KeptExpressions::All() const {
    std::vector<const Kept*> all;
    for (const Kept& line : lines_) {
        if (!line.name.empty()) {
            all.push_back(&line);
        }
    }
    return all;
}

std::vector<std::string> KeptExpressions::Names() const {
    std::vector<std::string> names;
    for (const Kept* kept : All()) {
        names.push_back("@" + kept->name);
    }
    return names;
}

const Kept* KeptExpressions::Find(std::string_view name) const {
    const auto found = std::ranges::find_if(lines_, [&](const Kept& line) {
        return !line.name.empty() && EqualIgnoringCase(line.name, name);
    });
    return found == lines_.end() ? nullptr : &*found;
}

std::vector<std::size_t> KeptExpressions::WrongLines() const {
    std::vector<std::size_t> wrong;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const std::string_view text = Trim(lines_[i].text);
        if (lines_[i].name.empty() && !text.empty() && !text.starts_with('#')) {
            wrong.push_back(i + 1);
        }
    }
    return wrong;
}

void KeptExpressions::Keep(std::string_view name, std::string_view text) {
    std::string line(Trim(text));
    // It has one line in the file; what separates words may be any blank.
    std::ranges::replace_if(
        line, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    Kept kept{std::string(name), std::move(line)};
    const auto same = std::ranges::find_if(lines_, [&](const Kept& each) {
        return !each.name.empty() && EqualIgnoringCase(each.name, name);
    });
    if (same != lines_.end()) {
        *same = std::move(kept);
    } else {
        lines_.push_back(std::move(kept));
    }
}

bool KeptExpressions::Remove(std::string_view name) {
    return std::erase_if(lines_, [&](const Kept& each) {
               return !each.name.empty() && EqualIgnoringCase(each.name, name);
           }) != 0;
}

} // namespace busquill
