/// The rows of samples in a trace file: a number and the bytes of the record, in decimal.
#pragma once

#include "signals/signal.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// Rows as they stand in a file, numbers and records in step.
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

/// The fast way for what nearly every line of a trace is: nothing but numbers and commas, as many
/// as a row has. Takes rows from the beginning of `text`, until there are `limit` rows in all or
/// until something else comes, the piece of a line included. Returns how many bytes it took. As
/// many bytes as `TextReader::readable` behind the text must be readable.
[[nodiscard]] std::size_t ParsePlainRows(std::string_view text, std::size_t limit,
                                         SampleRows& rows);

/// Takes whole rows that ascend from the beginning of `text`, and looks at their numbers only;
/// `last` is the number of the row before, and becomes that of the last one taken. Stops where
/// anything else comes. Returns how many bytes it took.
[[nodiscard]] std::size_t SkipAscendingRows(std::string_view text, std::int64_t& last) noexcept;

/// As ParsePlainRows for one line without its end, a byte at a time. False when the line is
/// anything else.
[[nodiscard]] bool ParsePlainRow(std::string_view line, SampleRows& rows);

/// The same for the fields of any line: numbers as the C library reads them.
[[nodiscard]] bool ParseRow(const std::vector<std::string>& fields, SampleRows& rows);

/// Appends a row with its line end.
void AppendRow(std::string& text, std::int64_t number, const SampleRecord& record);

} // namespace busquill
