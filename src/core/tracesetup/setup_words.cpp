#include "tracesetup/setup_words.h"

#include "platform/text.h"
#include "signals/value_text.h"
#include "tracesetup/trace_setup.h"

#include <vector>

namespace busquill {

namespace {

bool Compares(const CSignalList& events, std::size_t first, unsigned event) {
    for (std::size_t i = first; i < events.GroupEnd(first); ++i) {
        if (events[i].MaskBit(event) && !events[i].mask.empty()) {
            return true;
        }
    }
    return false;
}

std::string ValueWords(const CSignal& signal, unsigned event) {
    const char* label = signal.decoded ? signal.Label(event) : nullptr;
    if (label != nullptr && *label != '\0') {
        return label;
    }
    if (signal.groupWidth != 0) {
        return FormatValue(signal.GroupRow(event), signal.groupWidth, signal.radix,
                           signal.GroupMaskRow(event), false);
    }
    return signal.Bit(event) ? "1" : "0";
}

/// "1st", "2nd", "3rd", "4th"; 11 to 13 end in "th" too.
std::string Ordinal(int number) {
    const int last = number / 10 % 10 == 1 ? 0 : number % 10;
    const char* ending = last == 1 ? "st" : last == 2 ? "nd" : last == 3 ? "rd" : "th";
    return std::to_string(number) + ending;
}

std::string ActionWords(bool trigger, std::int32_t level, int here) {
    const std::string where =
        level == here ? "stay in this level" : Printf("go to level %d", level + 1);
    return trigger ? "trigger and " + where : where;
}

std::string ConditionWords(const Expression& expression) {
    const std::string text = FormatExpression(expression);
    return text == "All" ? "any sample" : text == "None" ? "no sample" : text;
}

std::string LevelWords(const TraceLevel& level, int number) {
    const std::string store = FormatExpression(level.storeExpr);
    const std::string stored = store == "All"    ? "store all samples"
                               : store == "None" ? "store nothing"
                                                 : "store samples with " + store;
    const std::string times =
        level.occurs > 1 ? " for the " + Ordinal(level.occurs) + " time" : std::string();
    std::string words = Printf("Level %d: %s; ", number + 1, stored.c_str());
    if (FormatExpression(level.ifExpr) == "None") {
        return words + ActionWords(level.elseTrigger, level.elseGoto, number);
    }
    words += "on " + ConditionWords(level.ifExpr) + times + ", " +
             ActionWords(level.thenTrigger, level.thenGoto, number);
    return words + "; otherwise " + ActionWords(level.elseTrigger, level.elseGoto, number);
}

} // namespace

std::string EventWords(const CSignalList& events, unsigned event) {
    std::string words;
    std::vector<bool> told(SampleRecord::bitCount);
    for (std::size_t i = 0; i < events.Size(); i = events.GroupEnd(i)) {
        const CSignal& signal = events[i];
        if (!Compares(events, i, event)) {
            continue;
        }
        // Several rows may have the same bits; the first describes them.
        bool isNew = false;
        for (std::size_t member = i; member < events.GroupEnd(i); ++member) {
            const int position = events[member].dataIndex;
            if (position >= 0 && position < SampleRecord::bitCount &&
                events[member].MaskBit(event) && !told[static_cast<std::size_t>(position)]) {
                told[static_cast<std::size_t>(position)] = isNew = true;
            }
        }
        if (isNew) {
            words +=
                (words.empty() ? "" : ", ") + signal.RowName() + " = " + ValueWords(signal, event);
        }
    }
    return words;
}

std::vector<std::string> SetupWords(const TraceSetup& setup, const BoardTraits& board) {
    std::vector<std::string> lines;
    lines.push_back("Clock: " + std::string(ClockText(setup.clock)));
    if (board.HasPowerZoom()) {
        lines.push_back("Power Zoom: " + std::string(PowerZoomText(setup.powerZoomClock)));
    }
    lines.push_back("Trigger position: " + std::string(TriggerText(setup.triggerPosition)));
    const auto events = static_cast<unsigned>(EventCount(board));
    for (unsigned event = 0; event < events; ++event) {
        if (const std::string words = EventWords(setup.events, event); !words.empty()) {
            lines.push_back(Printf("E%u: %s", event + 1, words.c_str()));
        }
    }
    // Only levels that can be reached are described.
    const std::vector<bool> reached = ReachedLevels(setup);
    for (int number = 0; number < traceLevels; ++number) {
        if (reached[static_cast<std::size_t>(number)]) {
            lines.push_back(LevelWords(setup.levels[static_cast<std::size_t>(number)], number));
        }
    }
    return lines;
}

} // namespace busquill
