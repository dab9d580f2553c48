#pragma once

#include "capture/sample_rows.h"
#include "export/export_signals.h"

#include <string>
#include <vector>

namespace busquill {

/// A capture as comma separated values: a row for each sample, or for each change, with its number,
/// its time in nanoseconds and the signals, for programs to read.
class ValueTable {
public:
    struct Capture {
        BoardTraits board;
        bool zoom = false;
        bool changesOnly = false;
    };

    /// The list must outlive the table.
    ValueTable(const CSignalList& list, ListUse use, const Capture& capture);

    /// Each appends to `out`.
    void Begin(std::string& out) const;
    void Add(const SampleRows& rows, std::string& out);

private:
    struct Column {
        ExportSignal signal;
        std::vector<DecodedText> text; // one for a decoded value, else empty
        bool isLabel = false;          // write the text; else the value, while it is shown
        bool isTime = false;
        // Of the previous sample:
        std::vector<std::uint8_t> value;
        std::uint64_t word = 0;
        std::string label;
        std::uint64_t digits = 0; // digits shown
        std::string cell;         // including its comma
    };

    [[nodiscard]] bool Update(Column& column, const SampleRecord& record);
    void AppendValue(const Column& column, std::string& cell) const;

    Capture capture_;
    std::vector<Column> columns_;
    ExportTime time_;
    bool any_ = false;
    std::vector<std::uint8_t> next_;
    std::string cell_;
};

} // namespace busquill
