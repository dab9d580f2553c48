#include "signals/signal_names.h"

#include "platform/text.h"
#include "signals/signal_list.h"

#include <algorithm>
#include <charconv>

namespace busquill {

namespace {

std::optional<NamedSignal> FindRow(std::string_view name, const CSignalList& list) {
    for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
        const CSignal& signal = list[i];
        if (!EqualIgnoringCase(signal.RowName(), name)) {
            continue;
        }
        NamedSignal found{signal.RowName(), {}, signal.decoded};
        for (std::size_t member = i; member < list.GroupEnd(i); ++member) {
            if (const int position = list[member].dataIndex;
                position >= 0 && position < SampleRecord::bitCount) {
                found.positions.push_back(position);
            }
        }
        if (!found.positions.empty()) {
            return found;
        }
    }
    return std::nullopt;
}

NamedSignal NamedBy(const std::shared_ptr<const CDecodedSignalDef>& def) {
    return {def->name, def->Positions(), def};
}

std::optional<NamedSignal> FindDecoded(std::string_view name, const SignalTables& tables) {
    const CDecodedSignalDef* last = nullptr;
    std::optional<NamedSignal> found;
    int close = 0;
    for (const auto& def : tables.decodedSignals.Defs()) {
        const std::vector<int> positions = def->Positions();
        // Placeholders, and comparisons that only the board makes, are no bits of a sample.
        const bool isValue = def->decodeKind != DecodeKind::Delta &&
                             def->decodeKind != DecodeKind::Accum &&
                             def->decodeKind != DecodeKind::Sample && def->name != "=<>";
        if (!isValue || positions.empty() || positions.back() >= SampleRecord::bitCount ||
            !SignalTables::Applies(def->condition, tables.Board())) {
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
        NamedSignal found{def->name + std::string(rest), {}, nullptr};
        for (int p = range->first; p <= range->second; ++p) {
            found.positions.push_back(def->dataIndex + (def->bitReverse ? width - 1 - p : p));
        }
        return found;
    }
    return std::nullopt;
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

std::string BitName(const SignalTables& tables, int position) {
    // In a sample, the bits that patterns use for ranges are those of the time.
    auto def = tables.busSignals.FindByName("TIME");
    if (!def || position < def->dataIndex || position >= def->dataIndex + def->Width()) {
        def = tables.FindBusDefByDataIndex(position);
    }
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
