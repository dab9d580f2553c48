/// The rows of samples in a trace file: a number and the bytes of the record, in decimal.
#pragma once

#include "signals/signal.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// Rows as they are in a file; numbers[i] belongs to records[i].
struct SampleRows {
    std::vector<std::int32_t> numbers;
    std::vector<SampleRecord> records;

    [[nodiscard]] std::size_t Size() const noexcept { return numbers.size(); }
    [[nodiscard]] bool Empty() const noexcept { return numbers.empty(); }
    void Clear() noexcept {
        numbers.clear();
        records.clear();
    }
    void Add(std::int32_t number, const SampleRecord& record) {
        numbers.push_back(number);
        records.push_back(record);
    }
};

/// Fast parser for plain rows: nothing but the right number of decimal numbers and commas, like
/// nearly all lines of a trace. Parses rows from the beginning of `text` until there are `limit`
/// rows in all or until anything else, such as an incomplete line. Returns the number of bytes
/// parsed. `TextReader::readable` bytes after the text must be readable.
[[nodiscard]] std::size_t ParsePlainRows(std::string_view text, std::size_t limit,
                                         SampleRows& rows);

/// Skips complete rows with ascending numbers at the beginning of `text`, parsing only the numbers.
/// `last` is the number of the row before and becomes that of the last row skipped. Stops at
/// anything else. Returns the number of bytes skipped.
[[nodiscard]] std::size_t SkipAscendingRows(std::string_view text, std::int64_t& last) noexcept;

/// Like ParsePlainRows for one line without its end, byte by byte. False when the line is not a
/// plain row.
[[nodiscard]] bool ParsePlainRow(std::string_view line, SampleRows& rows);

/// The same for the fields of any line, with numbers parsed as by the C library.
[[nodiscard]] bool ParseRow(const std::vector<std::string>& fields, SampleRows& rows);

/// Appends a row with its line end.
void AppendRow(std::string& text, std::int64_t number, const SampleRecord& record);

} // namespace busquill
