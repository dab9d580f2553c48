#include "capture/sample_upload.h"

#include "link/analyzer_link.h"
#include "platform/main_thread.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr std::chrono::milliseconds cancelLimit(1000);

constexpr std::int64_t BlockStart(std::int64_t sample) noexcept {
    return sample / blockSamples * blockSamples;
}

} // namespace

SampleUpload::SampleUpload(CAnalyzerLink& link, MainThread& mainThread, Prompts& prompts,
                           CSampleStore& store)
    : link_(link), mainThread_(mainThread), prompts_(prompts), store_(store) {}

void SampleUpload::BeginUpload() {
    const bool hasBoard = !link_.IsDemoMode() && !link_.IsBoardGone();
    if (hasBoard) {
        link_.PollLiveStatus(); // for the final counts
        link_.WaitIdle();
    }
    LinkRequestPtr first;
    {
        const MutexLock lock(uploadLock_);
        if (forwardIndex_ != -1) {
            return;
        }
        EndUpload();
        store_.FreeSamples();
        SampleCounts counts;
        if (hasBoard) {
            link_.GetLiveStatus(counts.before, counts.after);
        }
        if (counts.before == 0 && counts.after <= 0) {
            return;
        }
        store_.AllocateForUpload(counts);
        forwardIndex_ = BlockStart(counts.before);
        backwardIndex_ = forwardIndex_;
        fetchesZoom_ = link_.Traits().HasPowerZoom();
        goingForward_ = !fetchesZoom_;
        abortRequested_ = false;
        first = BlockRequest(forwardIndex_);
    }
    // Without the lock: with no port the completion runs before this returns.
    link_.Submit(std::move(first));
}

/// The board addresses samples by their distance from the trigger; only the board knows where its
/// memory begins.
LinkRequestPtr SampleUpload::BlockRequest(std::int64_t index) {
    const std::uint32_t zoomArrived = store_.ZoomArrived();
    if (fetchesZoom_ && zoomArrived == 0) {
        return SamplesRequest(CmdReadZoomBefore, zoomSamplesBefore, zoomSamplesBefore);
    }
    if (fetchesZoom_ && zoomArrived < zoomSampleCount) {
        return SamplesRequest(CmdReadZoomAfter, 0, zoomSampleCount - zoomSamplesBefore);
    }
    const std::int64_t before = store_.SamplesBefore();
    const std::int64_t left = std::int64_t{store_.GetCount(false)} - index;
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(blockSamples, left));
    return index < before ? SamplesRequest(CmdReadSamplesBefore, before - index, count)
                          : SamplesRequest(CmdReadSamplesAfter, index - before, count);
}

LinkRequestPtr SampleUpload::SamplesRequest(SampleCommand command, std::int64_t distance,
                                            std::size_t count) {
    static_assert(sizeof(SampleRecord) == sampleRecordSize);
    reply_.fill(SampleRecord());
    LinkRequestPtr request =
        ReadSamples(command, static_cast<std::uint32_t>(distance),
                    {reinterpret_cast<std::uint8_t*>(reply_.data()), count * sizeof(SampleRecord)});
    request->completion = [this](const LinkRequestPtr& done) { BlockDone(*done); };
    return request;
}

void SampleUpload::BlockDone(const LinkRequest& request) {
    if (request.result != LinkOk) {
        BlockFailed(request);
    } else if (LinkRequestPtr next = TakeBlock(request)) {
        link_.Submit(std::move(next));
    }
}

/// Stores the block that has arrived and returns the next request, or null when the upload is over.
LinkRequestPtr SampleUpload::TakeBlock(const LinkRequest& request) {
    const MutexLock lock(uploadLock_);
    if (abortRequested_ || forwardIndex_ == -1) {
        abortRequested_ = false;
        EndUpload();
        return nullptr;
    }
    const auto came = std::span<const SampleRecord>(reply_).first(request.length);
    if (request.command == CmdReadZoomBefore) {
        Notify(0, store_.PutZoomPart(came), true);
        return BlockRequest(forwardIndex_);
    }
    if (request.command == CmdReadZoomAfter) {
        Notify(zoomSamplesBefore, store_.PutZoomPart(came), true);
        return NextRequest();
    }
    const auto distance = std::int64_t{request.address};
    const auto index = static_cast<std::uint32_t>(
        store_.SamplesBefore() + (request.command == CmdReadSamplesBefore ? -distance : distance));
    Notify(index, store_.PutBlock(index, came), false);
    return NextRequest();
}

LinkRequestPtr SampleUpload::NextRequest() {
    std::int64_t wanted = 0;
    if (priorityIndex_ != -1) {
        goingForward_ = true;
        backwardIndex_ = forwardIndex_;
        wanted = priorityIndex_;
        priorityIndex_ = -1;
    } else {
        goingForward_ = !goingForward_;
        wanted = goingForward_ ? forwardIndex_ + blockSamples
                               : backwardIndex_ - std::int64_t{blockSamples};
        const bool outside = wanted < 0 || wanted >= std::int64_t{store_.GetCount(false)};
        if (outside || store_.HasSample(static_cast<std::uint32_t>(wanted))) {
            const auto missing = store_.FirstMissing();
            if (!missing) {
                EndUpload();
                return nullptr;
            }
            wanted = *missing;
        }
    }
    (goingForward_ ? forwardIndex_ : backwardIndex_) = wanted;
    return BlockRequest(wanted);
}

void SampleUpload::Notify(std::uint32_t first, std::span<const SampleRecord> records, bool zoom) {
    if (observer_ != nullptr) {
        observer_->AddBlock(first, records, zoom);
    }
}

void SampleUpload::EndUpload() {
    forwardIndex_ = -1;
    backwardIndex_ = -1;
    priorityIndex_ = -1;
    goingForward_ = true;
    mainThread_.Wake();
}

void SampleUpload::BlockFailed(const LinkRequest& request) {
    if (request.result != LinkTransferFailed) {
        prompts_.TopmostMessage(
            Printf("Error reading trace data for sample index %d, length %d.\n"
                   "Command %d State %d Expected %d Read %d Error %d ComErrors 0x%x.\n"
                   "Read Index %d Write Index %d First 0x%x Last 0x%x.",
                   static_cast<int>(request.address), static_cast<int>(request.length),
                   request.command, request.state, request.replyLength, request.bytesSeen,
                   request.result, request.commErrors, request.ringReadAtFail,
                   request.ringWriteAtFail, request.firstByte, request.lastByte));
    }
    const MutexLock lock(uploadLock_);
    abortRequested_ = false;
    EndUpload();
}

void SampleUpload::CancelUpload() {
    {
        const MutexLock lock(uploadLock_);
        observer_ = nullptr;
        if (forwardIndex_ == -1) {
            return;
        }
        abortRequested_ = true;
    }
    mainThread_.WaitUntil(cancelLimit, [this] { return !IsUploading(); });
}

bool SampleUpload::IsUploading() const {
    const MutexLock lock(uploadLock_);
    return forwardIndex_ != -1;
}

void SampleUpload::SetPriorityIndex(std::uint32_t index) {
    const MutexLock lock(uploadLock_);
    if (index < store_.GetCount(false)) {
        priorityIndex_ = BlockStart(index);
    }
}

// A complete Power Zoom is replayed with both parts at 0, so the second overwrites the first.
void SampleUpload::SetObserver(BlockObserver* observer) {
    const MutexLock lock(uploadLock_);
    if (observer_ == observer) {
        return;
    }
    observer_ = observer;
    const auto zoom = store_.GetData(true);
    if (store_.ZoomArrived() >= zoomSamplesBefore) {
        Notify(0, zoom.first(zoomSamplesBefore), true);
    }
    if (store_.HasZoom()) {
        Notify(0, zoom.subspan(zoomSamplesBefore), true);
    }
    const auto samples = store_.GetData(false);
    for (std::size_t first = 0; first < samples.size(); first += blockSamples) {
        if (store_.HasSample(static_cast<std::uint32_t>(first))) {
            Notify(
                static_cast<std::uint32_t>(first),
                samples.subspan(first, std::min<std::size_t>(blockSamples, samples.size() - first)),
                false);
        }
    }
}

void SampleUpload::FreeSamples() {
    const MutexLock lock(uploadLock_);
    EndUpload();
    store_.FreeSamples();
}

} // namespace busquill
