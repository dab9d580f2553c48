#include "signals/signal_list.h"

#include "platform/text.h"
#include "signals/group_rows.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace busquill {

namespace {

constexpr const char* timeName = "TIME";
constexpr const char* anomalyName = "ANOMALY";

bool IsPatternMode(std::uint32_t mode) noexcept {
    return mode == ModeEvents || mode == ModeStimulus;
}

/// The signal of one position of a bus definition, without samples.
std::unique_ptr<CSignal> MakeSignal(const CBusSignalDef& def, std::int32_t position) {
    auto signal = std::make_unique<CSignal>();
    const std::int32_t width = def.Width();
    signal->baseName = def.name;
    signal->name = width == 1 ? def.name : Printf("%s[%d]", def.name.c_str(), position);
    signal->bitIndex = width == 1 ? -1 : position;
    signal->dataIndex = def.dataIndex + (def.bitReverse ? width - position - 1 : position);
    signal->bitReverse = def.bitReverse;
    signal->color = def.color;
    return signal;
}

void GiveSamples(CSignal& signal, std::uint32_t numSamples, std::uint32_t mode) {
    const std::size_t words = WordsFor(numSamples);
    signal.data.Reset(words);
    signal.numSamples = static_cast<std::uint32_t>(words * 32);
    if (IsPatternMode(mode)) {
        signal.AllocateMask(numSamples);
    }
}

void MarkAsGroup(const CSignalList::Signals& members) {
    for (const auto& member : members) {
        member->grouped = true;
    }
    members.front()->groupAttribute |= GroupAttribute::Start;
    members.back()->groupAttribute |= GroupAttribute::End;
}

/// The text of a run of indexes of one bus, from `start` to `last`: "7:4" or "4".
std::string Run(std::int32_t last, std::int32_t start) {
    return last == start ? Printf("%d", start) : Printf("%d:%d", last, start);
}

/// The row name of a group: runs of one bus as ranges, "C/BE[7:0],AD[31:0]".
std::string GroupNameOf(std::span<const std::unique_ptr<CSignal>> members) {
    const auto opening = [](const CSignal& member) {
        return member.baseName + (member.bitIndex == -1 ? "" : "[");
    };
    std::string text = opening(*members.front());
    std::int32_t start = members.front()->bitIndex;
    for (std::size_t i = 1; i < members.size(); ++i) {
        const CSignal& member = *members[i];
        const std::int32_t previous = members[i - 1]->bitIndex;
        if (member.baseName != members[i - 1]->baseName) {
            text += (start == -1 ? "" : Run(previous, start) + "]") + "," + opening(member);
            start = member.bitIndex;
        } else if (member.bitIndex != previous + 1) {
            text += Run(previous, start) + ",";
            start = member.bitIndex;
        }
    }
    if (start != -1) {
        text += Run(members.back()->bitIndex, start) + "]";
    }
    return text;
}

} // namespace

std::size_t CSignalList::IndexOf(const CSignal* signal) const noexcept {
    const auto found = std::find_if(signals_.begin(), signals_.end(),
                                    [&](const auto& each) { return each.get() == signal; });
    return static_cast<std::size_t>(found - signals_.begin());
}

std::size_t CSignalList::MembersEnd(std::size_t first) const noexcept {
    std::size_t end = first;
    while (end < signals_.size()) {
        if ((signals_[end++]->groupAttribute & GroupAttribute::End) != 0) {
            break;
        }
    }
    return end;
}

std::size_t CSignalList::GroupEnd(std::size_t index) const noexcept {
    if (index >= signals_.size()) {
        return signals_.size();
    }
    return signals_[index]->grouped ? MembersEnd(index) : index + 1;
}

std::span<const std::unique_ptr<CSignal>> CSignalList::Members(std::size_t first) const {
    return {signals_.data() + first, MembersEnd(first) - first};
}

void CSignalList::Insert(const CSignal* before, Signals added) {
    signals_.insert(signals_.begin() + static_cast<std::ptrdiff_t>(IndexOf(before)),
                    std::move_iterator(added.begin()), std::move_iterator(added.end()));
}

const CSignal* CSignalList::TimeGroup() const noexcept {
    const auto isTime = [](const auto& signal) {
        return signal->IsGroupStart() && signal->permanent && signal->baseName == "TIME";
    };
    const auto found = std::ranges::find_if(signals_, isTime);
    return found == signals_.end() ? nullptr : found->get();
}

std::optional<std::int64_t> CSignalList::TimeFrom(std::int64_t a, std::int64_t b) const {
    const CSignal* time = TimeGroup();
    if (a == -1 || b == -1 || time == nullptr || time->groupData.empty()) {
        return std::nullopt;
    }
    return times_.Between(*time, a, b);
}

void CSignalList::CopyFrom(const CSignalList& other) {
    mode = other.mode;
    tables_ = other.tables_;
    Signals copies;
    copies.reserve(other.Size());
    for (const auto& signal : other.signals_) {
        copies.push_back(std::make_unique<CSignal>(*signal));
    }
    signals_ = std::move(copies);
    times_.Forget();
}

void CSignalList::RemoveAllSignals() {
    signals_.clear();
    fileWords_ = 0;
}

void CSignalList::BuildFromTables(std::uint32_t numSamples, std::uint32_t forMode) {
    mode = forMode;
    RemoveAllSignals();
    for (const auto& def : tables_->busSignals.Defs()) {
        AddDefaultBusSignals(*def, numSamples);
    }
    const BoardTraits board = tables_->Board();
    for (const auto& def : tables_->decodedSignals.Defs()) {
        if (SignalTables::Applies(def->condition, board)) {
            AddDefaultDecodedSignal(def, numSamples);
        }
    }
}

void CSignalList::AddDefaultBusSignals(const CBusSignalDef& def, std::uint32_t numSamples) {
    const std::uint32_t flags = def.FlagsFor(mode);
    const bool permanent = (flags & flagPermanent) != 0;
    const bool shown = (flags & flagShown) != 0;
    if (!shown && !permanent) {
        return;
    }
    const std::size_t begin = signals_.size();
    const std::int32_t radix = def.Width() > 1 && def.name == timeName ? Radix::Time : Radix::Hex;
    AddBusSignal(nullptr, def, numSamples, 0, def.Width() - 1, def.color, Radix::Hex,
                 def.Width() > 1);
    for (std::size_t i = begin; i < signals_.size(); ++i) {
        signals_[i]->permanent = permanent;
        signals_[i]->hidden = permanent && !shown;
    }
    if (begin < signals_.size()) {
        signals_[begin]->radix = radix;
    }
}

void CSignalList::AddDefaultDecodedSignal(const std::shared_ptr<const CDecodedSignalDef>& def,
                                          std::uint32_t numSamples) {
    const bool shown = (def->FlagsFor(mode) & flagShown) != 0;
    if (!shown || def->insertBefore.empty() || (mode == ModeStimulus && def->name == anomalyName)) {
        return;
    }
    for (const auto& signal : signals_) {
        if (signal->groupName == def->insertBefore || signal->name == def->insertBefore) {
            AddDecodedSignal(signal.get(), def, numSamples, def->color, Radix::Hex, true);
            return;
        }
    }
}

CSignal* CSignalList::AddSignal(const CSignal* before, const std::shared_ptr<const CSignalDef>& def,
                                std::uint32_t numSamples, std::int32_t first, std::int32_t last,
                                std::uint32_t color, std::int32_t radix, bool showValue) {
    if (auto decoded = std::dynamic_pointer_cast<const CDecodedSignalDef>(def)) {
        return AddDecodedSignal(before, decoded, numSamples, color, radix, showValue);
    }
    if (const auto* bus = dynamic_cast<const CBusSignalDef*>(def.get())) {
        return AddBusSignal(before, *bus, numSamples, first, last, color, radix, showValue);
    }
    return nullptr;
}

CSignal* CSignalList::AddBusSignal(const CSignal* before, const CBusSignalDef& def,
                                   std::uint32_t numSamples, std::int32_t first, std::int32_t last,
                                   std::uint32_t color, std::int32_t radix, bool showValue) {
    first = std::max(first, 0);
    last = std::min(last, def.Width() - 1);
    Signals added;
    for (std::int32_t position = first; position <= last; ++position) {
        auto signal = MakeSignal(def, position);
        GiveSamples(*signal, numSamples, mode);
        signal->color = color;
        signal->radix = radix;
        signal->showValue = showValue;
        added.push_back(std::move(signal));
    }
    return InsertGroup(before, std::move(added));
}

CSignal* CSignalList::InsertGroup(const CSignal* before, Signals added,
                                  const std::shared_ptr<const CDecodedSignalDef>& decoded) {
    if (added.empty()) {
        return nullptr;
    }
    CSignal* const result = added.front().get();
    const bool isGroup = added.size() > 1;
    if (isGroup) {
        MarkAsGroup(added);
    }
    Insert(before, std::move(added));
    result->decoded = decoded;
    if (isGroup) {
        BuildGroup(result);
    }
    return result;
}

CSignal* CSignalList::AddDecodedSignal(const CSignal* before,
                                       const std::shared_ptr<const CDecodedSignalDef>& def,
                                       std::uint32_t numSamples, std::uint32_t color,
                                       std::int32_t radix, bool showValue) {
    Signals added;
    for (const int position : def->Positions()) {
        const auto bus = tables_->FindBusDefByDataIndex(position);
        if (!bus) {
            continue;
        }
        // The index counts from the definition's first bit, even on a bit-reversed bus.
        auto signal = MakeSignal(*bus, position - bus->dataIndex);
        signal->bitIndex = position - bus->dataIndex;
        signal->dataIndex = position;
        GiveSamples(*signal, numSamples, mode);
        signal->color = color;
        signal->radix = radix;
        signal->showValue = showValue;
        added.push_back(std::move(signal));
    }
    CSignal* const result = InsertGroup(before, std::move(added), def);
    if (result == nullptr) {
        return nullptr;
    }
    if (result->grouped) {
        result->groupAttribute |= GroupAttribute::NoUngroup;
        result->groupName = def->name;
    } else {
        result->name = def->name;
    }
    Decode(*result);
    return result;
}

void CSignalList::BuildGroup(CSignal* first) {
    const std::size_t index = IndexOf(first);
    if (index < signals_.size()) {
        BuildGroupAt(index);
    }
}

void CSignalList::BuildGroupAt(std::size_t first) {
    const auto members = Members(first);
    CSignal& start = *members.front();
    const std::uint32_t numSamples = members.back()->Room();
    const bool masked = std::all_of(members.begin(), members.end(),
                                    [](const auto& member) { return !member->mask.empty(); });
    start.groupWidth = static_cast<std::uint32_t>(members.size());
    start.groupName = GroupNameOf(members);
    start.groupData.Reset(start.RowBytes() * numSamples);
    start.groupMask.Reset(masked ? start.groupData.size() : 0);
    PackGroupRows(members, 0, WordsFor(numSamples));
    times_.Forget();
}

void CSignalList::RebuildAfterRead() {
    const std::size_t most = std::max(maxFileMembers, signals_.size());
    std::size_t members = 0;
    for (std::size_t i = 0; i < signals_.size(); ++i) {
        if (!signals_[i]->IsGroupStart()) {
            continue;
        }
        members += Members(i).size();
        if (members > most) {
            break;
        }
        BuildGroupAt(i);
    }
    for (const auto& signal : signals_) {
        if (signal->decoded) {
            (signal->grouped ? signal->groupName : signal->name) = signal->decoded->name;
            Decode(*signal);
        }
    }
}

} // namespace busquill
