/// What the buttons and the timer of a trace window do, without the window. Main thread.
#pragma once

#include <cstdint>
#include <string>

namespace busquill {

class CAnalyzerLink;
class CTesselDoc;
class Prompts;
class TraceSetup;

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

/// Sends a setup in three commands. A command that fails says so, and the next goes out all the
/// same. Whether the board has taken all of it.
bool DownloadSetup(CAnalyzerLink& link, const TraceSetup& setup, Prompts& prompts);

/// Starts a capture into the real-time document. With a path, that setup file becomes the
/// document's setup first; when it cannot be read, the board runs with the setup that it has.
void StartRun(CAnalyzerLink& link, CTesselDoc& document, const std::string& setupPath,
              Prompts& prompts);

/// Starts a capture with the setup that the board has.
void StartBoard(CTesselDoc& document);

/// Ends the document's capture; does nothing when none is active.
void StopRun(CTesselDoc& document);

/// A look at the capture, five times a second: tells the document when it has ended, and the views
/// of the samples that have come.
[[nodiscard]] RunState FollowRun(CAnalyzerLink& link, CTesselDoc& document);

/// Where the trigger falls in a memory of `total` samples, by the setup's trigger position.
[[nodiscard]] std::int64_t TriggerSampleOf(const TraceSetup& setup, std::int64_t total) noexcept;

} // namespace busquill
