#pragma once

#include "signals/signal_list.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// An expression over events: 16 nibbles, read from nibble 15 downward; nibble n is the low half
/// of byte n / 2 when n is even. All bytes 0xFF is "All", all 0 is "None".
using Expression = std::array<std::uint8_t, 8>;
constexpr Expression expressionAll = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
constexpr Expression expressionNone = {};

/// The meaning of a nibble of an expression.
enum ExpressionToken : std::uint8_t {
    TokenEmpty = 0,
    TokenFirstEvent = 1,
    TokenLastEvent = 8,
    TokenAnd = 9,
    TokenOr = 10,
    TokenNot = 11,
    TokenXor = 12,
    TokenOpen = 13,
    TokenClose = 14,
};
constexpr int expressionTokens = 16;
[[nodiscard]] std::uint8_t TokenAt(const Expression& bytes, int nibble) noexcept;
void SetTokenAt(Expression& bytes, int nibble, std::uint8_t token) noexcept;

/// Number of events of a board's sequencer: E1 to E8, or to E4.
[[nodiscard]] inline int EventCount(const BoardTraits& board) noexcept {
    return board.IsVmeLark() ? 4 : 8;
}

constexpr int levelRecords = 16;
constexpr int traceLevels = 8;     // L1 to L8
constexpr int stimulusLevels = 15; // SL1 to SL15
constexpr std::int32_t stimulusStop = 15;
constexpr std::uint32_t traceOccurrences = 65535; // limit of two bytes on the wire

/// One level of the sequencer.
struct TraceLevel {
    Expression storeExpr{};
    Expression ifExpr{};
    std::int32_t occurs = 1;
    bool thenTrigger = false;
    std::int32_t thenGoto = 0; // 0 is level 1
    std::int32_t thenDuration = 1;
    std::int32_t thenWait = 1;
    bool elseTrigger = false;
    std::int32_t elseGoto = 0;
    std::int32_t elseDuration = 1;
    std::int32_t elseWait = 1;
    std::int32_t stimulus = 0; // 0: none

    friend bool operator==(const TraceLevel&, const TraceLevel&) = default;
};

/// The program that the board runs during a capture. Also holds the program of a stimulus, which
/// uses more of its levels and other fields.
class TraceSetup {
public:
    /// A default setup for the board of the tables, which outlive it and its copies.
    explicit TraceSetup(SignalTables& tables) : events(tables) { Reset(); }

    std::string fileType; // as read from a file
    std::string version;
    std::string name;
    std::string description;
    std::int32_t clock = 2; // indices into the text tables below
    std::int32_t powerZoomClock = 2;
    std::int32_t triggerPosition = 3;
    CSignalList events;
    std::array<TraceLevel, levelRecords> levels; // level n is levels[n - 1]

    /// Restores all defaults; `fileType` and `version` stay.
    void Reset();
    /// Copies everything, but `description` becomes the other's name: callers that restore a
    /// setup rely on this.
    void CopyFrom(const TraceSetup& other);
};

/// The levels that a run can get to from the first one, by index.
[[nodiscard]] std::vector<bool> ReachedLevels(const TraceSetup& setup);
/// Whether every sample between two stored ones is stored too: all levels that can be reached store
/// all, and the clock leaves nothing out.
[[nodiscard]] bool StoresAll(const TraceSetup& setup);

/// How the samples of a capture were taken.
struct Sampling {
    bool atBusClock = false;
    bool storedAll = true; // see StoresAll
};
[[nodiscard]] Sampling SamplingOf(const TraceSetup& setup);

/// The texts of the three index fields; "Unknown" for 0, empty beyond the table.
[[nodiscard]] std::string_view ClockText(std::int32_t index) noexcept;
[[nodiscard]] std::string_view PowerZoomText(std::int32_t index) noexcept;
[[nodiscard]] std::string_view TriggerText(std::int32_t index) noexcept;
/// The time between samples in picoseconds; nothing for the bus clock.
[[nodiscard]] std::optional<std::int64_t> ClockPeriod(std::int32_t index) noexcept;
[[nodiscard]] std::optional<std::int64_t> PowerZoomPeriod(std::int32_t index) noexcept;
constexpr std::int32_t clockCount = 17;
constexpr std::int32_t clockOfBus = 1;
constexpr std::int32_t clockSync = 2;
constexpr std::int32_t clockTransfer = 3; // samples only transfers
constexpr std::int32_t clock133MHz = 4;   // not on boards of the small tier
constexpr std::int32_t powerZoomCount = 9;
constexpr std::int32_t triggerCount = 6;

[[nodiscard]] std::string FormatExpression(const Expression& bytes);
[[nodiscard]] Expression ParseExpression(std::string_view text) noexcept;

[[nodiscard]] std::string FormatTraceGoto(std::int32_t level, bool trigger);
/// `level` is unchanged unless the text names a level from 1 to 8.
void ParseTraceGoto(std::string_view text, std::int32_t& level, bool& trigger) noexcept;
[[nodiscard]] std::string FormatStimulusGoto(std::int32_t level, std::int32_t duration,
                                             std::int32_t wait);
void ParseStimulusGoto(std::string_view text, std::int32_t& level, std::int32_t& duration,
                       std::int32_t& wait) noexcept;
[[nodiscard]] std::string FormatStimulusRef(std::int32_t number);
[[nodiscard]] std::int32_t ParseStimulusRef(std::string_view text) noexcept;

} // namespace busquill
