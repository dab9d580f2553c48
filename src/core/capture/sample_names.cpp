#include "capture/sample_names.h"

#include "capture/signal_bits.h"
#include "platform/near_names.h"
#include "platform/text.h"
#include "signals/signal_list.h"

#include <algorithm>
#include <utility>

namespace busquill {

namespace {

constexpr std::string_view sampleName = "sample";
constexpr std::string_view sinceTriggerName = "ACCUM";

/// What the listing computes from other samples does not stand for bits of its own.
bool IsComputed(const NamedSignal& signal) {
    return signal.decoded && (signal.decoded->decodeKind == DecodeKind::Delta ||
                              signal.decoded->decodeKind == DecodeKind::Accum ||
                              signal.decoded->decodeKind == DecodeKind::Sample);
}

bool IsTime(const NamedSignal& signal) {
    return signal.decoded && signal.decoded->decodeKind == DecodeKind::Time;
}

} // namespace

/// A signal by its name, or some bits of one that is not a bus in the tables.
std::optional<NamedSignal> SampleNames::FindWithSlice(std::string_view name) const {
    if (auto signal = FindSignal(name, tables_, lists_)) {
        return IsComputed(*signal) ? std::nullopt : std::move(signal);
    }
    const std::size_t bracket = name.find_last_of('[');
    if (bracket == std::string_view::npos) {
        return std::nullopt;
    }
    auto signal = FindSignal(name.substr(0, bracket), tables_, lists_);
    const std::string slice(name.substr(bracket));
    const std::size_t colon = slice.find(':');
    const auto a = static_cast<std::size_t>(ParseInt(slice.substr(1)));
    const auto b = colon == std::string::npos
                       ? a
                       : static_cast<std::size_t>(ParseInt(slice.substr(colon + 1)));
    const auto [low, high] = std::minmax(a, b);
    if (!signal || IsTime(*signal) || IsComputed(*signal) || high >= signal->positions.size()) {
        return std::nullopt;
    }
    signal->name += slice;
    signal->positions = {signal->positions.begin() + static_cast<std::ptrdiff_t>(low),
                         signal->positions.begin() + static_cast<std::ptrdiff_t>(high) + 1};
    return signal;
}

bool SampleNames::HasTimeSinceTrigger() const {
    return tables_.decodedSignals.FindByName(sinceTriggerName) != nullptr;
}

std::optional<ExpressionName> SampleNames::Find(std::string_view name) {
    ExpressionName found;
    if (EqualIgnoringCase(name, sampleName)) {
        found.name = sampleName;
        return found;
    }
    if (EqualIgnoringCase(name, sinceTriggerName) && HasTimeSinceTrigger()) {
        found.name = sinceTriggerName;
        found.values = ExpressionName::Values::Time;
        found.id = noSignal;
        return found;
    }
    auto signal = FindWithSlice(name);
    if (!signal) {
        return std::nullopt;
    }
    found.name = signal->name;
    found.width = signal->positions.size();
    found.id = found_.size();
    if (IsTime(*signal)) {
        found.values = ExpressionName::Values::Time;
    } else {
        using Edges = ExpressionName::Edges;
        found.values = ExpressionName::Values::Bits;
        found.edges = IsShownInPhase(*signal, Board()) ? Edges::None
                      : found.width == 1               ? Edges::All
                                                       : Edges::Changes;
        const bool showsLabels = signal->decoded && signal->decoded->ReadsAsLabel();
        // Up to three lines look the same in both.
        found.isHex = !showsLabels && found.width > 3;
        if (signal->decoded && signal->decoded->Positions().size() == found.width) {
            found.labels = LabelsOf(*signal->decoded);
        }
    }
    found_.push_back(*std::move(signal));
    return found;
}

std::vector<std::string> SampleNames::All() const {
    std::vector<std::string> names;
    for (const NamedSignal& signal : AllSignals(tables_, lists_)) {
        if (!IsComputed(signal)) {
            names.push_back(signal.name);
        }
    }
    if (HasTimeSinceTrigger()) {
        names.emplace_back(sinceTriggerName);
    }
    names.emplace_back(sampleName);
    return names;
}

std::string SampleNames::BelongsElsewhere(std::string_view name) const {
    if (std::ranges::any_of(transactionFields,
                            [&](auto field) { return EqualIgnoringCase(field, name); })) {
        return Printf("\"%s\" belongs to transactions; samples have signals, such as %s",
                      std::string(name).c_str(), ListNearest("", All(), 140).c_str());
    }
    if (const std::size_t bracket = name.find_last_of('['); bracket != std::string_view::npos) {
        if (const auto signal = FindSignal(name.substr(0, bracket), tables_, lists_)) {
            return Printf("%s has the bits %zu to 0", signal->name.c_str(),
                          signal->positions.size() - 1);
        }
    }
    return {};
}

} // namespace busquill
