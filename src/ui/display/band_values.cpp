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

/// Two values of a definition may bear the same label.
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

BandValues::Kind BandValues::KindOf(const CSignal& signal) {
    if (signal.decoded) {
        switch (signal.decoded->decodeKind) {
        case DecodeKind::Label:
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
    case Kind::Text:
        return !SameLabel(signal_, sample, before) || !SameBytes(signal_, sample, before) ||
               BandText(samples_, board_, signal_, static_cast<std::int64_t>(sample)) !=
                   BandText(samples_, board_, signal_, static_cast<std::int64_t>(before));
    default:
        return true;
    }
}

std::int64_t BandValues::NextChange(std::int64_t k) const {
    if (contiguous_ && samples_.count > 0 && (kind_ == Kind::Bit || kind_ == Kind::Bytes)) {
        const std::int64_t first = samples_.SampleOf(0);
        const auto from = static_cast<std::size_t>(first + k);
        const auto end = static_cast<std::size_t>(first + samples_.count);
        const std::size_t next =
            kind_ == Kind::Bit ? NextBitChange(signal_.data, from, end)
                               : NextRowChange(signal_.groupData, signal_.RowBytes(), from, end);
        return static_cast<std::int64_t>(next) - first;
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
    if (signal.decoded->decodeKind == DecodeKind::Label) {
        return label == nullptr ? "" : label;
    }
    const auto record = samples.document.GetSample(sample, samples.isZoom);
    return !record ? ""
                   : FormatDecodedValue(board, signal, sample,
                                        samples.document.FirstSampleNumber(samples.isZoom),
                                        *signal.decoded, label, *record, samples.isZoom);
}

} // namespace busquill
