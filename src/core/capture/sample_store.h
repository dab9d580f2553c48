#pragma once

#include "platform/bits.h"
#include "platform/mutex.h"
#include "platform/zeroed_array.h"
#include "signals/signal.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace busquill {

constexpr std::uint32_t zoomSampleCount = 511; // 255 before the trigger, then 256 from it on
constexpr std::uint32_t zoomSamplesBefore = 255;
constexpr std::uint32_t blockSamples = 32;
/// The board counts samples in 24 bits on each side of the trigger; no file can hold more.
constexpr std::int64_t maxSamples = std::int64_t{2} << 24;

/// Samples on the two sides of the trigger.
struct SampleCounts {
    std::int32_t before = 0;
    std::int32_t after = 0;
};
/// As a file's range of sample numbers tells them; nothing when no capture has so many samples.
[[nodiscard]] std::optional<SampleCounts> CountsOfRange(std::int64_t first,
                                                        std::int64_t last) noexcept;
/// The index at which the trigger is marked.
[[nodiscard]] constexpr std::int64_t TriggerIndex(const SampleCounts& counts) noexcept {
    const std::int64_t last = std::int64_t{counts.before} - 1;
    return counts.after > 0 ? counts.before : last > 0 ? last : 0;
}

/// The samples of a capture, from a file or from the board, and which of them have arrived: blocks
/// of 32 samples, and the two parts of the Power Zoom samples. Any thread.
class CSampleStore {
public:
    CSampleStore() = default;
    CSampleStore(const CSampleStore&) = delete;
    CSampleStore& operator=(const CSampleStore&) = delete;

    [[nodiscard]] std::uint32_t GetCount(bool zoom) const;
    /// The record at an index, arrived or not; nothing past the end.
    [[nodiscard]] std::optional<SampleRecord> GetSample(std::uint32_t index) const;
    /// The records where they lie; empty when there are none. They stay there until the store is
    /// filled anew or freed; those that have arrived do not change. The main thread alone frees a
    /// store or begins a capture that does, so it may hold on to them in between.
    [[nodiscard]] std::span<const SampleRecord> GetData(bool zoom) const;
    /// Copies the samples from an index on, as far as they have arrived, and returns their number.
    [[nodiscard]] std::size_t CopySamples(std::uint32_t first, std::span<SampleRecord> into) const;
    /// A copy of all records, those that have not arrived as zeros.
    [[nodiscard]] std::vector<SampleRecord> AllSamples(bool zoom) const;
    /// Whether the sample's block has arrived.
    [[nodiscard]] bool HasSample(std::uint32_t index) const;
    /// The first sample of the first block that has not arrived; nothing when all have.
    [[nodiscard]] std::optional<std::uint32_t> FirstMissing() const;
    [[nodiscard]] bool HasZoom() const;
    /// How many Power Zoom samples have arrived, from the first on.
    [[nodiscard]] std::uint32_t ZoomArrived() const;
    [[nodiscard]] std::optional<SampleRecord> GetZoomSample(std::uint32_t index) const;
    [[nodiscard]] std::int32_t SamplesBefore() const;
    [[nodiscard]] std::int32_t SamplesAfter() const;
    /// The number of sample index 0, for file data.
    [[nodiscard]] std::int32_t FirstNumber() const;

    // From the board.

    /// Makes room for a capture with so many samples around its trigger sample.
    void AllocateForUpload(const SampleCounts& counts);
    /// Takes the samples of a block, and returns them where they lie. A block that has arrived
    /// before stays as it is, since somebody may be reading it.
    std::span<const SampleRecord> PutBlock(std::uint32_t first,
                                           std::span<const SampleRecord> records);
    /// Takes the Power Zoom samples that follow those that have arrived; the same otherwise.
    std::span<const SampleRecord> PutZoomPart(std::span<const SampleRecord> records);
    /// Forgets the Power Zoom samples and where the trigger lies; the samples stay to be read until
    /// the next upload.
    void ForgetTrigger();

    // From a file.

    /// Sizes the store for a file's range of sample numbers. False when the range is larger than
    /// any capture; the store is then empty.
    [[nodiscard]] bool AllocateForFile(std::int64_t first, std::int64_t last);
    void PutSample(std::uint32_t index, const SampleRecord& record);
    void ResetZoom();
    void PutZoomSample(std::uint32_t index, const SampleRecord& record);

    void FreeSamples();

private:
    void Allocate(std::size_t count) BUSQUILL_REQUIRES(storeLock_);
    [[nodiscard]] bool HasBlockOf(std::size_t index) const BUSQUILL_REQUIRES(storeLock_);

    mutable Mutex storeLock_;
    ZeroedArray<SampleRecord> samples_ BUSQUILL_GUARDED_BY(storeLock_);
    Bits uploadedBlocks_ BUSQUILL_GUARDED_BY(storeLock_);
    std::int32_t samplesBefore_ BUSQUILL_GUARDED_BY(storeLock_) = 0;
    std::int32_t samplesAfter_ BUSQUILL_GUARDED_BY(storeLock_) = 0;
    std::int32_t firstNumber_ BUSQUILL_GUARDED_BY(storeLock_) = 0;
    std::vector<SampleRecord>
        zoomSamples_ BUSQUILL_GUARDED_BY(storeLock_) = std::vector<SampleRecord>(zoomSampleCount);
    std::uint32_t zoomArrived_ BUSQUILL_GUARDED_BY(storeLock_) = 0;
};

} // namespace busquill
