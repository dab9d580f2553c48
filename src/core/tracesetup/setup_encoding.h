/// The payloads by which a trace setup or a search goes to the board.
#pragma once

#include "tracesetup/trace_setup.h"

#include <cstdint>
#include <vector>

namespace busquill {

constexpr std::size_t eventRowSize = 30;
/// A row covers the bits below this one; those above cannot be compared by the board.
constexpr std::int32_t eventRowBits = 120;

/// The codes of the trace clock, the trigger position and the zoom clock; 0 for an index that has
/// none.
[[nodiscard]] std::vector<std::uint8_t> BuildTraceParams(const TraceSetup& setup);

/// One row for each of the first `columns` columns of a pattern list (at most 32): for each byte
/// of the sample record a byte of value bits, then one of compare bits.
[[nodiscard]] std::vector<std::uint8_t> BuildEventRows(const CSignalList& list, int columns);

/// Eight rows of 20 bytes, level 1 first.
[[nodiscard]] std::vector<std::uint8_t> BuildTraceControl(const TraceSetup& setup);

/// Where a search on the board starts: so many samples before the trigger, or from it on.
[[nodiscard]] std::vector<std::uint8_t> BuildSearchControl(std::uint32_t distance, bool after);

} // namespace busquill
