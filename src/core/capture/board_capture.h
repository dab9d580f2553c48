#pragma once

#include "capture/sample_store.h"
#include "capture/sample_upload.h"

#include <atomic>
#include <thread>

namespace busquill {

class CAnalyzerLink;
class MainThread;
class Prompts;

/// The board's one capture, which goes on while no document shows it.
///
///   StartCapture: monitor thread, a look at the board every 200 ms
///       |  buffer full, inactive, or StopCapture
///       v
///   BeginUpload
///
/// StartCapture and ShutDown belong to the main thread, all others to any. The capture outlives the
/// link, and the link the capture's monitor: ShutDown, then the link goes, then the capture.
class BoardCapture {
public:
    BoardCapture(CAnalyzerLink& link, MainThread& mainThread, Prompts& prompts);
    ~BoardCapture();
    BoardCapture(const BoardCapture&) = delete;
    BoardCapture& operator=(const BoardCapture&) = delete;

    /// Ends an upload under way, starts the board and the thread that watches it.
    void StartCapture();
    /// Stops the board and, once for each capture, begins the upload.
    void StopCapture();
    [[nodiscard]] bool IsRunning() const noexcept { return running_; }
    /// Ends the monitor thread. The board goes on with its capture.
    void ShutDown();

    CSampleStore store;
    SampleUpload upload;

private:
    void Monitor(bool& firstPoll);
    void EndMonitor();

    CAnalyzerLink& link_;
    MainThread& mainThread_;

    Mutex stopLock_; // taken before the upload's; the buffer may fill as the user stops
    bool uploadBegun_ BUSQUILL_GUARDED_BY(stopLock_) = false; // of this capture

    std::atomic<bool> running_ = false;
    std::atomic<bool> monitorEnds_ = false;
    std::atomic<bool> monitorDone_ = true;
    std::thread monitor_; // main thread
};

} // namespace busquill
