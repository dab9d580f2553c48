#include "capture/trace_run.h"

#include "capture/trace_document.h"
#include "link/exchange.h"
#include "tracesetup/setup_encoding.h"
#include "tracesetup/setup_file.h"

namespace busquill {

std::array<SetupStep, 3> SetupSteps(const TraceSetup& setup, const BoardTraits& board) {
    const int events = EventCount(board);
    return {{
        {WritePayload(CmdTraceParams, [&setup] { return BuildTraceParams(setup); }),
         "Error sending trace parameter data to analyzer."},
        {WritePayload(CmdTraceEvents,
                      [&setup, events] { return BuildEventRows(setup.events, events); }),
         "Error sending trace event setup data to analyzer."},
        {WritePayload(CmdTraceControl, [&setup] { return BuildTraceControl(setup); }),
         "Error sending trace control setup data to analyzer."},
    }};
}

bool DownloadSetup(CAnalyzerLink& link, const TraceSetup& setup, Prompts& prompts) {
    bool taken = true;
    for (SetupStep& step : SetupSteps(setup, link.Traits())) {
        taken = ExchangeOrTell(link, std::move(step.request), prompts, step.failure) && taken;
        if (!taken && link.IsBoardGone()) {
            break;
        }
    }
    return taken;
}

void StartRun(CAnalyzerLink& link, CTesselDoc& document, const std::string& setupPath,
              Prompts& prompts) {
    if (setupPath.empty() || LoadSetupFile(document.setup, setupPath, prompts)) {
        if (!DownloadSetup(link, document.setup, prompts) && link.IsBoardGone()) {
            return;
        }
    }
    StartBoard(document);
}

void StartBoard(CTesselDoc& document) {
    document.GetStore().StartCapture();
    document.OnCaptureStarted();
}

void StopRun(CTesselDoc& document) {
    if (document.IsRealTime() && document.CaptureActive()) {
        document.GetStore().StopCapture();
        document.OnCaptureStopped();
    }
}

RunState FollowRun(CAnalyzerLink& link, CTesselDoc& document) {
    RunState state;
    const std::uint8_t status = link.GetLiveStatus(state.before, state.after);
    state.occurrences = link.GetEventOccurrences();
    state.level = status & liveLevelMask;
    state.triggered = (status & liveTriggered) != 0;
    state.bufferFull = (status & liveBufferFull) != 0;
    CSampleStore& store = document.GetStore();
    if (store.IsRunning()) {
        state.indicator = RunIndicator::Running;
    } else {
        state.indicator = store.IsUploading() ? RunIndicator::Uploading : RunIndicator::Idle;
        if (document.CaptureActive()) {
            document.OnCaptureStopped();
        }
    }
    document.FlushBlockUpdates();
    return state;
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

} // namespace busquill
