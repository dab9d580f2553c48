/// The kind of a pattern cell, its text, and what a click makes of it. Rows count from 0.
#pragma once

#include <string>

namespace busquill {

class CSignal;
class CSignalList;

enum class PatternKind {
    Command, // of the bus, chosen with its dual-address form
    Label,   // one of a decoded signal's values
    Number,  // several bits
    Bit,
};

[[nodiscard]] PatternKind KindOfPattern(const CSignal& signal);
/// Empty if the signal holds no patterns.
[[nodiscard]] std::string PatternText(const CSignal& signal, int row);
/// Goes on from "anything" to 0, to 1, and back; false if the signal holds no patterns.
[[nodiscard]] bool CycleBit(CSignalList& list, CSignal& signal, int row);

} // namespace busquill
