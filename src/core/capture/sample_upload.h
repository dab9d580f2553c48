#pragma once

#include "capture/sample_store.h"
#include "link/link_request.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <span>

namespace busquill {

class CAnalyzerLink;
class MainThread;
class Prompts;

/// Who wants to hear of samples that have arrived.
class BlockObserver {
public:
    virtual ~BlockObserver() = default;
    /// Samples that belong at an index; they lie in the store, see GetData. May be called on any
    /// thread, with the upload locked: it must not call the upload.
    virtual void AddBlock(std::uint32_t first, std::span<const SampleRecord> records,
                          bool zoom) = 0;
};

/// Brings the samples of the board's capture into a store: blocks from the trigger outward, one
/// block in flight at a time.
///
///   BeginUpload --> block --> block --> ...   each completion, on the link's thread, asks for the
///                     ^                       next one
///       SetPriorityIndex: that one comes next
///
/// Any thread. The upload and its store outlive the link, whose thread may be completing a block.
class SampleUpload {
public:
    SampleUpload(CAnalyzerLink& link, MainThread& mainThread, Prompts& prompts,
                 CSampleStore& store);
    SampleUpload(const SampleUpload&) = delete;
    SampleUpload& operator=(const SampleUpload&) = delete;

    /// Fetches what the board holds, in the place of what the store held. Does nothing while an
    /// upload is under way.
    void BeginUpload();
    /// Waits at most a second until the upload has ended; detaches the observer.
    void CancelUpload();
    [[nodiscard]] bool IsUploading() const;
    /// The block of this sample comes next; an index past the capture is ignored.
    void SetPriorityIndex(std::uint32_t index);
    /// Replaces the observer and hands the new one all that has arrived. Once it returns, the old
    /// one is not called any more.
    void SetObserver(BlockObserver* observer);
    /// Empties the store; an upload under way ends at its next block.
    void FreeSamples();

private:
    [[nodiscard]] LinkRequestPtr BlockRequest(std::int64_t index) BUSQUILL_REQUIRES(uploadLock_);
    [[nodiscard]] LinkRequestPtr SamplesRequest(SampleCommand command, std::int64_t distance,
                                                std::size_t count) BUSQUILL_REQUIRES(uploadLock_);
    [[nodiscard]] LinkRequestPtr NextRequest() BUSQUILL_REQUIRES(uploadLock_);
    void Notify(std::uint32_t first, std::span<const SampleRecord> records, bool zoom)
        BUSQUILL_REQUIRES(uploadLock_);
    void EndUpload() BUSQUILL_REQUIRES(uploadLock_);
    void BlockDone(const LinkRequest& request);
    [[nodiscard]] LinkRequestPtr TakeBlock(const LinkRequest& request);
    void BlockFailed(const LinkRequest& request);

    CAnalyzerLink& link_;
    MainThread& mainThread_;
    Prompts& prompts_;
    CSampleStore& store_;

    mutable Mutex uploadLock_; // taken before the store's
    // The cursors stand on the first sample of a block; -1: no upload is under way.
    std::int64_t forwardIndex_ BUSQUILL_GUARDED_BY(uploadLock_) = -1;
    std::int64_t backwardIndex_ BUSQUILL_GUARDED_BY(uploadLock_) = -1;
    std::int64_t priorityIndex_ BUSQUILL_GUARDED_BY(uploadLock_) = -1;
    bool goingForward_ BUSQUILL_GUARDED_BY(uploadLock_) = true; // which cursor moved last
    bool fetchesZoom_ BUSQUILL_GUARDED_BY(uploadLock_) = false; // before all blocks
    bool abortRequested_ BUSQUILL_GUARDED_BY(uploadLock_) = false;
    BlockObserver* observer_ BUSQUILL_GUARDED_BY(uploadLock_) = nullptr;
    /// Where the board's reply goes until it is known to be good.
    std::array<SampleRecord, zoomSampleCount> reply_; // the link's thread, one request at a time
};

} // namespace busquill
