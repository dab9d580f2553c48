/// The line format that all document files share: values joined by commas, texts in double
/// quotes, a value with line breaks spread over several lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

class TextReader;

/// A value as it stands in a file: a text of digits alone, with at most one leading "-", goes out
/// bare, anything else between double quotes. A double quote inside is not escaped.
[[nodiscard]] std::string CsvQuote(std::string_view text);

/// Appends a value as tables for other programs have it: in double quotes where it needs them, with
/// those inside doubled.
void AppendCsvCell(std::string& line, std::string_view text);

/// Splits a line and appends its fields. Returns true if the line ends inside a quoted value; the
/// caller then reads one more line and splits it into the same `fields`, whose last field goes on.
/// Empty fields without quotes yield nothing.
[[nodiscard]] bool CsvSplitLine(std::string_view line, std::vector<std::string>& fields);

/// The longest record in memory. A quote that is never closed makes one value of the whole rest of
/// a file, whatever its size.
inline constexpr std::size_t maxCsvRecord = std::size_t{16} << 20;

/// Reads one record into `fields`, whose old content goes, with the lines over which a quoted value
/// goes on. False at the file's end. From the line on that makes the record longer than
/// maxCsvRecord, its text is read but dropped: the value ends there and later fields are missing.
/// A value that is still open at the file's end counts as it stands, with its last line end.
[[nodiscard]] bool ReadCsvRecord(TextReader& file, std::vector<std::string>& fields);

/// The same for a record whose first line has been read already.
void SplitCsvRecord(std::string_view first, TextReader& file, std::vector<std::string>& fields);

} // namespace busquill
