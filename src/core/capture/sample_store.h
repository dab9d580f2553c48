#pragma once

#include "link/link_request.h"
#include "platform/mutex.h"
#include "platform/zeroed_array.h"
#include "signals/signal.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <thread>
#include <vector>

namespace busquill {

class CAnalyzerLink;
class Prompts;

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

/// Who wants to hear of samples that have arrived.
class BlockObserver {
public:
    virtual ~BlockObserver() = default;
    /// May be called on any thread, with the store locked: it must not call the store.
    virtual void AddBlock(std::uint32_t first, std::span<const SampleRecord> records,
                          bool zoom) = 0;
};

/// The samples of a capture: of a file, or of the board, from which they come in blocks, from the
/// trigger outward, one block in flight at a time.
///
///   Go --> StartCapture: monitor thread, a look at the board every 200 ms
///              |  buffer full, inactive, or StopCapture
///              v
///          BeginUpload --> block --> block --> ...   each completion, on the link's thread,
///                            ^                       asks for the next one
///              SetPriorityIndex: that one comes next
///
/// The functions for files belong to the main thread, all others to any thread. The board's store
/// must outlive the link's threads, and the link the store's monitor: ShutDown, then the link goes,
/// then the store.
class CSampleStore {
public:
    struct Board {
        CAnalyzerLink& link;
        MainThread& mainThread;
        Prompts& prompts;
    };

    /// The store of a file.
    CSampleStore() = default;
    /// The store of the board.
    explicit CSampleStore(const Board& board) : board_(std::make_unique<Board>(board)) {}
    ~CSampleStore();
    CSampleStore(const CSampleStore&) = delete;
    CSampleStore& operator=(const CSampleStore&) = delete;

    // A capture. These need a board.

    /// Main thread. Ends an upload under way, starts the board and the thread that watches it.
    void StartCapture();
    /// Stops the board and begins the upload.
    void StopCapture();
    [[nodiscard]] bool IsRunning() const noexcept { return running_; }
    /// Fetches what the board holds. The samples of the capture before are free from here on.
    void BeginUpload();
    /// Waits at most a second until the upload has ended; detaches the observer.
    void CancelUpload();
    [[nodiscard]] bool IsUploading() const;
    /// The block of this sample comes next; an index past the capture is ignored.
    void SetPriorityIndex(std::uint32_t index);
    /// Replaces the observer and hands the new one all that has arrived. Once it returns, the old
    /// one is not called any more.
    void SetObserver(BlockObserver* observer);
    /// Ends the monitor thread. The board goes on with its capture.
    void ShutDown();

    // A file.

    /// Sizes the store for a file's range of sample numbers. False when the range is larger than
    /// any capture; the store is then empty.
    [[nodiscard]] bool AllocateForFile(std::int64_t first, std::int64_t last);
    void PutSample(std::uint32_t index, const SampleRecord& record);
    void ResetZoom();
    void PutZoomSample(std::uint32_t index, const SampleRecord& record);
    /// The records; empty when there are none.
    [[nodiscard]] std::span<const SampleRecord> GetData(bool zoom) const;

    // Both.

    void FreeSamples();
    [[nodiscard]] std::uint32_t GetCount(bool zoom) const;
    /// The record at an index, arrived or not; nothing past the end.
    [[nodiscard]] std::optional<SampleRecord> GetSample(std::uint32_t index) const;
    /// Copies the samples from an index on, as far as they have arrived, and returns their number.
    [[nodiscard]] std::size_t CopySamples(std::uint32_t first, std::span<SampleRecord> into) const;
    /// A copy of all records, those that have not arrived as zeros.
    [[nodiscard]] std::vector<SampleRecord> AllSamples(bool zoom) const;
    /// Whether the sample's block has arrived.
    [[nodiscard]] bool HasSample(std::uint32_t index) const;
    [[nodiscard]] bool HasZoom() const;
    [[nodiscard]] std::optional<SampleRecord> GetZoomSample(std::uint32_t index) const;
    [[nodiscard]] std::int32_t SamplesBefore() const;
    [[nodiscard]] std::int32_t SamplesAfter() const;
    /// The number of sample index 0, for file data.
    [[nodiscard]] std::int32_t FirstNumber() const;

private:
    enum ZoomPhase { ZoomNone, ZoomBefore, ZoomAfter, ZoomComplete };

    void Monitor(bool& firstLook);
    void EndMonitor();
    void Free() BUSQUILL_REQUIRES(storeLock_);
    [[nodiscard]] LinkRequestPtr BlockRequest(std::int64_t index) BUSQUILL_REQUIRES(storeLock_);
    [[nodiscard]] LinkRequestPtr SamplesRequest(SampleCommand command, std::int64_t distance,
                                                std::size_t count) BUSQUILL_REQUIRES(storeLock_);
    [[nodiscard]] LinkRequestPtr NextRequest() BUSQUILL_REQUIRES(storeLock_);
    [[nodiscard]] std::optional<std::uint32_t> FirstMissingBlock() const
        BUSQUILL_REQUIRES(storeLock_);
    [[nodiscard]] bool IsUploaded(std::int64_t block) const BUSQUILL_REQUIRES(storeLock_);
    [[nodiscard]] std::span<const SampleRecord> Block(std::uint32_t block) const
        BUSQUILL_REQUIRES(storeLock_);
    void Notify(std::uint32_t first, std::span<const SampleRecord> records, bool zoom)
        BUSQUILL_REQUIRES(storeLock_);
    void EndUpload() BUSQUILL_REQUIRES(storeLock_);
    void BlockDone(const LinkRequest& request);
    [[nodiscard]] LinkRequestPtr TakeBlock(const LinkRequest& request);
    void BlockFailed(const LinkRequest& request);

    std::unique_ptr<Board> board_;

    mutable Mutex storeLock_;
    ZeroedArray<SampleRecord> samples_ BUSQUILL_GUARDED_BY(storeLock_);
    std::vector<std::uint32_t> uploadedBlocks_ BUSQUILL_GUARDED_BY(storeLock_); // one bit a block
    std::int32_t samplesBefore_ BUSQUILL_GUARDED_BY(storeLock_) = 0;
    std::int32_t samplesAfter_ BUSQUILL_GUARDED_BY(storeLock_) = 0;
    std::int32_t firstNumber_ BUSQUILL_GUARDED_BY(storeLock_) = 0;
    std::vector<SampleRecord>
        zoomSamples_ BUSQUILL_GUARDED_BY(storeLock_) = std::vector<SampleRecord>(zoomSampleCount);
    ZoomPhase zoomPhase_ BUSQUILL_GUARDED_BY(storeLock_) = ZoomNone;

    // The cursors stand on the first sample of a block; -1: no upload is under way.
    std::int64_t forwardIndex_ BUSQUILL_GUARDED_BY(storeLock_) = -1;
    std::int64_t backwardIndex_ BUSQUILL_GUARDED_BY(storeLock_) = -1;
    std::int64_t priorityIndex_ BUSQUILL_GUARDED_BY(storeLock_) = -1;
    bool goingForward_ BUSQUILL_GUARDED_BY(storeLock_) = true; // which cursor moved last
    bool abortRequested_ BUSQUILL_GUARDED_BY(storeLock_) = false;
    BlockObserver* observer_ BUSQUILL_GUARDED_BY(storeLock_) = nullptr;
    /// Where the board's reply goes: samples that have arrived are never written again, since
    /// others may be reading them.
    std::array<SampleRecord, zoomSampleCount> reply_; // the link's thread, one request at a time

    std::atomic<bool> running_ = false;
    std::atomic<bool> monitorEnds_ = false;
    std::atomic<bool> monitorDone_ = true;
    std::thread monitor_; // main thread
};

} // namespace busquill
