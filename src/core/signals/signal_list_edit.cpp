#include "signals/signal_list.h"

#include <algorithm>
#include <set>

namespace busquill {

void CSignalList::SetGroupSelected(CSignal* first, bool flag) {
    const std::size_t start = IndexOf(first);
    for (std::size_t i = start; i < GroupEnd(start); ++i) {
        signals_[i]->selected = flag;
    }
}

void CSignalList::UngroupSelected() {
    for (const auto& signal : signals_) {
        if (signal->selected && signal->grouped) {
            signal->grouped = false;
            signal->groupAttribute = 0;
            signal->groupData.clear();
            signal->groupMask.clear();
            signal->groupWidth = 0;
            signal->showValue = false;
        }
    }
}

void CSignalList::CollapseSelected() {
    const auto isSelected = [](const auto& signal) { return signal->selected; };
    const auto first = std::find_if(signals_.begin(), signals_.end(), isSelected);
    if (first == signals_.end()) {
        return;
    }
    // The selected ones close up behind the first; the others keep their order behind them.
    const auto end = std::stable_partition(first, signals_.end(), isSelected);
    for (auto member = first; member != end; ++member) {
        (*member)->grouped = true;
        (*member)->groupAttribute = 0;
        (*member)->groupData.clear();
        (*member)->groupMask.clear();
    }
    (*first)->groupAttribute |= GroupAttribute::Start;
    (*(end - 1))->groupAttribute |= GroupAttribute::End;
    BuildGroup(first->get());
    (*first)->showValue = true;
}

void CSignalList::DeleteSelected() {
    std::erase_if(signals_, [](const auto& signal) { return signal->selected; });
}

void CSignalList::RemoveGroup(const CSignal* first) {
    const std::size_t start = IndexOf(first);
    signals_.erase(signals_.begin() + static_cast<std::ptrdiff_t>(start),
                   signals_.begin() + static_cast<std::ptrdiff_t>(GroupEnd(start)));
}

CSignal* CSignalList::InsertBlank(const CSignal* before) {
    return &Insert(before, std::make_unique<CSignal>());
}

void CSignalList::SetSelectedColor(std::uint32_t color) {
    SignalTables& tables = SignalTables::Current();
    std::set<std::string> stored; // a bus has many signals of one name, and each store is a file
    for (const auto& signal : signals_) {
        if (!signal->selected) {
            continue;
        }
        signal->color = color;
        if (signal->decoded) {
            tables.decodedSignals.SetColor(signal->decoded->name, color);
        } else if (stored.insert(signal->baseName).second) {
            tables.busSignals.SetColor(signal->baseName, color);
        }
    }
}

void CSignalList::MoveGroup(CSignal* group, CSignal* target) {
    const std::size_t from = IndexOf(group);
    const std::size_t fromEnd = GroupEnd(from);
    if (from == signals_.size()) {
        return;
    }
    const auto at = [&](std::size_t i) {
        return signals_.begin() + static_cast<std::ptrdiff_t>(i);
    };
    if (target == nullptr) {
        std::rotate(at(from), at(fromEnd), signals_.end());
        return;
    }
    const std::size_t to = IndexOf(target);
    if (to == signals_.size() || (to >= from && to < fromEnd)) {
        return;
    }
    if (to > from) {
        std::rotate(at(from), at(fromEnd), at(GroupEnd(to)));
    } else {
        std::rotate(at(to), at(from), at(fromEnd));
    }
}

} // namespace busquill
