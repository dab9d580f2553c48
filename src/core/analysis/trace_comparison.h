#pragma once

#include "analysis/compared_signals.h"
#include "capture/sample_rows.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace busquill {

/// Samples of two captures that belong together; null for a sample that a capture lacks.
struct SamplePair {
    std::int64_t number = 0; // in the first capture that has the sample
    const SampleRecord* a = nullptr;
    const SampleRecord* b = nullptr;
};

/// Pairs the samples of two captures, which are handed over in pieces, as they are needed.
class SamplePairs {
public:
    /// Samples belong together if they have the same distance from these numbers.
    SamplePairs(std::int64_t originA, std::int64_t originB) : a_{originA}, b_{originB} {}

    [[nodiscard]] bool NeedsA() const noexcept { return a_.Needs(); }
    [[nodiscard]] bool NeedsB() const noexcept { return b_.Needs(); }
    /// The next piece, which must live until the one after it; null at the end.
    void GiveA(const SampleRows* rows) noexcept { a_.Give(rows); }
    void GiveB(const SampleRows* rows) noexcept { b_.Give(rows); }
    /// The next pair when nothing is needed; nothing at the end of both captures.
    [[nodiscard]] std::optional<SamplePair> Next();

private:
    struct Side {
        std::int64_t origin = 0;
        const SampleRows* rows = nullptr;
        std::size_t row = 0;
        bool ended = false;

        [[nodiscard]] bool Needs() const noexcept {
            return !ended && (rows == nullptr || row == rows->Size());
        }
        void Give(const SampleRows* next) noexcept {
            rows = next;
            row = 0;
            ended = next == nullptr;
        }
        [[nodiscard]] std::int64_t Number() const { return rows->numbers[row]; }
        [[nodiscard]] std::int64_t Key() const { return Number() - origin; }
    };

    Side a_;
    Side b_;
};

/// Where two captures differ: by signals, pair by pair.
class TraceComparison {
public:
    struct Summary {
        std::int64_t samples = 0; // pairs, including incomplete ones
        std::int64_t differing = 0;
        std::int64_t onlyA = 0;
        std::int64_t onlyB = 0;
        std::optional<std::int64_t> first;
        std::map<std::size_t, std::int64_t> signals; // how often each differs, by index
    };
    struct Difference {
        std::int64_t number;
        std::string signal;
        std::string a;
        std::string b;
    };

    /// The tables outlive the comparison.
    explicit TraceComparison(const SignalTables& tables) : tables_(tables), signals_(tables) {}

    /// Leaves a signal out. Returns an error message, empty on success.
    [[nodiscard]] std::string Ignore(const std::string& name);
    /// Counts a pair in the summary.
    void Count(const SamplePair& pair, Summary& summary);
    /// The differences of a pair, one for each signal, or one for a sample that is missing. They
    /// hold until the next call.
    [[nodiscard]] const std::vector<Difference>& DifferencesOf(const SamplePair& pair);
    /// The name of a signal by its index.
    [[nodiscard]] const std::string& Name(std::size_t place) const {
        return signals_.All()[place].name;
    }

private:
    [[nodiscard]] bool IsDifferent(const SamplePair& pair) const;

    const SignalTables& tables_;
    ComparedSignals signals_;
    std::vector<std::size_t> places_; // of the signals that differ
    std::vector<Difference> differences_;
};

} // namespace busquill
