/// The line format that all document files share: values joined by commas, texts in double
/// quotes, a value with line breaks spread over several lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace busquill {

class TextReader;

/// A value as it stands in a file: a text of digits alone, with at most one leading "-", goes out
/// bare, anything else between double quotes. A double quote inside is not escaped.
[[nodiscard]] std::string CsvQuote(std::string_view text);

/// Splits a line and appends its fields. Returns true if the line ends inside a quoted value; the
/// caller then reads one more line and splits it into the same `fields`, whose last field goes on.
/// Empty fields without quotes yield nothing.
[[nodiscard]] bool CsvSplitLine(std::string_view line, std::vector<std::string>& fields);

/// Splits a record whose first line has been read; reads the lines over which a quoted value goes
/// on. A value that goes on for more than 16 MiB is cut.
void SplitCsvRecord(std::string_view line, TextReader& file, std::vector<std::string>& fields);

/// Reads one record, with the lines over which a quoted value goes on. False at the file's end.
[[nodiscard]] bool ReadCsvRecord(TextReader& file, std::vector<std::string>& fields);

} // namespace busquill
