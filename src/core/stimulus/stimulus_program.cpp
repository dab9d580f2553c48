#include "stimulus/stimulus_program.h"

#include "tracesetup/setup_encoding.h"

namespace busquill {

namespace {

constexpr std::size_t slotSize = 5;

std::uint8_t Nibbles(std::int32_t high, std::int32_t low) {
    return static_cast<std::uint8_t>((high & 0x0F) << 4 | (low & 0x0F));
}

} // namespace

StimulusProgram::StimulusProgram(SignalTables& tables)
    : patterns(tables), control(tables), eventCount(EventCount(tables.Board())) {
    patterns.BuildFromTables(stimulusPatterns, ModeStimulus);
}

void StimulusProgram::Reset() {
    control.Reset();
    patterns.BuildFromTables(stimulusPatterns, ModeStimulus);
}

void StimulusProgram::Clear() {
    control.Reset();
    control.events.RemoveAllSignals();
    patterns.RemoveAllSignals();
}

std::vector<std::uint8_t> BuildStimulusControl(const StimulusProgram& program) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < stimulusLevels; ++i) {
        const TraceLevel& level = program.control.levels[i];
        const std::uint8_t condition = TokenAt(level.ifExpr, expressionTokens - 1);
        bytes.push_back(Nibbles(level.stimulus, condition));
        bytes.push_back(Nibbles(level.elseGoto, level.thenGoto));
        bytes.push_back(static_cast<std::uint8_t>(level.occurs));
        bytes.push_back(static_cast<std::uint8_t>(level.thenDuration));
        bytes.push_back(static_cast<std::uint8_t>(level.thenWait));
    }
    bytes.resize(levelRecords * slotSize);
    return bytes;
}

std::vector<std::uint8_t> BuildStimulusPatterns(const StimulusProgram& program) {
    return BuildEventRows(program.patterns, stimulusPatterns);
}

std::vector<std::uint8_t> BuildStimulusEvents(const StimulusProgram& program) {
    return BuildEventRows(program.control.events, program.eventCount);
}

} // namespace busquill
