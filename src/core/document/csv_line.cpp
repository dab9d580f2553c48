#include "document/csv_line.h"

#include "platform/text_file.h"

#include <algorithm>

namespace busquill {

namespace {

bool IsBareNumber(std::string_view text) {
    if (text.empty()) {
        return false;
    }
    // A lone "-" counts as a number.
    const std::string_view digits = text.substr(text.front() == '-' ? 1 : 0);
    return std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool IsGap(char c) noexcept {
    return c == ' ' || c == '\t' || c == ',';
}

} // namespace

std::string CsvQuote(std::string_view text) {
    if (IsBareNumber(text)) {
        return std::string(text);
    }
    return std::string(1, '"').append(text).append(1, '"');
}

void AppendCsvCell(std::string& line, std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos && !text.starts_with(' ') &&
        !text.ends_with(' ')) {
        line += text;
        return;
    }
    line += '"';
    for (const char c : text) {
        line += c;
        if (c == '"') {
            line += c;
        }
    }
    line += '"';
}

bool CsvSplitLine(std::string_view line, std::vector<std::string>& fields) {
    std::string token;
    bool inToken = false;
    bool inQuotes = false;
    if (!fields.empty()) {
        token = std::move(fields.back());
        fields.pop_back();
        inToken = inQuotes = true;
    }
    const auto finish = [&] {
        fields.push_back(std::move(token));
        token.clear();
        inToken = inQuotes = false;
    };
    for (const char c : line) {
        if (!inToken) {
            inQuotes = c == '"';
            inToken = !IsGap(c);
            if (inToken && !inQuotes) {
                token += c;
            }
        } else if (c == '"' || (c == ',' && !inQuotes)) {
            finish();
        } else {
            token += c;
        }
    }
    const bool goesOn = inToken && inQuotes;
    if (goesOn) {
        token += "\r\n";
    }
    if (inToken) {
        finish();
    }
    return goesOn;
}

void SplitCsvRecord(std::string_view first, TextReader& file, std::vector<std::string>& fields) {
    fields.clear();
    std::size_t text = first.size();
    bool goesOn = CsvSplitLine(first, fields);
    while (goesOn) {
        const auto line = file.ReadLine();
        if (!line) {
            break;
        }
        text += line->size() + 2; // two bytes for the line end
        if (text + fields.size() * sizeof(std::string) <= maxCsvRecord) {
            goesOn = CsvSplitLine(*line, fields);
        } else {
            // Only the end of the record is needed; its text is dropped.
            std::vector<std::string> dropped(1);
            goesOn = CsvSplitLine(*line, dropped);
        }
    }
}

bool ReadCsvRecord(TextReader& file, std::vector<std::string>& fields) {
    const auto line = file.ReadLine();
    if (!line) {
        fields.clear();
        return false;
    }
    SplitCsvRecord(*line, file, fields);
    return true;
}

} // namespace busquill
