#include "ui/display/band_values.h"

#include "capture/trace_document.h"
#include "signals/signal_changes.h"
#include "signals/value_text.h"

#include <algorithm>
#include <cstring>

namespace busquill {

namespace {

bool SameBytes(const CSignal& signal, std::size_t a, std::size_t b) {
    const auto rowA = signal.GroupRow(a);
    const auto rowB = signal.GroupRow(b);
    return std::equal(rowA.begin(), rowA.end(), rowB.begin(), rowB.end());
}

/// Two values of a definition may have the same label.
bool SameLabel(const CSignal& signal, std::size_t a, std::size_t b) {
    const char* const labelA = signal.Label(a);
    const char* const labelB = signal.Label(b);
    return labelA == labelB ||
           (labelA != nullptr && labelB != nullptr && std::strcmp(labelA, labelB) == 0);
}

} // namespace

std::int64_t BandSamples::SampleOf(std::int64_t k) const {
    return document.RowToSample(firstRow + k, isZoom);
}

std::int64_t BandSamples::RowCount() const {
    return document.RowCount(isZoom);
}

bool BandSamples::AreContiguous() const {
    return isZoom || !document.IsFiltered();
}

std::optional<std::int64_t> BandSamples::FirstMissing() const {
    for (std::int64_t k = 0; k < count; ++k) {
        const std::int64_t sample = SampleOf(k);
        if (!document.IsValidSample(sample, isZoom)) {
            return sample;
        }
    }
    return std::nullopt;
}

std::span<const std::uint16_t> BandSamples::Surroundings() const {
    if (surroundings_.empty()) {
        surroundings_.reserve(static_cast<std::size_t>(count));
        for (std::int64_t k = 0; k < count; ++k) {
            const auto record = document.GetSample(SampleOf(k), isZoom);
            surroundings_.push_back(record ? SurroundingsOf(*record) : std::uint16_t{0});
        }
    }
    return surroundings_;
}

BandValues::Kind BandValues::KindOf(const CSignal& signal) {
    if (signal.decoded) {
        switch (signal.decoded->decodeKind) {
        case DecodeKind::Label:
        case DecodeKind::Delta:
        case DecodeKind::Accum:
            return Kind::Label;
        case DecodeKind::Sample:
            return Kind::Each;
        default:
            return Kind::Text;
        }
    }
    return signal.grouped ? Kind::Bytes : Kind::Bit;
}

bool BandValues::Bit(std::int64_t k) const {
    return signal_.Bit(static_cast<std::size_t>(samples_.SampleOf(k)));
}

bool BandValues::Changes(std::int64_t k) const {
    const auto sample = static_cast<std::size_t>(samples_.SampleOf(k));
    const auto before = static_cast<std::size_t>(samples_.SampleOf(k - 1));
    switch (kind_) {
    case Kind::Bit:
        return signal_.Bit(sample) != signal_.Bit(before);
    case Kind::Bytes:
        return !SameBytes(signal_, sample, before);
    case Kind::Label:
        return !SameLabel(signal_, sample, before);
    case Kind::Text: {
        if (!SameLabel(signal_, sample, before) || !SameBytes(signal_, sample, before)) {
            return true;
        }
        const auto surroundings = samples_.Surroundings();
        const auto at = static_cast<std::size_t>(k);
        return surroundings[at] != surroundings[at - 1] &&
               BandText(samples_, board_, signal_, static_cast<std::int64_t>(sample)) !=
                   BandText(samples_, board_, signal_, static_cast<std::int64_t>(before));
    }
    default:
        return true;
    }
}

std::optional<std::int64_t> BandValues::NextCandidate(std::int64_t k) const {
    if (!contiguous_ || kind_ == Kind::Each || samples_.count == 0) {
        return std::nullopt;
    }
    const auto first = static_cast<std::size_t>(samples_.SampleOf(0));
    const std::size_t from = first + static_cast<std::size_t>(k);
    const std::size_t end = first + static_cast<std::size_t>(samples_.count);
    std::size_t next = end;
    if (kind_ == Kind::Bit) {
        next = NextBitChange(signal_.data, from, end);
    }
    if (kind_ == Kind::Bytes || kind_ == Kind::Text) {
        next = NextRowChange(signal_.groupData, signal_.RowBytes(), from, end);
    }
    if (kind_ == Kind::Label || kind_ == Kind::Text) {
        next = NextRowChange(signal_.labelTable, 1, from, next);
    }
    if (kind_ == Kind::Text) {
        const auto bytes = std::as_bytes(samples_.Surroundings());
        const std::span around(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        next = first + NextRowChange(around, sizeof(std::uint16_t), from - first, next - first);
    }
    return static_cast<std::int64_t>(next - first);
}

std::int64_t BandValues::NextChange(std::int64_t k) const {
    while (const auto candidate = NextCandidate(k)) {
        if (*candidate >= samples_.count || Changes(*candidate)) {
            return *candidate;
        }
        k = *candidate;
    }
    for (++k; k < samples_.count; ++k) {
        if (Changes(k)) {
            return k;
        }
    }
    return samples_.count;
}

std::int64_t BandValues::LastChange(std::int64_t k, std::int64_t last) const {
    for (; last > k; --last) {
        if (Changes(last)) {
            return last;
        }
    }
    return k;
}

std::string BandText(const BandSamples& samples, const BoardTraits& board, const CSignal& signal,
                     std::int64_t sample) {
    const auto index = static_cast<std::size_t>(sample);
    if (!signal.decoded && !signal.grouped) {
        return signal.Bit(index) ? "1" : "0";
    }
    if (!signal.decoded) {
        const auto row = signal.GroupRow(index);
        return row.empty() ? ""
                           : FormatValue(row, signal.groupWidth, signal.radix, {}, samples.isZoom);
    }
    const char* const label = signal.Label(index);
    switch (signal.decoded->decodeKind) {
    case DecodeKind::Label:
        return label == nullptr ? "" : label;
    case DecodeKind::Delta:
    case DecodeKind::Accum:
        return {}; // computed in the listing only; their bits are not a value
    default:
        break;
    }
    const auto record = samples.document.GetSample(sample, samples.isZoom);
    return !record ? ""
                   : FormatDecodedValue(board, signal, sample,
                                        samples.document.FirstSampleNumber(samples.isZoom),
                                        *signal.decoded, label, *record, samples.isZoom);
}

} // namespace busquill
