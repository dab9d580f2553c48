#include "signals/signal_list.h"

#include "platform/text.h"

#include <algorithm>

namespace busquill {

namespace {

bool IsPattern(std::uint32_t mode) noexcept {
    return mode == ModeEvents || mode == ModeStimulus;
}

/// A signal with the colour, radix and flags that a definition's signals begin with.
CSignal Like(std::uint32_t color, std::int32_t radix, bool showValue) {
    CSignal like;
    like.color = color;
    like.radix = radix;
    like.showValue = showValue;
    return like;
}

void SetUpSamples(CSignal& signal, std::uint32_t numSamples, std::uint32_t mode) {
    // A whole number of words.
    signal.ResizeSamples(static_cast<std::uint32_t>(WordsFor(numSamples) * 32));
    if (IsPattern(mode)) {
        signal.AllocateMask(numSamples);
    }
}

} // namespace

std::size_t CSignalList::IndexOf(const CSignal* signal) const noexcept {
    const auto found = std::find_if(signals_.begin(), signals_.end(),
                                    [&](const auto& each) { return each.get() == signal; });
    return static_cast<std::size_t>(found - signals_.begin());
}

std::size_t CSignalList::GroupEnd(std::size_t start) const noexcept {
    if (start >= signals_.size() || !signals_[start]->grouped) {
        return std::min(start + 1, signals_.size());
    }
    std::size_t i = start;
    while (i < signals_.size() && (signals_[i]->groupAttribute & GroupAttribute::End) == 0) {
        ++i;
    }
    return std::min(i + 1, signals_.size());
}

void CSignalList::CopyFrom(const CSignalList& other) {
    if (&other == this) {
        return;
    }
    mode = other.mode;
    signals_.clear();
    signals_.reserve(other.signals_.size());
    for (const auto& signal : other.signals_) {
        signals_.push_back(std::make_unique<CSignal>(*signal));
    }
}

void CSignalList::RemoveAllSignals() {
    signals_.clear();
}

CSignal& CSignalList::Insert(const CSignal* before, std::unique_ptr<CSignal> signal) {
    CSignal& added = *signal;
    signals_.insert(signals_.begin() + static_cast<std::ptrdiff_t>(IndexOf(before)),
                    std::move(signal));
    return added;
}

void CSignalList::BuildFromTables(std::uint32_t numSamples, std::uint32_t forMode) {
    mode = forMode;
    signals_.clear();
    const SignalTables& tables = SignalTables::Current();
    const BoardTraits board = tables.Board();
    for (const auto& def : tables.busSignals.Defs()) {
        const std::uint32_t flags = def->FlagsFor(mode);
        if ((flags & (flagShown | flagPermanent)) == 0) {
            continue;
        }
        CSignal like = Like(def->color, Radix::Hex, def->Width() > 1);
        like.permanent = (flags & flagPermanent) != 0;
        like.hidden = like.permanent && (flags & flagShown) == 0;
        AddBusSignals(nullptr, *def, def->firstPosition, def->lastPosition, like, numSamples);
    }
    for (const auto& def : tables.decodedSignals.Defs()) {
        const bool shown = (def->FlagsFor(mode) & flagShown) != 0 &&
                           SignalTables::Applies(def->condition, board) &&
                           !(mode == ModeStimulus && def->name == "ANOMALY");
        const auto before = std::find_if(signals_.begin(), signals_.end(), [&](const auto& signal) {
            return signal->groupName == def->insertBefore || signal->name == def->insertBefore;
        });
        if (shown && !def->insertBefore.empty() && before != signals_.end()) {
            AddDecodedSignals(before->get(), def, Like(def->color, Radix::Hex, true), numSamples);
        }
    }
}

CSignal* CSignalList::AddSignal(const CSignal* before, const std::shared_ptr<const CSignalDef>& def,
                                std::uint32_t numSamples, std::int32_t first, std::int32_t last,
                                std::uint32_t color, std::int32_t radix, bool showValue) {
    const CSignal like = Like(color, radix, showValue);
    if (auto decoded = std::dynamic_pointer_cast<const CDecodedSignalDef>(def)) {
        return AddDecodedSignals(before, decoded, like, numSamples);
    }
    const auto bus = std::dynamic_pointer_cast<const CBusSignalDef>(def);
    return bus ? AddBusSignals(before, *bus, first, last, like, numSamples) : nullptr;
}

CSignal* CSignalList::AddBusSignals(const CSignal* before, const CBusSignalDef& def,
                                    std::int32_t first, std::int32_t last, const CSignal& like,
                                    std::uint32_t numSamples) {
    const bool group = last > first;
    CSignal* head = nullptr;
    for (std::int32_t p = first; p <= last; ++p) {
        auto signal = std::make_unique<CSignal>(like);
        signal->baseName = def.name;
        signal->bitIndex = def.Width() == 1 ? -1 : p;
        signal->name = def.Width() == 1 ? def.name : Printf("%s[%d]", def.name.c_str(), p);
        signal->dataIndex = def.dataIndex + (def.bitReverse ? def.Width() - p - 1 : p);
        signal->bitReverse = def.bitReverse;
        signal->grouped = group;
        SetUpSamples(*signal, numSamples, mode);
        if (group && p == first) {
            signal->groupAttribute = GroupAttribute::Start;
            signal->radix = def.name == "TIME" ? std::int32_t{Radix::Time} : like.radix;
        } else if (group && p == last) {
            signal->groupAttribute = GroupAttribute::End;
        }
        CSignal& added = Insert(before, std::move(signal));
        head = head == nullptr ? &added : head;
    }
    if (group) {
        BuildGroup(head);
    }
    return head;
}

CSignal* CSignalList::AddDecodedSignals(const CSignal* before,
                                        const std::shared_ptr<const CDecodedSignalDef>& def,
                                        const CSignal& like, std::uint32_t numSamples) {
    std::vector<CSignal*> added;
    for (const int position : def->Positions()) {
        const auto bus = SignalTables::Current().FindBusDefByDataIndex(position);
        if (!bus) {
            continue;
        }
        auto signal = std::make_unique<CSignal>(like);
        signal->baseName = bus->name;
        signal->bitIndex = bus->Width() == 1 ? -1 : position - bus->dataIndex;
        signal->name =
            bus->Width() == 1 ? bus->name : Printf("%s[%d]", bus->name.c_str(), signal->bitIndex);
        signal->dataIndex = position;
        SetUpSamples(*signal, numSamples, mode);
        added.push_back(&Insert(before, std::move(signal)));
    }
    if (added.empty()) {
        return nullptr;
    }
    CSignal& head = *added.front();
    if (added.size() > 1) {
        for (CSignal* member : added) {
            member->grouped = true;
        }
        head.groupAttribute = GroupAttribute::Start;
        added.back()->groupAttribute = GroupAttribute::End;
        BuildGroup(&head);
        head.groupAttribute |= GroupAttribute::NoUngroup;
        head.groupName = def->name;
    } else {
        head.name = def->name;
    }
    head.decoded = def;
    PrepareLabels(head);
    LabelAll(head);
    return &head;
}

// Contiguous runs of one bus come out as a range, the highest index first; a change of bus or a
// gap begins a new run.
static std::string GroupNameOf(std::span<const std::unique_ptr<CSignal>> members) {
    const CSignal& head = *members.front();
    std::string text = head.baseName + (head.bitIndex != -1 ? "[" : "");
    std::int32_t start = head.bitIndex;
    for (std::size_t i = 1; i < members.size(); ++i) {
        const CSignal& member = *members[i];
        const std::int32_t previous = members[i - 1]->bitIndex;
        if (member.baseName != members[i - 1]->baseName) {
            if (start == -1) {
                text += ",";
            } else if (start != previous) {
                text += Printf("%d:%d],", previous, start);
            } else {
                text += Printf("%d],", start);
            }
            text += member.baseName + (member.bitIndex != -1 ? "[" : "");
            start = member.bitIndex;
        } else if (member.bitIndex != previous + 1) {
            text += start == previous ? Printf("%d,", start) : Printf("%d:%d,", previous, start);
            start = member.bitIndex;
        }
    }
    if (start != -1) {
        const std::int32_t last = members.back()->bitIndex;
        text += last == start ? Printf("%d]", last) : Printf("%d:%d]", last, start);
    }
    return text;
}

void CSignalList::BuildGroup(CSignal* first) {
    const std::size_t start = IndexOf(first);
    if (start == signals_.size()) {
        return;
    }
    const std::size_t end = GroupEnd(start);
    const std::span members(signals_.data() + start, end - start);
    const std::uint32_t count = members.back()->numSamples;

    first->groupWidth = static_cast<std::uint32_t>(members.size());
    first->groupName = GroupNameOf(members);
    first->groupData.assign(first->RowBytes() * count, 0);
    const bool masked = std::all_of(members.begin(), members.end(),
                                    [](const auto& member) { return !member->mask.empty(); });
    first->groupMask.assign(masked ? first->groupData.size() : 0, 0);
    RebuildRows(start, 0, count);
}

void CSignalList::RebuildAfterRead() {
    for (const auto& signal : signals_) {
        if (signal->IsGroupStart()) {
            BuildGroup(signal.get());
        }
    }
    for (const auto& signal : signals_) {
        if (signal->decoded) {
            (signal->grouped ? signal->groupName : signal->name) = signal->decoded->name;
            PrepareLabels(*signal);
            LabelAll(*signal);
        }
    }
}

} // namespace busquill
