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

/// What a trace window's frame shows of its document's capture.
enum class RunIndicator { Idle = 0, Running = 1, Uploading = 2, File = 4 };

/// The state of a capture at one moment.
struct RunState {
    RunIndicator indicator = RunIndicator::Idle;
    std::int32_t before = 0; // samples stored on each side of the trigger
    std::int32_t after = 0;
    std::int32_t occurrences = 0; // of the active level's condition
    int level = 0;                // the active level, from 0
    bool triggered = false;
    bool bufferFull = false;
};

/// The commands by which a setup goes to the board. They look at the setup, which lives as long.
[[nodiscard]] std::vector<RunStep> SetupSteps(const TraceSetup& setup, const BoardTraits& board);

/// Sends a setup. A command that fails says so, and the next goes out all the same, but not to a
/// board that is gone. Whether the board has taken all of it.
bool DownloadSetup(CAnalyzerLink& link, const TraceSetup& setup, Prompts& prompts);

/// Where the trigger falls in a memory of `total` samples, by the setup's trigger position.
[[nodiscard]] std::int64_t TriggerSampleOf(const TraceSetup& setup, std::int64_t total) noexcept;

/// Into what a run captures, and who follows it. Main thread, but for AddBlock.
class CaptureObserver : public BlockObserver {
public:
    /// Between start and stop.
    [[nodiscard]] virtual bool CaptureActive() const = 0;
    virtual void OnCaptureStarted() = 0;
    /// The counts of the samples are known; blocks come from here on.
    virtual void OnCaptureStopped() = 0;
    virtual void OnPolled(const RunState& state) = 0;
};

/// The run of a capture: the board's own goes on when this one ends with its document, and is
/// followed by that of the next.
class CaptureRun final : public BoardRun {
public:
    CaptureRun(Parts parts, BoardCapture& capture, CaptureObserver& observer);

    /// Starts a capture. With a path, that setup file becomes the setup first; when it cannot be
    /// read, the board runs with the setup that it has. A board that proves to be gone is not
    /// started.
    void Go(TraceSetup& setup, const std::string& path);
    /// Starts a capture with the setup that the board has.
    void Start();
    /// Ends the capture; does nothing when none is active.
    void Stop() override;
    /// Tells the observer how the capture stands, and that it has ended if so.
    void Poll() override;

    /// As it was at the last look.
    [[nodiscard]] const RunState& State() const noexcept { return state_; }

private:
    BoardCapture& capture_;
    CaptureObserver& observer_;
    RunState state_;
};

} // namespace busquill
