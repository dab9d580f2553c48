#include "signals/signal_list.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace busquill {

namespace {

void FreeGroupRows(CSignal& signal) {
    signal.groupData.clear();
    signal.groupMask.clear();
    signal.groupWidth = 0;
}

} // namespace

void CSignalList::SetGroupSelected(CSignal* first, bool flag) {
    const std::size_t index = IndexOf(first);
    for (std::size_t i = index; i < GroupEnd(index); ++i) {
        signals_[i]->selected = flag;
    }
}

void CSignalList::UngroupSelected() {
    for (const auto& signal : signals_) {
        if (signal->selected && signal->grouped) {
            signal->grouped = false;
            signal->groupAttribute = 0;
            signal->showValue = false;
            FreeGroupRows(*signal);
        }
    }
}

void CSignalList::CollapseSelected() {
    const auto isSelected = [](const auto& signal) { return signal->selected; };
    const auto first = std::find_if(signals_.begin(), signals_.end(), isSelected);
    if (first == signals_.end()) {
        return;
    }
    // The later ones move up to the first, past the unselected signals in between.
    const auto end = std::stable_partition(first, signals_.end(), isSelected);
    for (auto member = first; member != end; ++member) {
        (*member)->grouped = true;
        (*member)->groupAttribute = 0;
        FreeGroupRows(**member);
    }
    (*first)->groupAttribute |= GroupAttribute::Start;
    (*std::prev(end))->groupAttribute |= GroupAttribute::End;
    (*first)->showValue = true;
    BuildGroupAt(static_cast<std::size_t>(first - signals_.begin()));
}

void CSignalList::DeleteSelected() {
    std::erase_if(signals_, [](const auto& signal) { return signal->selected; });
}

void CSignalList::RemoveGroup(const CSignal* first) {
    const std::size_t index = IndexOf(first);
    signals_.erase(signals_.begin() + static_cast<std::ptrdiff_t>(index),
                   signals_.begin() + static_cast<std::ptrdiff_t>(GroupEnd(index)));
}

CSignal* CSignalList::InsertBlank(const CSignal* before) {
    Signals added;
    added.push_back(std::make_unique<CSignal>());
    CSignal* const blank = added.front().get();
    Insert(before, std::move(added));
    return blank;
}

void CSignalList::SetSelectedColor(std::uint32_t color) {
    std::set<std::string> busNames;
    std::set<std::string> decodedNames;
    for (const auto& signal : signals_) {
        if (signal->selected) {
            signal->color = color;
            if (signal->decoded) {
                decodedNames.insert(signal->decoded->name);
            } else {
                busNames.insert(signal->baseName);
            }
        }
    }
    // Each name once: setting a colour writes the whole colour file, and all bits of a bus have one
    // name.
    for (const std::string& name : decodedNames) {
        tables_->decodedSignals.SetColor(name, color);
    }
    for (const std::string& name : busNames) {
        tables_->busSignals.SetColor(name, color);
    }
}

void CSignalList::MoveGroup(CSignal* group, CSignal* target) {
    const std::size_t from = IndexOf(group);
    const std::size_t fromEnd = GroupEnd(from);
    const std::size_t place = target == nullptr ? signals_.size() : IndexOf(target);
    const bool isTail = target == nullptr;
    if (from == signals_.size() || (!isTail && place == signals_.size()) || place == from) {
        return;
    }
    const auto at = [this](std::size_t index) {
        return signals_.begin() + static_cast<std::ptrdiff_t>(index);
    };
    if (place < from) {
        std::rotate(at(place), at(from), at(fromEnd));
    } else if (const std::size_t end = isTail ? place : GroupEnd(place); end > fromEnd) {
        std::rotate(at(from), at(fromEnd), at(end));
    }
}

} // namespace busquill
