#pragma once

#include "capture/sample_upload.h"
#include "link/board_run.h"
#include "link/exchange.h"

#include <cstdint>
#include <string>
#include <vector>

namespace busquill {

class BoardCapture;
class TraceSetup;
struct BoardTraits;

/// The capture state that a trace window's frame shows.
enum class RunIndicator { Idle = 0, Running = 1, Uploading = 2, File = 4 };

/// The state of a capture at one moment.
struct RunState {
    RunIndicator indicator = RunIndicator::Idle;
    std::int32_t before = 0; // samples stored on each side of the trigger
    std::int32_t after = 0;
    std::int32_t occurrences = 0; // of the condition of the active level
    int level = 0;                // the active level, from 0
    bool triggered = false;
    bool bufferFull = false;
};

/// The commands that send a setup to the board. They refer to the setup, which outlives them.
[[nodiscard]] std::vector<RunStep> SetupSteps(const TraceSetup& setup, const BoardTraits& board);

/// Sends a setup. A failed command is reported and the next is sent all the same, unless the board
/// is gone. Returns whether all commands succeeded.
bool DownloadSetup(CAnalyzerLink& link, const TraceSetup& setup, Prompts& prompts);

/// The trigger's sample in a memory of `total` samples, by the setup's trigger position.
[[nodiscard]] std::int64_t TriggerSampleOf(const TraceSetup& setup, std::int64_t total) noexcept;

/// The target of a run's samples, which also follows the run. Main thread, except AddBlock.
class CaptureObserver : public BlockObserver {
public:
    /// Whether a capture was started and has not stopped yet.
    [[nodiscard]] virtual bool CaptureActive() const = 0;
    virtual void OnCaptureStarted() = 0;
    /// The sample counts are known; blocks arrive from now on.
    virtual void OnCaptureStopped() = 0;
    virtual void OnPolled(const RunState& state) = 0;
};

/// The run of a capture. When it is destroyed with its document the board continues its capture,
/// which the run of the next document then follows.
class CaptureRun final : public BoardRun {
public:
    CaptureRun(Parts parts, BoardCapture& capture, CaptureObserver& observer);

    /// Starts a capture. With a path, that setup file is loaded and sent first; if it cannot be
    /// read, the board runs with the setup that it has. The board is not started if it proves to be
    /// gone.
    void Go(TraceSetup& setup, const std::string& path);
    /// Starts a capture with the setup that the board has.
    void Start();
    /// Ends the capture; does nothing when none is active.
    void Stop() override;
    /// Reports the state of the capture to the observer, and its end.
    void Poll() override;

    /// The state at the last poll.
    [[nodiscard]] const RunState& State() const noexcept { return state_; }

private:
    BoardCapture& capture_;
    CaptureObserver& observer_;
    RunState state_;
};

} // namespace busquill
