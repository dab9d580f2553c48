/// What a cell of a pattern is, says and becomes by a click. Cells are rows, from 0, of a signal.
#pragma once

#include <string>

namespace busquill {

class CSignal;
class CSignalList;

enum class PatternKind {
    Command, // of a bus, with its dual-address form
    Label,   // one of a decoded signal's values
    Number,  // of several bits
    Bit,
};

[[nodiscard]] PatternKind KindOfPattern(const CSignal& signal);
/// Empty where the signal holds no patterns.
[[nodiscard]] std::string PatternText(const CSignal& signal, int row);
/// Anything, 0, 1, and again anything; false where the signal holds no patterns.
[[nodiscard]] bool CycleBit(CSignalList& list, CSignal& signal, int row);

} // namespace busquill
