#include "capture/capture_run.h"

#include "capture/board_capture.h"
#include "tracesetup/setup_encoding.h"
#include "tracesetup/setup_file.h"

namespace busquill {

namespace {

constexpr std::chrono::milliseconds pollPeriod(200);

} // namespace

std::vector<RunStep> SetupSteps(const TraceSetup& setup, const BoardTraits& board) {
    const int events = EventCount(board);
    std::vector<RunStep> steps;
    steps.push_back({WritePayload(CmdTraceParams, [&setup] { return BuildTraceParams(setup); }),
                     "Error sending trace parameter data to analyzer."});
    steps.push_back(
        {WritePayload(CmdTraceEvents,
                      [&setup, events] { return BuildEventRows(setup.events, events); }),
         "Error sending trace event setup data to analyzer."});
    steps.push_back({WritePayload(CmdTraceControl, [&setup] { return BuildTraceControl(setup); }),
                     "Error sending trace control setup data to analyzer."});
    return steps;
}

bool DownloadSetup(CAnalyzerLink& link, const TraceSetup& setup, Prompts& prompts) {
    return SendSteps(link, SetupSteps(setup, link.Traits()), prompts) == Sent::All;
}

std::int64_t TriggerSampleOf(const TraceSetup& setup, std::int64_t total) noexcept {
    switch (setup.triggerPosition) {
    case 2:
        return total / 4;
    case 3:
        return total / 2;
    case 4:
        return total * 3 / 4;
    case 5:
        return total - 1;
    default:
        return 0;
    }
}

CaptureRun::CaptureRun(Parts parts, BoardCapture& capture, CaptureObserver& observer)
    : BoardRun(std::move(parts)), capture_(capture), observer_(observer) {
    PollEvery(pollPeriod);
}

void CaptureRun::Go(TraceSetup& setup, const std::string& path) {
    if (path.empty() || LoadSetupFile(setup, path, Boxes())) {
        if (SendSteps(Link(), SetupSteps(setup, Link().Traits()), Boxes()) == Sent::Ended) {
            return;
        }
    }
    Start();
}

void CaptureRun::Start() {
    capture_.StartCapture();
    observer_.OnCaptureStarted();
}

void CaptureRun::Stop() {
    if (observer_.CaptureActive()) {
        capture_.StopCapture();
        observer_.OnCaptureStopped();
    }
}

void CaptureRun::Poll() {
    const std::uint8_t status = Link().GetLiveStatus(state_.before, state_.after);
    state_.occurrences = Link().GetEventOccurrences();
    state_.level = status & liveLevelMask;
    state_.triggered = (status & liveTriggered) != 0;
    state_.bufferFull = (status & liveBufferFull) != 0;
    if (capture_.IsRunning()) {
        state_.indicator = RunIndicator::Running;
    } else {
        state_.indicator =
            capture_.upload.IsUploading() ? RunIndicator::Uploading : RunIndicator::Idle;
        if (observer_.CaptureActive()) {
            observer_.OnCaptureStopped();
        }
    }
    observer_.OnPolled(state_);
}

} // namespace busquill
