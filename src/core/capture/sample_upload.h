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

/// Is notified of samples that have arrived.
class BlockObserver {
public:
    virtual ~BlockObserver() = default;
    /// Samples from index `first` on have arrived; they lie in the store, see GetData. Called on
    /// any thread with the upload locked, so it must not call the upload.
    virtual void AddBlock(std::uint32_t first, std::span<const SampleRecord> records,
                          bool zoom) = 0;
};

/// Uploads the samples of the board's capture to a store, block by block from the trigger outward,
/// one request at a time.
///
///   BeginUpload --> block --> block --> ...   each completion, on the link's thread, asks for the
///                     ^                       next one
///       SetPriorityIndex: fetches that block next
///
/// Any thread. The upload and its store outlive the link, whose thread may be completing a block.
class SampleUpload {
public:
    SampleUpload(CAnalyzerLink& link, MainThread& mainThread, Prompts& prompts,
                 CSampleStore& store);
    SampleUpload(const SampleUpload&) = delete;
    SampleUpload& operator=(const SampleUpload&) = delete;

    /// Replaces the content of the store by the board's samples. Does nothing while an upload is in
    /// progress.
    void BeginUpload();
    /// Ends the upload, waiting at most a second, and detaches the observer.
    void CancelUpload();
    [[nodiscard]] bool IsUploading() const;
    /// Fetches the block of this sample next; an index past the capture is ignored.
    void SetPriorityIndex(std::uint32_t index);
    /// Replaces the observer and passes to the new one all that has arrived. After it returns, the
    /// old one is not called any more.
    void SetObserver(BlockObserver* observer);
    /// Empties the store; an upload in progress ends at its next block.
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
    // The cursors are at the first sample of a block; -1: no upload in progress.
    std::int64_t forwardIndex_ BUSQUILL_GUARDED_BY(uploadLock_) = -1;
    std::int64_t backwardIndex_ BUSQUILL_GUARDED_BY(uploadLock_) = -1;
    std::int64_t priorityIndex_ BUSQUILL_GUARDED_BY(uploadLock_) = -1;
    bool goingForward_ BUSQUILL_GUARDED_BY(uploadLock_) = true; // which cursor moved last
    bool fetchesZoom_ BUSQUILL_GUARDED_BY(uploadLock_) = false; // fetched before all blocks
    bool abortRequested_ BUSQUILL_GUARDED_BY(uploadLock_) = false;
    BlockObserver* observer_ BUSQUILL_GUARDED_BY(uploadLock_) = nullptr;
    /// Buffer for the board's reply until it is known to be good.
    std::array<SampleRecord, zoomSampleCount> reply_; // link's thread; one request at a time
};

} // namespace busquill
