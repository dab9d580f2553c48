#include "document/csv_line.h"

#include "platform/text_file.h"

#include <algorithm>

namespace busquill {

namespace {

/// A value that is never closed would take in the rest of the file.
constexpr std::size_t maxValue = std::size_t{16} << 20;

bool IsBareNumber(std::string_view text) {
    if (text.starts_with('-')) {
        text.remove_prefix(1);
    } else if (text.empty()) {
        return false;
    }
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

std::string CsvQuote(std::string_view text) {
    if (IsBareNumber(text)) {
        return std::string(text);
    }
    std::string quoted = "\"";
    return quoted.append(text).append("\"");
}

bool CsvSplitLine(std::string_view line, std::vector<std::string>& fields) {
    bool inToken = !fields.empty();
    bool inQuotes = inToken;
    std::string token;
    if (inToken) {
        token = std::move(fields.back());
        fields.pop_back();
    }
    const auto finish = [&] {
        fields.push_back(std::move(token));
        token.clear();
        inToken = false;
        inQuotes = false;
    };
    for (const char c : line) {
        if (c == '"') {
            if (inToken) {
                finish();
            } else {
                inToken = inQuotes = true;
            }
        } else if (inToken) {
            if (c == ',' && !inQuotes) {
                finish();
            } else {
                token += c;
            }
        } else if (c != ' ' && c != '\t' && c != ',') {
            inToken = true;
            token += c;
        }
    }
    const bool unfinished = inToken && inQuotes;
    if (unfinished) {
        token += "\r\n";
    }
    if (inToken) {
        fields.push_back(std::move(token));
    }
    return unfinished;
}

void SplitCsvRecord(std::string_view line, TextReader& file, std::vector<std::string>& fields) {
    fields.clear();
    while (CsvSplitLine(line, fields)) {
        const auto next = file.ReadLine();
        if (!next) {
            break;
        }
        line = *next;
        if (fields.back().size() > maxValue) {
            fields.back().resize(maxValue);
            // Only the end of the value is still of interest.
            line.remove_prefix(std::min(line.find('"'), line.size()));
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
