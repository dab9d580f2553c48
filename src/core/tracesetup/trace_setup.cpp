#include "tracesetup/trace_setup.h"

#include "platform/text.h"

#include <optional>
#include <span>

namespace busquill {

namespace {

// clang-format off
constexpr std::string_view clockTexts[clockCount] = {
    "Unknown", "Clk",    "Sync",    "Transfer", "7.5 ns",  "15 ns",
    "30 ns",   "60 ns",  "120 ns",  "240 ns",   "480 ns",  "960 ns",
    "1.92 us", "3.84 us", "7.68 us", "15.36 us", "30.72 us",
};
constexpr std::string_view powerZoomTexts[powerZoomCount] = {
    "Unknown", "1.875 ns", "3.75 ns", "7.5 ns", "15 ns", "30 ns", "60 ns", "120 ns", "240 ns",
};
constexpr std::string_view triggerTexts[triggerCount] = {
    "Unknown", "0%", "25%", "50%", "75%", "100%",
};
// clang-format on

/// The texts of the tokens from TokenAnd to TokenClose.
constexpr std::string_view operatorTokens = ".+~x()";

std::string_view TextAt(std::span<const std::string_view> texts, std::int32_t index) noexcept {
    return index >= 0 && static_cast<std::size_t>(index) < texts.size()
               ? texts[static_cast<std::size_t>(index)]
               : std::string_view();
}

/// The text after the first occurrence of `key`, or nothing.
std::optional<std::string_view> TextAfter(std::string_view text, std::string_view key) noexcept {
    const auto at = text.find(key);
    return at == std::string_view::npos ? std::nullopt
                                        : std::optional(text.substr(at + key.size()));
}

bool IsEventDigit(char c) noexcept {
    return c >= '1' && c <= '8';
}

} // namespace

void TraceSetup::Reset() {
    name.clear();
    description.clear();
    clock = 2;
    powerZoomClock = 2;
    triggerPosition = 3;
    levels.fill(TraceLevel());
    levels[0].storeExpr = expressionAll;
    levels[0].ifExpr = expressionAll;
    levels[0].thenTrigger = true;
    levels[0].stimulus = 1;
    const int count = EventCount(events.Tables().Board());
    events.BuildFromTables(static_cast<std::uint32_t>(count), ModeEvents);
}

void TraceSetup::CopyFrom(const TraceSetup& other) {
    fileType = other.fileType;
    version = other.version;
    name = other.name;
    description = other.name;
    clock = other.clock;
    powerZoomClock = other.powerZoomClock;
    triggerPosition = other.triggerPosition;
    events.CopyFrom(other.events);
    levels = other.levels;
}

std::vector<bool> ReachedLevels(const TraceSetup& setup) {
    std::vector<bool> reached(traceLevels);
    std::vector<int> waiting = {0};
    while (!waiting.empty()) {
        const int number = waiting.back();
        waiting.pop_back();
        if (number < 0 || number >= traceLevels || reached[static_cast<std::size_t>(number)]) {
            continue;
        }
        reached[static_cast<std::size_t>(number)] = true;
        const TraceLevel& level = setup.levels[static_cast<std::size_t>(number)];
        waiting.push_back(level.thenGoto);
        waiting.push_back(level.elseGoto);
    }
    return reached;
}

bool StoresAll(const TraceSetup& setup) {
    const std::vector<bool> reached = ReachedLevels(setup);
    for (std::size_t i = 0; i < reached.size(); ++i) {
        if (reached[i] && setup.levels[i].storeExpr != expressionAll) {
            return false;
        }
    }
    return setup.clock != clockTransfer;
}

Sampling SamplingOf(const TraceSetup& setup) {
    return {setup.clock == clockOfBus || setup.clock == clockSync, StoresAll(setup)};
}

std::string_view ClockText(std::int32_t index) noexcept {
    return TextAt(clockTexts, index);
}

std::optional<std::int64_t> ClockPeriod(std::int32_t index) noexcept {
    constexpr std::int64_t fastest = 7500; // each further period is twice the one before
    const std::int32_t step = index - clock133MHz;
    return step >= 0 && index < clockCount ? std::optional(fastest << step) : std::nullopt;
}

std::optional<std::int64_t> PowerZoomPeriod(std::int32_t index) noexcept {
    constexpr std::int64_t fastest = 1875;
    return index >= 1 && index < powerZoomCount ? std::optional(fastest << (index - 1))
                                                : std::nullopt;
}

std::string_view PowerZoomText(std::int32_t index) noexcept {
    return TextAt(powerZoomTexts, index);
}

std::string_view TriggerText(std::int32_t index) noexcept {
    return TextAt(triggerTexts, index);
}

std::uint8_t TokenAt(const Expression& bytes, int nibble) noexcept {
    const std::uint8_t byte = bytes[static_cast<std::size_t>(nibble / 2)];
    return nibble % 2 == 0 ? byte & 0x0F : byte >> 4;
}

void SetTokenAt(Expression& bytes, int nibble, std::uint8_t token) noexcept {
    std::uint8_t& byte = bytes[static_cast<std::size_t>(nibble / 2)];
    byte = static_cast<std::uint8_t>(nibble % 2 == 0 ? (byte & 0xF0) | token
                                                     : (byte & 0x0F) | token << 4);
}

std::string FormatExpression(const Expression& bytes) {
    if (bytes == expressionAll) {
        return "All";
    }
    std::string text;
    for (int n = expressionTokens; n-- > 0;) {
        const std::uint8_t token = TokenAt(bytes, n);
        if (token >= TokenFirstEvent && token <= TokenLastEvent) {
            text += Printf("E%d", token);
        } else if (token >= TokenAnd && token <= TokenClose) {
            text += operatorTokens[std::size_t{token} - TokenAnd];
        }
    }
    return text.empty() ? "None" : text;
}

Expression ParseExpression(std::string_view text) noexcept {
    if (text == "All") {
        return expressionAll;
    }
    Expression bytes{};
    if (text == "None") {
        return bytes;
    }
    int next = expressionTokens - 1;
    const auto store = [&](std::uint8_t token) {
        if (next >= 0) {
            SetTokenAt(bytes, next--, token);
        }
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const auto at = operatorTokens.find(text[i]); at != std::string_view::npos) {
            store(static_cast<std::uint8_t>(TokenAnd + at));
        } else if (text[i] == 'E' && i + 1 < text.size() && IsEventDigit(text[i + 1])) {
            store(static_cast<std::uint8_t>(text[i + 1] - '0'));
        }
    }
    return bytes;
}

std::string FormatTraceGoto(std::int32_t level, bool trigger) {
    return Printf("Goto L%d%s", level + 1, trigger ? ", Trigger" : "");
}

void ParseTraceGoto(std::string_view text, std::int32_t& level, bool& trigger) noexcept {
    trigger = text.find("Trigger") != std::string_view::npos;
    const auto number = TextAfter(text, "Goto L");
    if (number && !number->empty() && IsEventDigit(number->front())) {
        level = number->front() - '1';
    }
}

std::string FormatStimulusGoto(std::int32_t level, std::int32_t duration, std::int32_t wait) {
    std::string text = level >= stimulusStop ? "STOP" : Printf("Goto SL%d", level + 1);
    if (duration > 1) {
        text += Printf(", Dur %d", duration);
    }
    if (wait > 1) {
        text += Printf(", Wait %d", wait);
    }
    return text;
}

void ParseStimulusGoto(std::string_view text, std::int32_t& level, std::int32_t& duration,
                       std::int32_t& wait) noexcept {
    level = 0;
    duration = 1;
    wait = 1;
    if (text.find("STOP") != std::string_view::npos) {
        level = stimulusStop;
    } else if (const auto number = TextAfter(text, "Goto SL")) {
        const int value = ParseInt(*number);
        level = value >= 1 && value <= stimulusLevels ? value - 1 : 0;
    }
    if (const auto number = TextAfter(text, "Dur ")) {
        duration = ParseInt(*number);
    }
    if (const auto number = TextAfter(text, "Wait ")) {
        wait = ParseInt(*number);
    }
}

std::string FormatStimulusRef(std::int32_t number) {
    return number == 0 ? "None" : Printf("S%d", number);
}

std::int32_t ParseStimulusRef(std::string_view text) noexcept {
    if (text.find("None") != std::string_view::npos || !text.starts_with('S')) {
        return 0;
    }
    return ParseInt(text.substr(1));
}

} // namespace busquill
