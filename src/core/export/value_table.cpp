#include "export/value_table.h"

#include "document/csv_line.h"
#include "platform/text.h"
#include "signals/signal_list.h"
#include "signals/value_text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace busquill {

namespace {

/// Decoded values that read as words.
bool ReadsAsLabel(const ExportSignal& signal) {
    return signal.IsDecoded() && (signal.signal->decoded->decodeKind == DecodeKind::Label ||
                                  signal.signal->decoded->decodeKind == DecodeKind::Command);
}

bool IsTime(const ExportSignal& signal) {
    return signal.signal->radix == Radix::Time ||
           (signal.IsDecoded() && signal.signal->decoded->decodeKind == DecodeKind::Time);
}

void AppendNumber(std::string& out, std::int64_t number) {
    std::array<char, 24> digits{};
    out.append(digits.data(),
               std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

/// Nanoseconds, with the picoseconds of Power Zoom samples behind the point.
void AppendTime(std::string& out, std::int64_t time, bool zoom) {
    if (!zoom) {
        AppendNumber(out, time);
        return;
    }
    AppendNumber(out, time / 1000);
    out += Printf(".%03d", static_cast<int>(time % 1000));
}

} // namespace

ValueTable::ValueTable(const CSignalList& list, ListUse use, const Capture& capture)
    : capture_(capture) {
    for (ExportSignal& signal : ExportSignals(list, use)) {
        Column column;
        column.signal = std::move(signal);
        column.isLabel = ReadsAsLabel(column.signal);
        column.isTime = IsTime(column.signal);
        if (column.signal.IsDecoded() && !column.isTime) {
            column.text.emplace_back(capture.board, column.signal, capture.zoom);
        }
        column.value.resize(column.signal.field.Bytes());
        columns_.push_back(std::move(column));
    }
}

void ValueTable::Begin(std::string& out) const {
    out += "SAMPLE,Time [ns]";
    for (const Column& column : columns_) {
        out += ',';
        AppendCsvCell(out, column.signal.name);
    }
    out += '\n';
}

void ValueTable::AppendValue(Column& column) const {
    const auto width = static_cast<unsigned>(column.signal.field.Width());
    if (column.isTime) {
        AppendTime(column.cell, TimeField(column.value, width), capture_.zoom);
    } else if (width == 1) {
        column.cell += column.value[0] != 0 ? '1' : '0';
    } else if (column.signal.signal->radix == Radix::Hex) {
        // Nearly all values are such, and there are many: the same digits, in a straight line.
        for (unsigned digit = (width - 1) / 4 + 1; digit-- > 0;) {
            column.cell += "0123456789ABCDEF"[column.value[digit / 2] >> (digit % 2 * 4) & 15];
        }
    } else {
        std::string text = FormatValue(column.value, width, column.signal.signal->radix, {}, false);
        std::erase(text, ' ');
        column.cell += text;
    }
}

bool ValueTable::Update(Column& column, const SampleRecord& record) {
    bool changed = !any_;
    if (column.isLabel) {
        const std::string& text = column.text.front().Of(record);
        changed = changed || text != column.label;
        if (changed) {
            column.label = text;
            column.cell = ",";
            AppendCsvCell(column.cell, text);
        }
        return changed;
    }
    const bool empty = !column.text.empty() && !column.text.front().Shows(record);
    changed = changed || empty != column.empty;
    column.empty = empty;
    const RecordField& field = column.signal.field;
    // What is not shown has not changed.
    if (field.FitsWord()) {
        const std::uint64_t word = field.Word(record);
        changed = changed || (!empty && word != column.word);
        column.word = word;
    } else if (!changed && !empty) {
        next_.resize(column.value.size());
        field.Take(record, next_.data());
        changed = next_ != column.value;
    }
    if (changed) {
        column.cell = ",";
        field.Take(record, column.value.data());
        if (!empty) {
            AppendValue(column);
        }
    }
    return changed;
}

void ValueTable::Add(const SampleRows& rows, std::string& out) {
    for (std::size_t i = 0; i < rows.Size(); ++i) {
        const std::int64_t now = time_.Next(rows.records[i]);
        bool changed = !any_;
        for (Column& column : columns_) {
            changed = Update(column, rows.records[i]) || changed;
        }
        any_ = true;
        if (capture_.changesOnly && !changed) {
            continue;
        }
        AppendNumber(out, rows.numbers[i]);
        out += ',';
        AppendTime(out, now, capture_.zoom);
        for (const Column& column : columns_) {
            out += column.cell;
        }
        out += '\n';
    }
}

} // namespace busquill
