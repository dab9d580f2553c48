#include "export/export_signals.h"

#include "capture/trace_stream.h"
#include "signals/cell_text.h"
#include "signals/signal_list.h"
#include "signals/value_text.h"

#include <algorithm>
#include <cstring>

namespace busquill {

namespace {

/// Columns that do not show bits of the sample.
bool IsPlaceholder(const CSignal& signal) {
    if (!signal.decoded) {
        return signal.IsBlank();
    }
    const DecodeKind kind = signal.decoded->decodeKind;
    return kind == DecodeKind::Delta || kind == DecodeKind::Accum || kind == DecodeKind::Sample;
}

} // namespace

ExportList ListToExport(const TraceStream& stream, bool zoom) {
    if (zoom) {
        return {stream.zoomList, ListUse::Wave};
    }
    const TraceParser& parser = stream.Parser();
    const bool onlyState = parser.HasStateList() && !parser.HasWaveformList();
    return onlyState ? ExportList{stream.stateList, ListUse::State}
                     : ExportList{stream.waveformList, ListUse::Wave};
}

std::vector<ExportSignal> ExportSignals(const CSignalList& list, ListUse use) {
    std::vector<ExportSignal> signals;
    for (const auto& signal : list.All()) {
        const bool seen =
            use == ListUse::State ? signal->VisibleWidth() > 0 : signal->VisibleHeight() > 0;
        if (seen && !IsPlaceholder(*signal)) {
            signals.push_back({signal.get(), signal->RowName(), RecordField(list, *signal)});
        }
    }
    return signals;
}

DecodedText::DecodedText(SignalTables& tables, const BoardTraits& board, const ExportSignal& signal,
                         bool zoom)
    : board_(board), field_(signal.field), zoom_(zoom), list_(tables), value_(field_.Bytes()),
      next_(field_.Bytes()) {
    list_.AddSignal(nullptr, signal.signal->decoded, 1, 0, 0, 0, signal.signal->radix, true);
    hasLabels_ = signal.signal->decoded->ReadsAsLabel();
}

std::string DecodedText::Read(const SampleRecord& record) {
    if (list_.Empty()) {
        return {};
    }
    CSignal& signal = list_[0];
    if (signal.groupWidth != 0) {
        signal.groupData = value_; // bits in the order of the members
    } else {
        signal.data[0] = value_[0];
    }
    if (hasLabels_) {
        list_.RebuildLabels(0, 1);
    }
    return CellText(board_, signal, {0, 0, &record, {}}, zoom_);
}

const std::string& DecodedText::Of(const SampleRecord& record) {
    constexpr std::size_t mostKept = 4096;
    field_.Take(record, next_.data());
    const std::uint16_t surroundings = SurroundingsOf(record);
    if (text_ != nullptr && surroundings == surroundings_ && next_ == value_) {
        return *text_;
    }
    surroundings_ = surroundings;
    value_.swap(next_);
    std::uint64_t key = surroundings;
    for (const std::uint8_t byte :
         std::span(value_).first(std::min<std::size_t>(6, value_.size()))) {
        key = key << 8 | byte;
    }
    const bool fitsKey = value_.size() <= 6;
    if (!fitsKey || kept_.size() >= mostKept) {
        kept_.clear();
    }
    const auto [found, isNew] = kept_.try_emplace(key);
    if (isNew) {
        found->second = Read(record);
    }
    text_ = &found->second;
    return *text_;
}

std::uint64_t DecodedText::ShownDigits(const SampleRecord& record) {
    if (hasLabels_) {
        return Of(record).empty() ? 0 : allDigits;
    }
    const auto [found, isNew] = shown_.try_emplace(SurroundingsOf(record));
    if (isNew) {
        found->second = DigitsIn(Of(record));
    }
    return found->second;
}

std::uint64_t DecodedText::DigitsIn(const std::string& text) const {
    const bool isHex = !list_.Empty() && list_[0].radix == Radix::Hex &&
                       list_[0].decoded->decodeKind != DecodeKind::Time;
    if (text.empty() || !isHex) {
        return text.empty() ? 0 : allDigits;
    }
    std::uint64_t digits = 0;
    std::uint64_t bit = 1;
    for (std::size_t at = text.size(); at-- > 0;) {
        constexpr std::size_t group = 9; // eight digits and a blank
        if (at % group != group - 1) {
            digits |= text[at] != ' ' ? bit : 0;
            bit <<= 1;
        }
    }
    return digits;
}

std::size_t DecodedText::Longest() const {
    constexpr std::size_t longestTime = 10; // "999.99us" and the like, with room
    if (list_.Empty()) {
        return 1;
    }
    const CSignal& signal = list_[0];
    std::size_t longest =
        std::max<std::size_t>(1, DigitsFor(static_cast<unsigned>(field_.Width()), signal.radix));
    if (signal.decoded->decodeKind == DecodeKind::Time) {
        longest = longestTime;
    }
    for (const CDecodedValue& value : signal.decoded->values) {
        longest = std::max(longest, std::strlen(value.label));
    }
    return longest;
}

} // namespace busquill
