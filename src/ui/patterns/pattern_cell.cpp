#include "ui/patterns/pattern_cell.h"

#include "platform/bits.h"
#include "signals/signal_list.h"
#include "signals/value_text.h"

#include <cstdint>

namespace busquill {

PatternKind KindOfPattern(const CSignal& signal) {
    if (signal.decoded) {
        const DecodeKind kind = signal.decoded->decodeKind;
        return kind >= DecodeKind::Tag && kind <= DecodeKind::AddressVsb ? PatternKind::Number
               : kind == DecodeKind::Command                             ? PatternKind::Command
                                                                         : PatternKind::Label;
    }
    return signal.IsGroupStart() ? PatternKind::Number : PatternKind::Bit;
}

std::string PatternText(const CSignal& signal, int row) {
    const auto at = static_cast<std::size_t>(row);
    switch (KindOfPattern(signal)) {
    case PatternKind::Number: {
        const auto value = signal.GroupRow(at);
        const auto mask = signal.GroupMaskRow(at);
        return value.empty() || mask.empty()
                   ? ""
                   : FormatValue(value, signal.groupWidth, signal.radix, mask, false);
    }
    case PatternKind::Command:
    case PatternKind::Label: {
        const char* const label = signal.Label(at);
        return label == nullptr ? "" : label;
    }
    case PatternKind::Bit:
        break;
    }
    if (signal.data.empty()) {
        return "";
    }
    return !signal.MaskBit(at) ? "X" : signal.Bit(at) ? "1" : "0";
}

bool CycleBit(CSignalList& list, CSignal& signal, int row) {
    if (signal.data.empty() || signal.mask.empty()) {
        return false;
    }
    const auto at = static_cast<std::size_t>(row);
    const bool known = signal.MaskBit(at);
    const bool one = signal.Bit(at);
    AssignBit(signal.mask, at, !known || !one);
    AssignBit(signal.data, at, known && !one);
    list.SpreadBit(&signal, static_cast<std::uint32_t>(row));
    return true;
}

} // namespace busquill
