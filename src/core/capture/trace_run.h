/// What the buttons and the timer of a trace window do, without the window. Main thread.
#pragma once

#include "link/link_request.h"

#include <array>
#include <cstdint>
#include <string>

namespace busquill {

class CAnalyzerLink;
class CTesselDoc;
class Prompts;
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

/// One of the commands by which a setup goes to the board.
struct SetupStep {
    LinkRequestPtr request;        // looks at the setup, which must live as long
    const char* failure = nullptr; // what the user hears when the board does not take it
};
[[nodiscard]] std::array<SetupStep, 3> SetupSteps(const TraceSetup& setup,
                                                  const BoardTraits& board);

/// Sends a setup in three commands. A command that fails says so, and the next goes out all the
/// same, but not to a board that is gone. Whether the board has taken all of it.
bool DownloadSetup(CAnalyzerLink& link, const TraceSetup& setup, Prompts& prompts);

/// Starts a capture into the real-time document. With a path, that setup file becomes the
/// document's setup first; when it cannot be read, the board runs with the setup that it has. A
/// board that proves to be gone is not started, and the document keeps its capture.
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
