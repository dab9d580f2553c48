#pragma once

#include "tracesetup/trace_setup.h"

#include <cstdint>
#include <vector>

namespace busquill {

constexpr int stimulusPatterns = 15;               // S1 to S15
constexpr std::uint32_t stimulusOccurrences = 256; // goes out as 0

/// What the board does as a pattern generator: it waits in each level for an event, then drives a
/// pattern.
class StimulusProgram {
public:
    /// A default program for the board of the tables, which outlive it.
    explicit StimulusProgram(SignalTables& tables);

    /// Column n - 1 is the pattern Sn.
    CSignalList patterns;
    /// Its events and the first 15 of its levels.
    TraceSetup control;
    /// Number of events that the board compares.
    const int eventCount;

    void Reset();
    /// The same, without any signal.
    void Clear();
};

/// The payload with the levels: 16 slots of 5 bytes, the last one empty. Of a condition only the
/// first token is sent; duration and wait of the other branch are not sent. Numbers out of range
/// are cut.
[[nodiscard]] std::vector<std::uint8_t> BuildStimulusControl(const StimulusProgram& program);
/// The payloads with the patterns and the events, one row of bytes for each.
[[nodiscard]] std::vector<std::uint8_t> BuildStimulusPatterns(const StimulusProgram& program);
[[nodiscard]] std::vector<std::uint8_t> BuildStimulusEvents(const StimulusProgram& program);

} // namespace busquill
