#include "capture/board_capture.h"

#include "link/analyzer_link.h"
#include "platform/main_thread.h"

namespace busquill {

namespace {

using namespace std::chrono_literals;

constexpr auto monitorPeriod = 200ms;

} // namespace

BoardCapture::BoardCapture(CAnalyzerLink& link, MainThread& mainThread, Prompts& prompts)
    : upload(link, mainThread, prompts, store), link_(link), mainThread_(mainThread) {}

BoardCapture::~BoardCapture() {
    ShutDown();
}

void BoardCapture::StartCapture() {
    EndMonitor(); // the monitor may be about to begin an upload
    upload.CancelUpload();
    store.ForgetTrigger();
    {
        const MutexLock lock(stopLock_);
        uploadBegun_ = false;
    }
    running_ = true;
    link_.ClearLiveStatus();
    link_.Submit(RunCommand(CmdStartTrace));
    link_.WaitIdle();
    monitorEnds_ = false;
    monitorDone_ = false;
    monitor_ = std::thread([this] {
        bool firstPoll = true;
        while (running_ && !monitorEnds_) {
            Monitor(firstPoll);
        }
        monitorDone_ = true;
        mainThread_.Wake();
    });
}

/// Polls the board once.
void BoardCapture::Monitor(bool& firstPoll) {
    if (link_.CommLost()) {
        running_ = false;
        return;
    }
    // A board that does not answer blocks a poll for seconds; queueing a second one is useless.
    if (firstPoll || link_.IsIdle()) {
        link_.PollLiveStatus();
    }
    if (firstPoll) {
        link_.WaitIdle();
        firstPoll = false;
    }
    std::int32_t before = 0;
    std::int32_t after = 0;
    const std::uint8_t status = link_.GetLiveStatus(before, after);
    if ((status & liveTraceActive) == 0 || (status & liveBufferFull) != 0) {
        StopCapture();
        return;
    }
    mainThread_.WaitUntil(monitorPeriod, [this] { return monitorEnds_.load(); });
}

// A second upload of the same capture would free samples that the main thread is reading.
void BoardCapture::StopCapture() {
    const MutexLock lock(stopLock_);
    link_.Submit(RunCommand(CmdStopTrace));
    if (!uploadBegun_) {
        uploadBegun_ = true;
        upload.BeginUpload();
    }
    running_ = false;
}

// The monitor may be waiting for the link, and the link for the answer to a box.
void BoardCapture::EndMonitor() {
    if (!monitor_.joinable()) {
        return;
    }
    monitorEnds_ = true;
    mainThread_.Wake();
    while (!mainThread_.WaitUntil(1h, [this] { return monitorDone_.load(); })) {
    }
    monitor_.join();
}

void BoardCapture::ShutDown() {
    EndMonitor();
    running_ = false;
}

} // namespace busquill
