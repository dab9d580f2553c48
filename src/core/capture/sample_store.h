#pragma once

#include "signals/signal.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace busquill {

constexpr std::uint32_t zoomSampleCount = 511; // 255 before the trigger, then 256 from it on
constexpr std::uint32_t blockSamples = 32;
/// The board counts samples in 24 bits on each side of the trigger; no file can hold more.
constexpr std::int64_t maxSamples = std::int64_t{2} << 24;

/// The samples of a capture. Main thread.
class CSampleStore {
public:
    /// Sizes the store for a file's range of sample numbers. False when the range is larger than
    /// any capture; the store is then empty.
    [[nodiscard]] bool AllocateForFile(std::int64_t first, std::int64_t last);
    void PutSample(std::uint32_t index, const SampleRecord& record);
    void ResetZoom();
    void PutZoomSample(std::uint32_t index, const SampleRecord& record);
    void FreeSamples();

    [[nodiscard]] std::uint32_t GetCount(bool zoom) const noexcept;
    /// The records; empty when there are none.
    [[nodiscard]] std::span<const SampleRecord> GetData(bool zoom) const noexcept;
    [[nodiscard]] bool HasZoom() const noexcept { return zoomPhase_ == 3; }
    [[nodiscard]] std::optional<SampleRecord> GetZoomSample(std::uint32_t index) const;
    [[nodiscard]] std::int32_t SamplesBefore() const noexcept { return samplesBefore_; }
    [[nodiscard]] std::int32_t SamplesAfter() const noexcept { return samplesAfter_; }
    /// The number of sample index 0, for file data.
    [[nodiscard]] std::int32_t FirstNumber() const noexcept { return firstNumber_; }

private:
    std::vector<SampleRecord> samples_;
    std::vector<std::uint32_t> uploadedBlocks_; // one bit for each block
    std::int32_t samplesBefore_ = 0;
    std::int32_t samplesAfter_ = 0;
    std::int32_t firstNumber_ = 0;
    std::vector<SampleRecord> zoomSamples_ = std::vector<SampleRecord>(zoomSampleCount);
    std::int32_t zoomPhase_ = 0; // 3: complete
};

} // namespace busquill
