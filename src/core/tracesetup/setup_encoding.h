/// The payloads that send a trace setup or a search to the board.
#pragma once

#include "tracesetup/trace_setup.h"

#include <cstdint>
#include <vector>

namespace busquill {

constexpr std::size_t eventRowSize = 30;
/// A row covers the bits below this one; the board cannot compare the others.
constexpr std::int32_t eventRowBits = 120;

/// The codes of the trace clock, the trigger position and the zoom clock; 0 for an index without a
/// code.
[[nodiscard]] std::vector<std::uint8_t> BuildTraceParams(const TraceSetup& setup);

/// One row for each of the first `columns` columns of a pattern list (at most 32): for each byte
/// of the sample record a byte of value bits, then one of compare bits.
[[nodiscard]] std::vector<std::uint8_t> BuildEventRows(const CSignalList& list, int columns);

/// Eight rows of 20 bytes, level 1 first.
[[nodiscard]] std::vector<std::uint8_t> BuildTraceControl(const TraceSetup& setup);

/// Where a search on the board starts: `distance` samples before the trigger or, with `after`, from
/// it on.
[[nodiscard]] std::vector<std::uint8_t> BuildSearchControl(std::uint32_t distance, bool after);

} // namespace busquill
