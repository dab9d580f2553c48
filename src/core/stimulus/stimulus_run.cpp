#include "stimulus/stimulus_run.h"

#include "link/exchange.h"
#include "stimulus/stimulus_program.h"

#include <array>

namespace busquill {

namespace {

constexpr const char* conditionFailed = "Error sending stimulus condition data to analyzer.";
constexpr const char* controlFailed = "Error sending stimulus control setup data to analyzer.";
constexpr const char* startFailed = "Error sending start stimulus command to analyzer.";
constexpr const char* stopFailed = "Error sending stop stimulus command to analyzer.";

constexpr StatusRegister stimulusStatus = {RegisterStimulusStatus, 0,
                                           std::chrono::milliseconds(400),
                                           "Error reading stimulus status from analyzer."};

std::vector<RunStep> StartSteps(const StimulusProgram& program) {
    std::vector<RunStep> steps;
    const auto write = [&](RegisterCommand command, auto build, const char* failure) {
        steps.push_back(
            {WritePayload(command, [&program, build] { return build(program); }), failure});
    };
    write(CmdStimulusEvents, BuildStimulusEvents, conditionFailed);
    write(CmdStimulusCondition, BuildStimulusPatterns, conditionFailed);
    write(CmdStimulusControl, BuildStimulusControl, controlFailed);
    steps.push_back({RunCommand(CmdStartStimulus), startFailed, IfRefused::End});
    return steps;
}

} // namespace

StimulusRun::StimulusRun(Parts parts, std::function<void(bool running)> onRunning)
    : BoardRun(std::move(parts)), onRunning_(std::move(onRunning)) {}

void StimulusRun::Go(const StimulusProgram& program) {
    if (SendSteps(Link(), StartSteps(program), Boxes()) != Sent::Ended) {
        onRunning_(true);
        PollEvery(stimulusStatus.period);
    }
}

void StimulusRun::Poll() {
    std::array<std::uint8_t, 1> status{};
    if (!ReadStatus(Link(), stimulusStatus, status, Boxes())) {
        Stop();
    } else if ((status[0] & statusRunning) == 0) {
        StopPolling();
        onRunning_(false);
    }
}

void StimulusRun::Stop() {
    StopPolling();
    ExchangeOrReport(Link(), RunCommand(CmdStopStimulus), Boxes(), stopFailed);
    onRunning_(false);
}

} // namespace busquill
