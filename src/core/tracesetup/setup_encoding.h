/// The payloads by which a trace setup goes to the board.
#pragma once

#include "link/payloads.h"
#include "tracesetup/trace_setup.h"

#include <cstdint>
#include <vector>

namespace busquill {

class CAnalyzerLink;

constexpr std::size_t eventRowSize = 30;
/// A row covers the bits below this one; those above cannot be compared by the board.
constexpr std::int32_t eventRowBits = 120;

/// One row for each of the first `columns` columns of a pattern list (at most 32): for each byte
/// of the sample record a byte of value bits, then one of compare bits.
[[nodiscard]] std::vector<std::uint8_t> BuildEventRows(const CSignalList& list, int columns);

/// Eight rows of 20 bytes, level 1 first.
[[nodiscard]] std::vector<std::uint8_t> BuildTraceControl(const TraceSetup& setup);

/// How the payloads of trace events, trace control and the search pattern are made from the list or
/// the setup that a request's `data` word names.
[[nodiscard]] PayloadEncoders SetupEncoders();

/// Tells the link.
void RegisterSetupEncoders(CAnalyzerLink& link);

} // namespace busquill
