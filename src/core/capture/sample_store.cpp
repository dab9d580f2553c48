#include "capture/sample_store.h"

#include <algorithm>

namespace busquill {

std::optional<SampleCounts> CountsOfRange(std::int64_t first, std::int64_t last) noexcept {
    const std::int64_t count = last - first + 1;
    if (count > maxSamples) {
        return std::nullopt;
    }
    if (first < 0 && last < 0) {
        return SampleCounts{static_cast<std::int32_t>(count), 0};
    }
    if (first < 1 || last < 1) {
        return SampleCounts{static_cast<std::int32_t>(-first), static_cast<std::int32_t>(last)};
    }
    return SampleCounts{0, static_cast<std::int32_t>(count)};
}

// Queries.

std::uint32_t CSampleStore::GetCount(bool zoom) const {
    const MutexLock lock(storeLock_);
    return zoom ? zoomSampleCount : static_cast<std::uint32_t>(samples_.size());
}

std::optional<SampleRecord> CSampleStore::GetSample(std::uint32_t index) const {
    const MutexLock lock(storeLock_);
    return index < samples_.size() ? std::optional(samples_[index]) : std::nullopt;
}

std::span<const SampleRecord> CSampleStore::GetData(bool zoom) const {
    const MutexLock lock(storeLock_);
    return zoom ? std::span<const SampleRecord>(zoomSamples_) : samples_;
}

std::size_t CSampleStore::CopySamples(std::uint32_t first, std::span<SampleRecord> into) const {
    const MutexLock lock(storeLock_);
    std::size_t count = 0;
    while (count < into.size() && HasBlockOf(first + count)) {
        into[count] = samples_[first + count];
        ++count;
    }
    return count;
}

std::vector<SampleRecord> CSampleStore::AllSamples(bool zoom) const {
    const MutexLock lock(storeLock_);
    return zoom ? zoomSamples_ : std::vector<SampleRecord>(samples_.begin(), samples_.end());
}

bool CSampleStore::HasBlockOf(std::size_t index) const {
    return index < samples_.size() && uploadedBlocks_.Test(index / blockSamples);
}

bool CSampleStore::HasSample(std::uint32_t index) const {
    const MutexLock lock(storeLock_);
    return HasBlockOf(index);
}

std::optional<std::uint32_t> CSampleStore::FirstMissing() const {
    const MutexLock lock(storeLock_);
    const std::size_t block = uploadedBlocks_.FirstUnset();
    return block < uploadedBlocks_.Size()
               ? std::optional(static_cast<std::uint32_t>(block * blockSamples))
               : std::nullopt;
}

bool CSampleStore::HasZoom() const {
    return ZoomArrived() == zoomSampleCount;
}

std::uint32_t CSampleStore::ZoomArrived() const {
    const MutexLock lock(storeLock_);
    return zoomArrived_;
}

std::optional<SampleRecord> CSampleStore::GetZoomSample(std::uint32_t index) const {
    const MutexLock lock(storeLock_);
    const bool held = zoomArrived_ == zoomSampleCount && index < zoomSampleCount;
    return held ? std::optional(zoomSamples_[index]) : std::nullopt;
}

std::int32_t CSampleStore::SamplesBefore() const {
    const MutexLock lock(storeLock_);
    return samplesBefore_;
}

std::int32_t CSampleStore::SamplesAfter() const {
    const MutexLock lock(storeLock_);
    return samplesAfter_;
}

std::int32_t CSampleStore::FirstNumber() const {
    const MutexLock lock(storeLock_);
    return firstNumber_;
}

// Filling the store.

void CSampleStore::Allocate(std::size_t count) {
    samples_.Reset(count);
    uploadedBlocks_.Reset((count + blockSamples - 1) / blockSamples);
}

void CSampleStore::AllocateForUpload(const SampleCounts& counts) {
    const MutexLock lock(storeLock_);
    samplesBefore_ = counts.before;
    samplesAfter_ = counts.after;
    Allocate(static_cast<std::size_t>(counts.before) + static_cast<std::size_t>(counts.after) + 1);
}

std::span<const SampleRecord> CSampleStore::PutBlock(std::uint32_t first,
                                                     std::span<const SampleRecord> records) {
    const MutexLock lock(storeLock_);
    if (first >= samples_.size()) {
        return {};
    }
    const auto place =
        std::span(samples_).subspan(first, std::min(records.size(), samples_.size() - first));
    if (!HasBlockOf(first)) {
        std::copy_n(records.begin(), place.size(), place.begin());
        uploadedBlocks_.Set(first / blockSamples);
    }
    return place;
}

std::span<const SampleRecord> CSampleStore::PutZoomPart(std::span<const SampleRecord> records) {
    const MutexLock lock(storeLock_);
    const auto place =
        std::span(zoomSamples_)
            .subspan(zoomArrived_,
                     std::min<std::size_t>(records.size(), zoomSampleCount - zoomArrived_));
    std::copy_n(records.begin(), place.size(), place.begin());
    zoomArrived_ += static_cast<std::uint32_t>(place.size());
    return place;
}

void CSampleStore::ForgetTrigger() {
    const MutexLock lock(storeLock_);
    zoomArrived_ = 0;
    samplesBefore_ = 0;
    samplesAfter_ = 0;
}

bool CSampleStore::AllocateForFile(std::int64_t first, std::int64_t last) {
    const MutexLock lock(storeLock_);
    Allocate(0); // Power Zoom samples may have arrived before
    const auto counts = CountsOfRange(first, last);
    if (!counts) {
        return false;
    }
    samplesBefore_ = counts->before;
    samplesAfter_ = counts->after;
    firstNumber_ = static_cast<std::int32_t>(first);
    Allocate(static_cast<std::size_t>(std::max<std::int64_t>(last - first + 1, 0)));
    return true;
}

void CSampleStore::PutSample(std::uint32_t index, const SampleRecord& record) {
    const MutexLock lock(storeLock_);
    if (index < samples_.size()) {
        samples_[index] = record;
        uploadedBlocks_.Set(index / blockSamples);
    }
}

void CSampleStore::ResetZoom() {
    const MutexLock lock(storeLock_);
    zoomArrived_ = zoomSampleCount;
    std::fill(zoomSamples_.begin(), zoomSamples_.end(), SampleRecord());
}

void CSampleStore::PutZoomSample(std::uint32_t index, const SampleRecord& record) {
    const MutexLock lock(storeLock_);
    if (zoomArrived_ == zoomSampleCount && index < zoomSampleCount) {
        zoomSamples_[index] = record;
    }
}

void CSampleStore::FreeSamples() {
    const MutexLock lock(storeLock_);
    Allocate(0);
    zoomArrived_ = 0;
}

} // namespace busquill
