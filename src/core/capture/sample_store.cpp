#include "capture/sample_store.h"

#include "link/analyzer_link.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>
#include <bit>

namespace busquill {

namespace {

using namespace std::chrono_literals;

constexpr auto monitorPeriod = 200ms;
constexpr auto cancelLimit = 1000ms;

constexpr std::int64_t BlockStart(std::int64_t sample) noexcept {
    return sample / blockSamples * blockSamples;
}

} // namespace

CSampleStore::~CSampleStore() {
    ShutDown();
}

// The capture.

void CSampleStore::StartCapture() {
    EndMonitor(); // which may be about to begin an upload
    CancelUpload();
    {
        const MutexLock lock(storeLock_);
        zoomPhase_ = ZoomNone;
        samplesBefore_ = 0;
        samplesAfter_ = 0;
    }
    running_ = true;
    CAnalyzerLink& link = board_->link;
    link.ClearLiveStatus();
    link.Submit(RunCommand(CmdStartTrace));
    link.WaitIdle();
    monitorEnds_ = false;
    monitorDone_ = false;
    monitor_ = std::thread([this] {
        bool firstLook = true;
        while (running_ && !monitorEnds_) {
            Monitor(firstLook);
        }
        monitorDone_ = true;
        board_->mainThread.Wake();
    });
}

/// One look at the board.
void CSampleStore::Monitor(bool& firstLook) {
    CAnalyzerLink& link = board_->link;
    if (link.CommLost()) {
        running_ = false;
        return;
    }
    // A board that does not answer keeps a poll for seconds; a second one behind it is no use.
    if (firstLook || link.IsIdle()) {
        link.PollLiveStatus();
    }
    if (firstLook) {
        link.WaitIdle();
        firstLook = false;
    }
    std::int32_t before = 0;
    std::int32_t after = 0;
    const std::uint8_t status = link.GetLiveStatus(before, after);
    if ((status & liveTraceActive) == 0 || (status & liveBufferFull) != 0) {
        StopCapture();
        return;
    }
    board_->mainThread.WaitUntil(monitorPeriod, [this] { return monitorEnds_.load(); });
}

void CSampleStore::StopCapture() {
    board_->link.Submit(RunCommand(CmdStopTrace));
    BeginUpload();
    running_ = false;
}

// The monitor may be waiting for the link, and the link for a box to be answered.
void CSampleStore::EndMonitor() {
    if (!monitor_.joinable()) {
        return;
    }
    monitorEnds_ = true;
    board_->mainThread.Wake();
    while (!board_->mainThread.WaitUntil(1h, [this] { return monitorDone_.load(); })) {
    }
    monitor_.join();
}

void CSampleStore::ShutDown() {
    EndMonitor();
    running_ = false;
}

// The upload.

void CSampleStore::BeginUpload() {
    CAnalyzerLink& link = board_->link;
    const bool hasBoard = !link.IsDemoMode() && !link.IsBoardGone();
    if (hasBoard) {
        link.PollLiveStatus(); // the counts of a board that has stopped
        link.WaitIdle();
    }
    LinkRequestPtr first;
    {
        const MutexLock lock(storeLock_);
        if (forwardIndex_ != -1) {
            return;
        }
        Free();
        if (!hasBoard) {
            return;
        }
        link.GetLiveStatus(samplesBefore_, samplesAfter_);
        if (samplesBefore_ == 0 && samplesAfter_ <= 0) {
            return;
        }
        samples_.Reset(static_cast<std::size_t>(samplesBefore_) +
                       static_cast<std::size_t>(samplesAfter_) + 1);
        const auto blocks = static_cast<std::uint32_t>((samples_.size() - 1) / blockSamples + 1);
        uploadedBlocks_.assign(WordsFor(blocks), 0);
        forwardIndex_ = BlockStart(samplesBefore_);
        backwardIndex_ = forwardIndex_;
        zoomPhase_ = link.Traits().HasPowerZoom() ? ZoomBefore : ZoomNone;
        goingForward_ = zoomPhase_ == ZoomNone;
        priorityIndex_ = -1;
        abortRequested_ = false;
        first = BlockRequest(forwardIndex_);
    }
    // Not under the lock: with no port the completion runs before this returns.
    link.Submit(std::move(first));
}

/// The board finds samples by their distance from the trigger; it alone knows where its memory
/// begins.
LinkRequestPtr CSampleStore::BlockRequest(std::int64_t index) {
    if (zoomPhase_ == ZoomBefore) {
        return SamplesRequest(CmdReadZoomBefore, zoomSamplesBefore, zoomSamplesBefore);
    }
    if (zoomPhase_ == ZoomAfter) {
        return SamplesRequest(CmdReadZoomAfter, 0, zoomSampleCount - zoomSamplesBefore);
    }
    const auto left = static_cast<std::size_t>(static_cast<std::int64_t>(samples_.size()) - index);
    const auto count = std::min<std::size_t>(blockSamples, left);
    return index < samplesBefore_
               ? SamplesRequest(CmdReadSamplesBefore, samplesBefore_ - index, count)
               : SamplesRequest(CmdReadSamplesAfter, index - samplesBefore_, count);
}

LinkRequestPtr CSampleStore::SamplesRequest(SampleCommand command, std::int64_t distance,
                                            std::size_t count) {
    static_assert(sizeof(SampleRecord) == sampleRecordSize);
    reply_.fill(SampleRecord());
    LinkRequestPtr request =
        ReadSamples(command, static_cast<std::uint32_t>(distance),
                    {reinterpret_cast<std::uint8_t*>(reply_.data()), count * sizeof(SampleRecord)});
    request->completion = [this](const LinkRequestPtr& done) { BlockDone(*done); };
    return request;
}

void CSampleStore::BlockDone(const LinkRequest& request) {
    if (request.result != LinkOk) {
        BlockFailed(request);
    } else if (LinkRequestPtr next = TakeBlock(request)) {
        board_->link.Submit(std::move(next));
    }
}

/// Keeps what has come and returns the request for more, or null when the upload is over.
LinkRequestPtr CSampleStore::TakeBlock(const LinkRequest& request) {
    const MutexLock lock(storeLock_);
    if (abortRequested_ || forwardIndex_ == -1) {
        abortRequested_ = false;
        EndUpload();
        return nullptr;
    }
    const auto length = std::size_t{request.length};
    const std::span<const SampleRecord> came = std::span(reply_).first(length);
    if (zoomPhase_ == ZoomBefore || zoomPhase_ == ZoomAfter) {
        const bool before = zoomPhase_ == ZoomBefore;
        const std::uint32_t first = before ? 0 : zoomSamplesBefore;
        std::copy(came.begin(), came.end(), zoomSamples_.begin() + first);
        Notify(first, came, true);
        zoomPhase_ = before ? ZoomAfter : ZoomComplete;
        return before ? BlockRequest(forwardIndex_) : NextRequest();
    }
    const auto distance = std::int64_t{request.address};
    const std::int64_t index =
        samplesBefore_ + (request.command == CmdReadSamplesBefore ? -distance : distance);
    if (const auto block = static_cast<std::uint32_t>(index / blockSamples); !IsUploaded(block)) {
        std::copy(came.begin(), came.end(), samples_.begin() + index);
        uploadedBlocks_[block / 32] |= 1U << (block % 32);
    }
    Notify(static_cast<std::uint32_t>(index), Block(static_cast<std::uint32_t>(index / 32)), false);
    return NextRequest();
}

LinkRequestPtr CSampleStore::NextRequest() {
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
        const bool outside = wanted < 0 || wanted >= static_cast<std::int64_t>(samples_.size());
        if (outside || IsUploaded(wanted / blockSamples)) {
            const auto missing = FirstMissingBlock();
            if (!missing) {
                EndUpload();
                return nullptr;
            }
            wanted = std::int64_t{*missing} * blockSamples;
        }
    }
    (goingForward_ ? forwardIndex_ : backwardIndex_) = wanted;
    return BlockRequest(wanted);
}

std::optional<std::uint32_t> CSampleStore::FirstMissingBlock() const {
    const auto blocks = static_cast<std::uint32_t>((samples_.size() - 1) / blockSamples + 1);
    for (std::size_t word = 0; word < uploadedBlocks_.size(); ++word) {
        const auto block = static_cast<std::uint32_t>(word * 32) +
                           static_cast<std::uint32_t>(std::countr_one(uploadedBlocks_[word]));
        if (block < std::min<std::size_t>((word + 1) * 32, blocks)) {
            return block;
        }
    }
    return std::nullopt;
}

bool CSampleStore::IsUploaded(std::int64_t block) const {
    const auto i = static_cast<std::size_t>(block);
    return i / 32 < uploadedBlocks_.size() && (uploadedBlocks_[i / 32] >> (i % 32) & 1) != 0;
}

std::span<const SampleRecord> CSampleStore::Block(std::uint32_t block) const {
    const std::size_t first = std::size_t{block} * blockSamples;
    return std::span(samples_).subspan(
        first, std::min<std::size_t>(blockSamples, samples_.size() - first));
}

void CSampleStore::Notify(std::uint32_t first, std::span<const SampleRecord> records, bool zoom) {
    if (observer_ != nullptr) {
        observer_->AddBlock(first, records, zoom);
    }
}

void CSampleStore::EndUpload() {
    forwardIndex_ = -1;
    backwardIndex_ = -1;
    priorityIndex_ = -1;
    goingForward_ = true;
    board_->mainThread.Wake();
}

void CSampleStore::BlockFailed(const LinkRequest& request) {
    if (request.result != LinkTransferFailed) {
        board_->prompts.TopmostMessage(
            Printf("Error reading trace data for sample index %d, length %d.\n"
                   "Command %d State %d Expected %d Read %d Error %d ComErrors 0x%x.\n"
                   "Read Index %d Write Index %d First 0x%x Last 0x%x.",
                   static_cast<int>(request.address), static_cast<int>(request.length),
                   request.command, request.state, request.replyLength, request.bytesSeen,
                   request.result, request.commErrors, request.ringReadAtFail,
                   request.ringWriteAtFail, request.firstByte, request.lastByte));
    }
    const MutexLock lock(storeLock_);
    abortRequested_ = false;
    EndUpload();
}

void CSampleStore::CancelUpload() {
    {
        const MutexLock lock(storeLock_);
        observer_ = nullptr;
        if (forwardIndex_ == -1) {
            return;
        }
        abortRequested_ = true;
    }
    board_->mainThread.WaitUntil(cancelLimit, [this] { return !IsUploading(); });
}

bool CSampleStore::IsUploading() const {
    const MutexLock lock(storeLock_);
    return forwardIndex_ != -1;
}

void CSampleStore::SetPriorityIndex(std::uint32_t index) {
    const MutexLock lock(storeLock_);
    if (index < samples_.size()) {
        priorityIndex_ = BlockStart(index);
    }
}

// A complete Power Zoom is replayed with both parts at 0, so that the second lies over the first.
void CSampleStore::SetObserver(BlockObserver* observer) {
    const MutexLock lock(storeLock_);
    if (observer_ == observer) {
        return;
    }
    observer_ = observer;
    const std::span<const SampleRecord> zoom = zoomSamples_;
    if (zoomPhase_ == ZoomAfter || zoomPhase_ == ZoomComplete) {
        Notify(0, zoom.first(zoomSamplesBefore), true);
    }
    if (zoomPhase_ == ZoomComplete) {
        Notify(0, zoom.subspan(zoomSamplesBefore), true);
    }
    for (std::uint32_t block = 0; block < uploadedBlocks_.size() * 32; ++block) {
        if (IsUploaded(block)) {
            Notify(block * blockSamples, Block(block), false);
        }
    }
}

// The samples.

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

bool CSampleStore::AllocateForFile(std::int64_t first, std::int64_t last) {
    const MutexLock lock(storeLock_);
    samples_.clear(); // Power Zoom samples may have come before
    uploadedBlocks_.clear();
    const auto counts = CountsOfRange(first, last);
    if (!counts) {
        return false;
    }
    samplesBefore_ = counts->before;
    samplesAfter_ = counts->after;
    const std::int64_t count = last - first + 1;
    firstNumber_ = static_cast<std::int32_t>(first);
    if (count < 1) {
        return true;
    }
    samples_.Reset(static_cast<std::size_t>(count));
    uploadedBlocks_.assign(WordsFor(static_cast<std::uint32_t>((count - 1) / blockSamples + 1)), 0);
    return true;
}

void CSampleStore::PutSample(std::uint32_t index, const SampleRecord& record) {
    const MutexLock lock(storeLock_);
    if (index >= samples_.size()) {
        return;
    }
    samples_[index] = record;
    const std::uint32_t block = index / blockSamples;
    uploadedBlocks_[block / 32] |= 1U << (block % 32);
}

void CSampleStore::ResetZoom() {
    const MutexLock lock(storeLock_);
    zoomPhase_ = ZoomComplete;
    std::fill(zoomSamples_.begin(), zoomSamples_.end(), SampleRecord());
}

void CSampleStore::PutZoomSample(std::uint32_t index, const SampleRecord& record) {
    const MutexLock lock(storeLock_);
    if (zoomPhase_ == ZoomComplete && index < zoomSampleCount) {
        zoomSamples_[index] = record;
    }
}

std::span<const SampleRecord> CSampleStore::GetData(bool zoom) const {
    const MutexLock lock(storeLock_);
    return zoom ? std::span<const SampleRecord>(zoomSamples_) : samples_;
}

void CSampleStore::FreeSamples() {
    const MutexLock lock(storeLock_);
    Free();
}

void CSampleStore::Free() {
    samples_.clear();
    uploadedBlocks_ = {};
    forwardIndex_ = -1;
    backwardIndex_ = -1;
    priorityIndex_ = -1;
    goingForward_ = true;
    zoomPhase_ = ZoomNone;
}

std::uint32_t CSampleStore::GetCount(bool zoom) const {
    const MutexLock lock(storeLock_);
    return zoom ? zoomSampleCount : static_cast<std::uint32_t>(samples_.size());
}

std::optional<SampleRecord> CSampleStore::GetSample(std::uint32_t index) const {
    const MutexLock lock(storeLock_);
    return index < samples_.size() ? std::optional(samples_[index]) : std::nullopt;
}

std::size_t CSampleStore::CopySamples(std::uint32_t first, std::span<SampleRecord> into) const {
    const MutexLock lock(storeLock_);
    std::size_t count = 0;
    while (count < into.size() && first + count < samples_.size() &&
           IsUploaded((first + static_cast<std::int64_t>(count)) / blockSamples)) {
        into[count] = samples_[first + count];
        ++count;
    }
    return count;
}

std::vector<SampleRecord> CSampleStore::AllSamples(bool zoom) const {
    const MutexLock lock(storeLock_);
    return zoom ? zoomSamples_ : std::vector<SampleRecord>(samples_.begin(), samples_.end());
}

bool CSampleStore::HasSample(std::uint32_t index) const {
    const MutexLock lock(storeLock_);
    return index < samples_.size() && IsUploaded(std::int64_t{index} / blockSamples);
}

bool CSampleStore::HasZoom() const {
    const MutexLock lock(storeLock_);
    return zoomPhase_ == ZoomComplete;
}

std::optional<SampleRecord> CSampleStore::GetZoomSample(std::uint32_t index) const {
    const MutexLock lock(storeLock_);
    const bool held = zoomPhase_ == ZoomComplete && index < zoomSampleCount;
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

} // namespace busquill
