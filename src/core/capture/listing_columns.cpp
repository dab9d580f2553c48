#include "capture/listing_columns.h"

#include "platform/near_names.h"
#include "platform/text.h"
#include "signals/signal_list.h"
#include "signals/signal_names.h"

#include <algorithm>

namespace busquill {

namespace {

/// The first row of the list with this name; with `base`, the first whose bus has it.
CSignal* FindColumn(const CSignalList& list, const std::string& name, bool base) {
    for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
        const std::string& own = base ? list[i].baseName : list[i].RowName();
        if (EqualIgnoringCase(own, name) && !(base && list[i].decoded)) {
            return &list[i];
        }
    }
    return nullptr;
}

CSignal* AddDecoded(CSignalList& list, const std::string& name, const SignalTables& tables) {
    for (const auto& def : tables.decodedSignals.Defs()) {
        if (EqualIgnoringCase(def->name, name)) {
            return list.AddSignal(nullptr, def, 0, 0, 0, def->color, Radix::Hex, true);
        }
    }
    return nullptr;
}

CSignal* AddLines(CSignalList& list, const std::string& name, const SignalTables& tables) {
    const auto found = FindSignal(name, tables, {});
    if (!found) {
        return nullptr;
    }
    if (found->decoded) {
        return AddDecoded(list, found->name, tables);
    }
    const auto def = tables.busSignals.FindByName(found->name.substr(0, found->name.find('[')));
    const int first = found->positions.front() - def->dataIndex;
    const int last = found->positions.back() - def->dataIndex;
    const int top = def->Width() - 1;
    return def->bitReverse
               ? list.AddSignal(nullptr, def, 0, top - first, top - last, def->color, Radix::Hex,
                                true)
               : list.AddSignal(nullptr, def, 0, first, last, def->color, Radix::Hex, true);
}

/// The row of that name in the list, or one added from the tables.
CSignal* ColumnOf(CSignalList& list, const std::string& name, const SignalTables& tables) {
    CSignal* column = FindColumn(list, name, false);
    column = column != nullptr ? column : AddDecoded(list, name, tables);
    column = column != nullptr ? column : FindColumn(list, name, true);
    return column != nullptr ? column : AddLines(list, name, tables);
}

/// The error message for a name that is not a column's.
std::string UnknownColumn(const std::string& name, const CSignalList& list,
                          const SignalTables& tables) {
    std::vector<std::string> names;
    const auto add = [&names](const std::string& each) {
        if (std::ranges::find(names, each) == names.end()) {
            names.push_back(each);
        }
    };
    for (const NamedSignal& signal : AllSignals(tables, {&list})) {
        add(signal.name);
    }
    // Also those that are not bits of a sample, such as ACCUM.
    for (const auto& def : tables.decodedSignals.Defs()) {
        if (SignalTables::Applies(def->condition, tables.Board())) {
            add(def->name);
        }
    }
    return Printf("no column \"%s\"; there are %s", name.c_str(), ListNearest(name, names).c_str());
}

} // namespace

std::string ShowColumns(CSignalList& list, const std::vector<std::string>& names,
                        const SignalTables& tables) {
    std::vector<CSignal*> shown;
    for (const std::string& name : names) {
        if (name.empty() || EqualIgnoringCase(name, "SAMPLE")) {
            continue; // always the first column
        }
        CSignal* column = ColumnOf(list, name, tables);
        if (column == nullptr) {
            return UnknownColumn(name, list, tables);
        }
        shown.push_back(column);
    }
    for (const auto& signal : list.All()) {
        signal->hidden = std::ranges::find(shown, signal.get()) == shown.end();
    }
    for (CSignal* column : shown) {
        constexpr std::int32_t anyWidth = 30;
        column->width = column->width > 0 ? column->width : anyWidth;
        list.MoveGroup(column, nullptr);
    }
    return {};
}

} // namespace busquill
