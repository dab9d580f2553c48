#include "analysis/trace_comparison.h"

#include "signals/signal_names.h"

namespace busquill {

std::optional<SamplePair> SamplePairs::Next() {
    if (a_.ended && b_.ended) {
        return std::nullopt;
    }
    const bool hasA = !a_.ended && (b_.ended || a_.Key() <= b_.Key());
    const bool hasB = !b_.ended && (a_.ended || b_.Key() <= a_.Key());
    const SamplePair pair{hasA ? a_.Number() : b_.Number(),
                          hasA ? &a_.rows->records[a_.row] : nullptr,
                          hasB ? &b_.rows->records[b_.row] : nullptr};
    a_.row += hasA ? 1 : 0;
    b_.row += hasB ? 1 : 0;
    return pair;
}

std::string TraceComparison::Ignore(const std::string& name) {
    const auto signal = FindSignal(name, tables_, {});
    if (!signal) {
        return UnknownSignal(name, tables_, {});
    }
    signals_.Ignore(signal->positions);
    return {};
}

bool TraceComparison::IsDifferent(const SamplePair& pair) const {
    return pair.a == nullptr || pair.b == nullptr || signals_.Differ(*pair.a, *pair.b);
}

void TraceComparison::Count(const SamplePair& pair, Summary& summary) {
    ++summary.samples;
    if (!IsDifferent(pair)) {
        return;
    }
    ++summary.differing;
    summary.first = summary.first.value_or(pair.number);
    if (pair.a == nullptr || pair.b == nullptr) {
        ++(pair.a != nullptr ? summary.onlyA : summary.onlyB);
        return;
    }
    signals_.Differing(*pair.a, *pair.b, places_);
    for (const std::size_t place : places_) {
        ++summary.signals[place];
    }
}

const std::vector<TraceComparison::Difference>&
TraceComparison::DifferencesOf(const SamplePair& pair) {
    differences_.clear();
    if (!IsDifferent(pair)) {
        return differences_;
    }
    if (pair.a == nullptr || pair.b == nullptr) {
        const bool inA = pair.a != nullptr;
        differences_.push_back(
            {pair.number, "(sample)", inA ? "there" : "missing", inA ? "missing" : "there"});
        return differences_;
    }
    signals_.Differing(*pair.a, *pair.b, places_);
    for (const std::size_t place : places_) {
        differences_.push_back({pair.number, Name(place), signals_.Text(place, *pair.a),
                                signals_.Text(place, *pair.b)});
    }
    return differences_;
}

} // namespace busquill
