/// The line format that all document files share: values joined by commas, texts in double
/// quotes, a value with line breaks spread over several lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

class TextReader;

/// A value as it is written to a file: digits alone, with at most one leading "-", without quotes,
/// anything else in double quotes. A double quote inside is not escaped.
[[nodiscard]] std::string CsvQuote(std::string_view text);

/// Appends a value in standard CSV form for other programs: in double quotes where needed, with
/// quotes inside doubled.
void AppendCsvCell(std::string& line, std::string_view text);

/// Splits a line and appends its fields. Returns true if the line ends inside a quoted value; the
/// caller then reads one more line and splits it into the same `fields`, whose last field is
/// continued. Empty fields without quotes yield nothing.
[[nodiscard]] bool CsvSplitLine(std::string_view line, std::vector<std::string>& fields);

/// The longest record in memory, in bytes. Without a limit, a quote that is never closed would read
/// the whole rest of a file into one value.
inline constexpr std::size_t maxCsvRecord = std::size_t{16} << 20;

/// Replaces `fields` by those of the next record, including the lines over which a quoted value
/// continues. False at the end of the file. From the line that makes the record longer than
/// maxCsvRecord, its text is read but dropped: the value ends there and later fields are missing. A
/// value still open at the end of the file is kept, with its last line end.
[[nodiscard]] bool ReadCsvRecord(TextReader& file, std::vector<std::string>& fields);

/// The same for a record whose first line has already been read.
void SplitCsvRecord(std::string_view first, TextReader& file, std::vector<std::string>& fields);

} // namespace busquill
