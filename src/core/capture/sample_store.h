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

constexpr std::uint32_t zoomSampleCount = 511; // 255 before the trigger, 256 from it on
constexpr std::uint32_t zoomSamplesBefore = 255;
constexpr std::int64_t zoomFirstNumber = -std::int64_t{zoomSamplesBefore};
constexpr std::uint32_t blockSamples = 32;
/// The board counts samples in 24 bits on each side of the trigger, so files cannot hold more.
constexpr std::int64_t maxSamples = std::int64_t{2} << 24;

/// Samples on the two sides of the trigger.
struct SampleCounts {
    std::int32_t before = 0;
    std::int32_t after = 0;
};
/// The counts for a file's range of sample numbers; nothing when no capture can have that range.
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
    /// The records where they lie; empty when there are none. They are valid until the store is
    /// filled again or freed; those that have arrived do not change. Only the main thread frees a
    /// store or begins a capture, which frees it too, so the main thread may keep the span in
    /// between.
    [[nodiscard]] std::span<const SampleRecord> GetData(bool zoom) const;
    /// Copies the samples from `first` on, up to the first that has not arrived, and returns their
    /// number.
    [[nodiscard]] std::size_t CopySamples(std::uint32_t first, std::span<SampleRecord> into) const;
    /// A copy of all records, those that have not arrived as zeros.
    [[nodiscard]] std::vector<SampleRecord> AllSamples(bool zoom) const;
    /// Whether the sample's block has arrived.
    [[nodiscard]] bool HasSample(std::uint32_t index) const;
    /// The first sample of the first block that has not arrived; nothing when all have.
    [[nodiscard]] std::optional<std::uint32_t> FirstMissing() const;
    [[nodiscard]] bool HasZoom() const;
    /// Number of Power Zoom samples that have arrived, counted from the first.
    [[nodiscard]] std::uint32_t ZoomArrived() const;
    [[nodiscard]] std::optional<SampleRecord> GetZoomSample(std::uint32_t index) const;
    [[nodiscard]] std::int32_t SamplesBefore() const;
    [[nodiscard]] std::int32_t SamplesAfter() const;
    /// The number of sample index 0, for file data.
    [[nodiscard]] std::int32_t FirstNumber() const;

    // Filling from the board.

    /// Makes room for a capture with `counts` samples around its trigger.
    void AllocateForUpload(const SampleCounts& counts);
    /// Stores the samples of a block, and returns the stored samples. A block that has already
    /// arrived is not overwritten, since it may be being read.
    std::span<const SampleRecord> PutBlock(std::uint32_t first,
                                           std::span<const SampleRecord> records);
    /// The same for the Power Zoom samples that follow those that have arrived.
    std::span<const SampleRecord> PutZoomPart(std::span<const SampleRecord> records);
    /// Forgets the Power Zoom samples and the trigger; the samples can be read until the next
    /// upload.
    void ForgetTrigger();

    // Filling from a file.

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
