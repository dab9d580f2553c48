#pragma once

#include "capture/sample_store.h"
#include "capture/sample_upload.h"

#include <atomic>
#include <thread>

namespace busquill {

class CAnalyzerLink;
class MainThread;
class Prompts;

/// The board's capture, which continues while no document shows it.
///
///   StartCapture: monitor thread, polls the board every 200 ms
///       |  buffer full, inactive, or StopCapture
///       v
///   BeginUpload
///
/// StartCapture and ShutDown are called on the main thread, all others on any. The capture outlives
/// the link, and the link the capture's monitor: call ShutDown, then destroy the link, then the
/// capture.
class BoardCapture {
public:
    BoardCapture(CAnalyzerLink& link, MainThread& mainThread, Prompts& prompts);
    ~BoardCapture();
    BoardCapture(const BoardCapture&) = delete;
    BoardCapture& operator=(const BoardCapture&) = delete;

    /// Cancels an upload in progress, starts the board and its monitor thread.
    void StartCapture();
    /// Stops the board and begins the upload, once for each capture.
    void StopCapture();
    [[nodiscard]] bool IsRunning() const noexcept { return running_; }
    /// Ends the monitor thread. The board continues its capture.
    void ShutDown();

    CSampleStore store;
    SampleUpload upload;

private:
    void Monitor(bool& firstPoll);
    void EndMonitor();

    CAnalyzerLink& link_;
    MainThread& mainThread_;

    Mutex stopLock_; // taken before the upload's; the buffer may fill just as the user stops
    bool uploadBegun_ BUSQUILL_GUARDED_BY(stopLock_) = false; // of this capture

    std::atomic<bool> running_ = false;
    std::atomic<bool> monitorEnds_ = false;
    std::atomic<bool> monitorDone_ = true;
    std::thread monitor_; // main thread
};

} // namespace busquill
