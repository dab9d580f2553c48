#include "capture/bookmarks.h"

#include "platform/text.h"
#include "platform/text_file.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

namespace busquill {

namespace {

constexpr std::string_view formatTitle = "Busquill bookmarks ";
constexpr std::string_view formatVersion = "1";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; // some editors begin a file with it
constexpr std::int64_t largestNumber = std::int64_t{1} << 32;
constexpr unsigned firstPrintable = 0x20;
constexpr unsigned deleteCharacter = 0x7F;

bool IsControl(unsigned char byte) {
    return byte < firstPrintable || byte == deleteCharacter;
}

/// A note in one line: control characters and the backslash are escaped.
std::string Escaped(std::string_view note) {
    std::string text;
    text.reserve(note.size());
    for (const char c : note) {
        if (c == '\\') {
            text += "\\\\";
        } else if (c == '\n') {
            text += "\\n";
        } else if (IsControl(static_cast<unsigned char>(c))) {
            text += Printf("\\x%02X", static_cast<unsigned char>(c));
        } else {
            text += c;
        }
    }
    return text;
}

std::optional<char> HexByte(std::string_view digits) {
    unsigned value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
    return digits.size() == 2 && error == std::errc() && stop == end
               ? std::optional(static_cast<char>(value))
               : std::nullopt;
}

/// Nothing for a backslash that begins no escape.
std::optional<std::string> Unescaped(std::string_view text) {
    std::string note;
    note.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            note += text[i];
            continue;
        }
        const std::string_view after = text.substr(i + 1);
        if (after.starts_with('\\')) {
            note += '\\';
        } else if (after.starts_with('n')) {
            note += '\n';
        } else if (const auto byte =
                       after.starts_with('x') ? HexByte(after.substr(1, 2)) : std::nullopt) {
            note += *byte;
            i += 2;
        } else {
            return std::nullopt;
        }
        ++i;
    }
    return note;
}

/// Adds the bookmark of a line. What is wrong with the line, or an empty text.
std::string AddLine(std::string_view line, Bookmarks& bookmarks) {
    const std::size_t tab = std::min(line.find('\t'), line.size());
    std::int64_t number = 0;
    const char* const numberEnd = line.data() + tab;
    const auto [stop, error] = std::from_chars(line.data(), numberEnd, number);
    if (stop != numberEnd || stop == line.data()) {
        return "A line begins with the number of a sample and a tab.";
    }
    if (error != std::errc() || number > largestNumber || number < -largestNumber) {
        return Printf("The number of a sample is from %lld to %lld.",
                      static_cast<long long>(-largestNumber),
                      static_cast<long long>(largestNumber));
    }
    if (tab == line.size()) {
        return "There is no tab after the number of the sample.";
    }
    const std::string_view text = line.substr(tab + 1);
    const std::optional<std::string> note = Unescaped(text);
    if (!note) {
        return "A backslash in a note is written \\\\.";
    }
    if (note->size() > longestNote) {
        return Printf("The note is longer than %zu bytes.", longestNote);
    }
    if (ToUtf8(*note) != *note) {
        return "The note is not UTF-8.";
    }
    if (bookmarks.contains(number)) {
        return Printf("Sample %lld has a bookmark already.", static_cast<long long>(number));
    }
    if (bookmarks.size() == mostBookmarks) {
        return Printf("There are more than %zu bookmarks.", mostBookmarks);
    }
    bookmarks.emplace(number, *note);
    return {};
}

std::string CheckTitle(std::string_view line) {
    if (line.starts_with(byteOrderMark)) {
        line.remove_prefix(byteOrderMark.size());
    }
    if (!line.starts_with(formatTitle)) {
        return Printf("A file of bookmarks begins with \"%.*s%.*s\".",
                      static_cast<int>(formatTitle.size()), formatTitle.data(),
                      static_cast<int>(formatVersion.size()), formatVersion.data());
    }
    return line.substr(formatTitle.size()) == formatVersion
               ? std::string()
               : "The file was written by a newer version of the program.";
}

} // namespace

std::string BookmarkPathOf(const std::string& capture) {
    namespace fs = std::filesystem;
    std::error_code unknown;
    const fs::path whole = fs::weakly_canonical(fs::absolute(capture, unknown), unknown);
    return (whole.empty() ? capture : whole.string()) + ".bookmarks";
}

BookmarkFile ReadBookmarks(const std::string& path) {
    BookmarkFile file;
    std::error_code unknown;
    const auto status = std::filesystem::symlink_status(path, unknown);
    if (status.type() == std::filesystem::file_type::not_found) {
        return file;
    }
    TextReader reader;
    if (!reader.Open(path)) {
        file.failure = "The file cannot be read.";
        return file;
    }
    std::size_t number = 0;
    while (const auto line = reader.ReadLine()) {
        ++number;
        std::string mistake;
        if (number == 1) {
            mistake = CheckTitle(*line);
        } else if (!line->empty()) {
            mistake = AddLine(*line, file.bookmarks);
        }
        if (file.failure.empty() && !mistake.empty()) {
            file.failure = Printf("Line %zu: %s", number, mistake.c_str());
        }
        // Lines after these would mean nothing, or take memory without end.
        if (!mistake.empty() && (number == 1 || file.bookmarks.size() == mostBookmarks)) {
            return file;
        }
    }
    if (reader.Failed()) {
        file.failure = "The file cannot be read.";
    }
    return file;
}

bool WriteBookmarks(const std::string& path, const Bookmarks& bookmarks) {
    std::error_code failure;
    if (bookmarks.empty() && !std::filesystem::is_symlink(path, failure)) {
        std::filesystem::remove(path, failure);
        return !failure;
    }
    TextWriter file;
    if (!file.CreateBeside(path)) {
        return false;
    }
    file.Write(Printf("%.*s%.*s\n", static_cast<int>(formatTitle.size()), formatTitle.data(),
                      static_cast<int>(formatVersion.size()), formatVersion.data()));
    for (const auto& [number, note] : bookmarks) {
        file.Write(Printf("%lld\t%s\n", static_cast<long long>(number), Escaped(note).c_str()));
    }
    return file.Close();
}

} // namespace busquill
