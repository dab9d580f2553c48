#include "ui/display/state_text.h"

#include "capture/trace_document.h"
#include "ui/display/state_painter.h"

#include <algorithm>
#include <string>
#include <vector>

namespace busquill {

namespace {

/// Whether a column never shows a text: its marks are drawn, or it is blank.
bool HasNoText(const CSignal& signal) {
    return signal.IsBlank() || (signal.decoded && signal.decoded->decodeKind == DecodeKind::Delta);
}

std::vector<const CSignal*> ColumnsToCopy(const CSignalList& list) {
    std::vector<const CSignal*> columns;
    columns.reserve(list.Size());
    for (const auto& signal : list.All()) {
        if (signal->VisibleWidth() > 0) {
            columns.push_back(signal.get());
        }
    }
    const auto isSelected = [](const CSignal* signal) { return signal->selected; };
    if (std::ranges::any_of(columns, isSelected)) {
        std::erase_if(columns, [&](const CSignal* signal) { return !isSelected(signal); });
    }
    std::erase_if(columns, [](const CSignal* signal) { return HasNoText(*signal); });
    return columns;
}

/// A name or a text must not begin another cell or line.
std::string CopiedCell(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
    return text;
}

} // namespace

QString RowsAsText(const StateFrame& frame, std::int64_t firstRow, std::int64_t lastRow) {
    const std::vector<const CSignal*> columns = ColumnsToCopy(frame.list);
    std::string text = "SAMPLE";
    for (const CSignal* column : columns) {
        text += '\t' + CopiedCell(column->RowName());
    }
    text += '\n';
    const FrameTimes times(frame);
    const std::int64_t number = frame.document.FirstSampleNumber(frame.zoom);
    std::int64_t above = firstRow > 0 ? frame.document.RowToSample(firstRow - 1, frame.zoom) : 0;
    for (std::int64_t row = firstRow; row <= lastRow; ++row) {
        const std::int64_t sample = frame.document.RowToSample(row, frame.zoom);
        const RowTexts texts(frame, times, sample, above);
        text += std::to_string(number + sample);
        for (const CSignal* column : columns) {
            text += '\t' + CopiedCell(texts.Of(*column));
        }
        text += '\n';
        above = sample;
    }
    return QString::fromStdString(text);
}

} // namespace busquill
