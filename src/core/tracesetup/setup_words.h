/// A trigger program in plain words.
#pragma once

#include <string>
#include <vector>

namespace busquill {

class CSignalList;
class TraceSetup;
struct BoardTraits;

/// The setup in plain words, a line for each event, level and setting, without its name.
[[nodiscard]] std::vector<std::string> SetupWords(const TraceSetup& setup,
                                                  const BoardTraits& board);

/// What an event compares, such as "AD[31:0] = FEBF00XX, FRAME = 0"; empty when nothing.
[[nodiscard]] std::string EventWords(const CSignalList& events, unsigned event);

} // namespace busquill
