#include "signals/signal_names.h"

#include "platform/near_names.h"
#include "platform/text.h"
#include "signals/signal_list.h"

#include <algorithm>
#include <charconv>

namespace busquill {

namespace {

/// The row that begins at an index of the list, without positions where it has no bits.
NamedSignal RowAt(const CSignalList& list, std::size_t first) {
    NamedSignal row{list[first].RowName(), {}, list[first].decoded};
    for (std::size_t member = first; member < list.GroupEnd(first); ++member) {
        if (const int position = list[member].dataIndex;
            position >= 0 && position < SampleRecord::bitCount) {
            row.positions.push_back(position);
        }
    }
    return row;
}

std::optional<NamedSignal> FindRow(std::string_view name, const CSignalList& list) {
    for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
        if (!EqualIgnoringCase(list[i].RowName(), name)) {
            continue;
        }
        if (NamedSignal row = RowAt(list, i); !row.positions.empty()) {
            return row;
        }
    }
    return std::nullopt;
}

/// Placeholders, and comparisons that only the board makes, do not stand for bits of a sample.
bool IsValue(const CDecodedSignalDef& def, const std::vector<int>& positions,
             const SignalTables& tables) {
    return def.decodeKind != DecodeKind::Delta && def.decodeKind != DecodeKind::Accum &&
           def.decodeKind != DecodeKind::Sample && def.name != "=<>" && !positions.empty() &&
           positions.back() < SampleRecord::bitCount &&
           SignalTables::Applies(def.condition, tables.Board());
}

NamedSignal NamedBy(const std::shared_ptr<const CDecodedSignalDef>& def) {
    return {def->name, def->Positions(), def};
}

std::optional<NamedSignal> FindDecoded(std::string_view name, const SignalTables& tables) {
    const CDecodedSignalDef* last = nullptr;
    std::optional<NamedSignal> found;
    int close = 0;
    for (const auto& def : tables.decodedSignals.Defs()) {
        if (!IsValue(*def, def->Positions(), tables)) {
            continue;
        }
        if (EqualIgnoringCase(def->name, name)) {
            return NamedBy(def);
        }
        const std::size_t bracket = def->name.find('(');
        if (bracket != std::string::npos &&
            EqualIgnoringCase(std::string_view(def->name).substr(0, bracket), name)) {
            ++close;
            last = def.get();
            found = NamedBy(def);
        }
    }
    return close == 1 && last != nullptr ? found : std::nullopt;
}

/// "[5]" or "[15:8]"; nothing for anything else.
std::optional<std::pair<int, int>> ParseRange(std::string_view text) {
    if (text.size() < 3 || text.front() != '[' || text.back() != ']') {
        return std::nullopt;
    }
    text = text.substr(1, text.size() - 2);
    const auto number = [](std::string_view digits) -> std::optional<int> {
        int value = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), value);
        const bool whole = error == std::errc() && end == digits.data() + digits.size();
        return whole && value >= 0 ? std::optional(value) : std::nullopt;
    };
    const std::size_t colon = text.find(':');
    const auto high = number(text.substr(0, colon));
    const auto low = colon == std::string_view::npos ? high : number(text.substr(colon + 1));
    if (!high || !low) {
        return std::nullopt;
    }
    return std::pair(std::min(*low, *high), std::max(*low, *high));
}

/// A range of lines of a bus.
NamedSignal LinesOf(const CBusSignalDef& def, const std::string& range, int first, int last) {
    NamedSignal lines{def.name + range, {}, nullptr};
    for (int p = first; p <= last; ++p) {
        lines.positions.push_back(def.dataIndex + (def.bitReverse ? def.Width() - 1 - p : p));
    }
    return lines;
}

std::optional<NamedSignal> FindBus(std::string_view name, const SignalTables& tables) {
    for (const auto& def : tables.busSignals.Defs()) {
        if (name.size() < def->name.size() ||
            !EqualIgnoringCase(name.substr(0, def->name.size()), def->name)) {
            continue;
        }
        const std::string_view rest = name.substr(def->name.size());
        const int width = def->Width();
        const auto range = rest.empty() ? std::optional(std::pair(0, width - 1)) : ParseRange(rest);
        if (!range || range->second >= width || (width == 1 && !rest.empty())) {
            continue;
        }
        return LinesOf(*def, std::string(rest), range->first, range->second);
    }
    return std::nullopt;
}

constexpr const char* timeName = "TIME";

/// Patterns use some bits for ranges; in a sample these hold the time.
bool IsInTime(const SignalTables& tables, int position) {
    const auto time = tables.busSignals.FindByName(timeName);
    return time && position >= time->dataIndex && position < time->dataIndex + time->Width();
}

} // namespace

std::optional<NamedSignal> FindSignal(std::string_view name, const SignalTables& tables,
                                      std::initializer_list<const CSignalList*> lists) {
    for (const CSignalList* list : lists) {
        if (auto found = FindRow(name, *list)) {
            return found;
        }
    }
    if (auto found = FindDecoded(name, tables)) {
        return found;
    }
    if (auto found = FindBus(name, tables)) {
        return found;
    }
    for (int position = 0; position < SampleRecord::bitCount; ++position) {
        if (EqualIgnoringCase(Printf("bit %d", position), name)) {
            return NamedSignal{std::string(name), {position}, nullptr};
        }
    }
    return std::nullopt;
}

std::vector<NamedSignal> AllSignals(const SignalTables& tables,
                                    std::initializer_list<const CSignalList*> lists) {
    std::vector<NamedSignal> signals;
    const auto add = [&signals](NamedSignal signal) {
        const bool isThere = std::ranges::any_of(signals, [&](const NamedSignal& each) {
            return EqualIgnoringCase(each.name, signal.name);
        });
        if (!signal.positions.empty() && !isThere) {
            signals.push_back(std::move(signal));
        }
    };
    for (const CSignalList* list : lists) {
        for (std::size_t i = 0; i < list->Size(); i = list->GroupEnd(i)) {
            add(RowAt(*list, i));
        }
    }
    for (const auto& def : tables.decodedSignals.Defs()) {
        if (IsValue(*def, def->Positions(), tables)) {
            add(NamedBy(def));
        }
    }
    for (const auto& def : tables.busSignals.Defs()) {
        // Bits that mean something only in patterns, where samples hold their time, are left out.
        if (def->name == timeName || !IsInTime(tables, def->dataIndex)) {
            const int last = def->Width() - 1;
            add(LinesOf(*def, last == 0 ? "" : Printf("[%d:0]", last), 0, last));
        }
    }
    return signals;
}

std::vector<std::string> LabelsOf(const CDecodedSignalDef& def) {
    std::vector<std::string> labels;
    // A field that is shown as a number has a template of its digits instead of labels.
    if (!def.ReadsAsLabel()) {
        return labels;
    }
    for (const CDecodedValue& value : def.values) {
        const bool isShown = value.label[0] != '\0' && (value.skipModes & ModeState) == 0;
        if (isShown && std::ranges::find(labels, value.label) == labels.end()) {
            labels.emplace_back(value.label);
        }
    }
    return labels;
}

std::string UnknownSignal(std::string_view name, const SignalTables& tables,
                          std::initializer_list<const CSignalList*> lists) {
    std::vector<std::string> names;
    for (const NamedSignal& signal : AllSignals(tables, lists)) {
        names.push_back(signal.name);
    }
    return Printf("no signal \"%s\" on this bus; there are %s", std::string(name).c_str(),
                  ListNearest(name, names).c_str());
}

std::string BitName(const SignalTables& tables, int position) {
    const auto def = IsInTime(tables, position) ? tables.busSignals.FindByName(timeName)
                                                : tables.FindBusDefByDataIndex(position);
    if (!def) {
        return Printf("bit %d", position);
    }
    const int width = def->Width();
    const int offset = position - def->dataIndex;
    return width == 1
               ? def->name
               : Printf("%s[%d]", def->name.c_str(), def->bitReverse ? width - 1 - offset : offset);
}

} // namespace busquill
