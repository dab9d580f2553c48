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

bool IsTime(const ExportSignal& signal) {
    return signal.signal->radix == Radix::Time ||
           (signal.IsDecoded() && signal.signal->decoded->decodeKind == DecodeKind::Time);
}

/// Appends the digits of a value as AppendCsvCell would, with blanks for those not shown.
void AppendHex(std::string& out, std::span<const std::uint8_t> value, unsigned width,
               std::uint64_t shown) {
    const unsigned count = (width - 1) / 4 + 1;
    const bool isQuoted = (shown & 1) == 0 || (shown >> (count - 1) & 1) == 0;
    out += isQuoted ? "\"" : "";
    for (unsigned digit = count; digit-- > 0;) {
        const bool isShown = (shown >> digit & 1) != 0;
        out += isShown ? "0123456789ABCDEF"[value[digit / 2] >> (digit % 2 * 4) & 15] : ' ';
    }
    out += isQuoted ? "\"" : "";
}

void AppendNumber(std::string& out, std::int64_t number) {
    std::array<char, 24> digits{};
    out.append(digits.data(),
               std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

/// Nanoseconds, with the picoseconds of Power Zoom samples after the point.
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
        column.isLabel = column.signal.IsDecoded() && column.signal.signal->decoded->ReadsAsLabel();
        column.isTime = IsTime(column.signal);
        if (column.signal.IsDecoded() && !column.isTime) {
            column.text.emplace_back(list.Tables(), capture.board, column.signal, capture.zoom);
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

void ValueTable::AppendValue(const Column& column, std::string& cell) const {
    const auto width = static_cast<unsigned>(column.signal.field.Width());
    if (column.isTime) {
        AppendTime(cell, TimeField(column.value, width), capture_.zoom);
    } else if (width == 1) {
        cell += column.value[0] != 0 ? '1' : '0';
    } else if (column.signal.signal->radix == Radix::Hex) {
        // Fast path for hexadecimal digits: nearly all values are such, and there are many.
        AppendHex(cell, column.value, width, column.digits);
    } else {
        std::string text = FormatValue(column.value, width, column.signal.signal->radix, {}, false);
        std::erase(text, ' ');
        cell += text;
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
    const std::uint64_t digits =
        column.text.empty() ? DecodedText::allDigits : column.text.front().ShownDigits(record);
    changed = changed || digits != column.digits;
    column.digits = digits;
    const RecordField& field = column.signal.field;
    if (field.FitsWord()) {
        const std::uint64_t word = field.Word(record);
        changed = changed || (digits != 0 && word != column.word);
        column.word = word;
    } else if (!changed && digits != 0) {
        next_.resize(column.value.size());
        field.Take(record, next_.data());
        changed = next_ != column.value;
    }
    if (!changed) {
        return false;
    }
    field.Take(record, column.value.data());
    cell_ = ",";
    if (digits != 0) {
        AppendValue(column, cell_);
    }
    // A value that is not shown does not count as a change.
    changed = !any_ || cell_ != column.cell;
    column.cell.swap(cell_);
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
