/// The values of a signal in the samples that the waveforms draw.
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

/// The samples of a frame: those of `count` rows, from the one at the left edge. `k` counts them
/// from 0.
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
    /// Whether the samples have consecutive indexes.
    [[nodiscard]] bool AreContiguous() const;
    /// The first one that has not arrived yet.
    [[nodiscard]] std::optional<std::int64_t> FirstMissing() const;
    /// For each sample, the bits outside a decoded signal that its text may depend on.
    [[nodiscard]] std::span<const std::uint16_t> Surroundings() const;

private:
    mutable std::vector<std::uint16_t> surroundings_; // computed when first needed
};

/// Finds where a signal's value changes. `k` counts samples from the left edge. Samples and signal
/// outlive the object.
class BandValues {
public:
    enum class Kind {
        Bit,   // of a single line
        Bytes, // of a bus
        Label, // of a decoded signal without any other value
        Text,  // of a decoded signal whose text depends on other bits too
        Each,  // differs in every sample
    };
    /// By what the values of a signal are compared.
    [[nodiscard]] static Kind KindOf(const CSignal& signal);

    BandValues(const BandSamples& samples, const BoardTraits& board, const CSignal& signal,
               Kind kind)
        : samples_(samples), board_(board), signal_(signal), kind_(kind),
          contiguous_(samples.AreContiguous()) {}

    [[nodiscard]] bool Bit(std::int64_t k) const;
    /// The first sample after `k` that differs from its predecessor; the number of samples when
    /// there is none.
    [[nodiscard]] std::int64_t NextChange(std::int64_t k) const;
    /// The last such sample after `k`, up to and including `last`; `k` when there is none.
    [[nodiscard]] std::int64_t LastChange(std::int64_t k, std::int64_t last) const;

private:
    /// Whether a sample differs from its predecessor.
    [[nodiscard]] bool Changes(std::int64_t k) const;
    /// The first sample after `k` that may differ from its predecessor, found by comparing whole
    /// words; nothing if the samples have to be compared one by one.
    [[nodiscard]] std::optional<std::int64_t> NextCandidate(std::int64_t k) const;

    const BandSamples& samples_;
    const BoardTraits& board_;
    const CSignal& signal_;
    const Kind kind_;
    const bool contiguous_;
};

/// The text of the value in a sample of the document.
[[nodiscard]] std::string BandText(const BandSamples& samples, const BoardTraits& board,
                                   const CSignal& signal, std::int64_t sample);

} // namespace busquill
