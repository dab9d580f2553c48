#include "capture/sample_store.h"

#include <algorithm>

namespace busquill {

bool CSampleStore::AllocateForFile(std::int64_t first, std::int64_t last) {
    FreeSamples();
    const std::int64_t count = last - first + 1;
    if (count > maxSamples) {
        return false;
    }
    if (first < 0 && last < 0) {
        samplesBefore_ = static_cast<std::int32_t>(count);
        samplesAfter_ = 0;
    } else if (first < 1 || last < 1) {
        samplesBefore_ = static_cast<std::int32_t>(-first);
        samplesAfter_ = static_cast<std::int32_t>(last);
    } else {
        samplesBefore_ = 0;
        samplesAfter_ = static_cast<std::int32_t>(count);
    }
    firstNumber_ = static_cast<std::int32_t>(first);
    if (count < 1) {
        return true;
    }
    samples_.resize(static_cast<std::size_t>(count));
    uploadedBlocks_.assign(WordsFor(static_cast<std::uint32_t>((count - 1) / blockSamples + 1)), 0);
    return true;
}

void CSampleStore::PutSample(std::uint32_t index, const SampleRecord& record) {
    if (index >= samples_.size()) {
        return;
    }
    samples_[index] = record;
    const std::uint32_t block = index / blockSamples;
    uploadedBlocks_[block / 32] |= 1U << (block % 32);
}

void CSampleStore::ResetZoom() {
    zoomPhase_ = 3;
    std::fill(zoomSamples_.begin(), zoomSamples_.end(), SampleRecord());
}

void CSampleStore::PutZoomSample(std::uint32_t index, const SampleRecord& record) {
    if (HasZoom() && index < zoomSampleCount) {
        zoomSamples_[index] = record;
    }
}

void CSampleStore::FreeSamples() {
    samples_ = {};
    uploadedBlocks_ = {};
    zoomPhase_ = 0;
}

std::uint32_t CSampleStore::GetCount(bool zoom) const noexcept {
    return zoom ? zoomSampleCount : static_cast<std::uint32_t>(samples_.size());
}

std::span<const SampleRecord> CSampleStore::GetData(bool zoom) const noexcept {
    return zoom ? std::span<const SampleRecord>(zoomSamples_) : samples_;
}

std::optional<SampleRecord> CSampleStore::GetZoomSample(std::uint32_t index) const {
    return HasZoom() && index < zoomSampleCount ? std::optional(zoomSamples_[index]) : std::nullopt;
}

} // namespace busquill
