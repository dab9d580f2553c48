/// The values of a signal along the samples that the waveforms draw.
#pragma once

#include "link/board_identity.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace busquill {

class CSignal;
class CTesselDoc;

/// The samples of a frame, from the one at the left edge: those of `count` rows.
class BandSamples {
public:
    BandSamples(CTesselDoc& ofDocument, bool zoom, std::int64_t row, std::int64_t howMany)
        : document(ofDocument), isZoom(zoom), firstRow(row), count(howMany) {}

    CTesselDoc& document;
    const bool isZoom;
    const std::int64_t firstRow;
    const std::int64_t count;

    [[nodiscard]] std::int64_t SampleOf(std::int64_t k) const;
    [[nodiscard]] std::int64_t RowCount() const;
    /// Whether each sample is the one behind its predecessor.
    [[nodiscard]] bool AreContiguous() const;
    /// The first that has not come yet.
    [[nodiscard]] std::optional<std::int64_t> FirstMissing() const;
    /// What decoded values tell of besides their own bits, for each sample.
    [[nodiscard]] std::span<const std::uint16_t> Surroundings() const;

private:
    mutable std::vector<std::uint16_t> surroundings_; // made when first asked for
};

/// What changes from sample to sample, and where. Samples count from the left edge. Both outlive
/// it.
class BandValues {
public:
    enum class Kind {
        Bit,   // of a single line
        Bytes, // of a bus
        Label, // of a decoded signal that has no more than that
        Text,  // of a decoded signal: it tells of other bits too
        Each,  // every sample is another
    };
    /// How the runs of a signal are told apart.
    [[nodiscard]] static Kind KindOf(const CSignal& signal);

    BandValues(const BandSamples& samples, const BoardTraits& board, const CSignal& signal,
               Kind kind)
        : samples_(samples), board_(board), signal_(signal), kind_(kind),
          contiguous_(samples.AreContiguous()) {}

    [[nodiscard]] bool Bit(std::int64_t k) const;
    /// The first sample behind `k` that differs from its predecessor; the count when there is none.
    [[nodiscard]] std::int64_t NextChange(std::int64_t k) const;
    /// The last such sample behind `k` up to `last`; `k` when there is none.
    [[nodiscard]] std::int64_t LastChange(std::int64_t k, std::int64_t last) const;

private:
    /// Whether a sample differs from its predecessor.
    [[nodiscard]] bool Changes(std::int64_t k) const;
    /// The first sample behind `k` that may differ from its predecessor, a word at a time; nothing
    /// where that cannot be told.
    [[nodiscard]] std::optional<std::int64_t> NextCandidate(std::int64_t k) const;

    const BandSamples& samples_;
    const BoardTraits& board_;
    const CSignal& signal_;
    const Kind kind_;
    const bool contiguous_;
};

/// The text of a value.
[[nodiscard]] std::string BandText(const BandSamples& samples, const BoardTraits& board,
                                   const CSignal& signal, std::int64_t sample);

} // namespace busquill
