#include "testsuites/anomaly_run.h"

#include "link/exchange.h"
#include "platform/demo_random.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/anomaly_table.h"

#include <array>
#include <random>

namespace busquill {

namespace {

constexpr const char* checklistFailed = "Error sending anomaly checklist to analyzer.";
constexpr const char* startFailed = "Error sending start anomaly detection command to analyzer.";
constexpr const char* stopFailed = "Error sending stop anomaly detection command to analyzer.";

/// The number of a check that has found something, or 0. The board keeps further ones.
constexpr StatusRegister anomalyResult = {RegisterAnomalyResults, 0, std::chrono::seconds(1),
                                          "Error reading anomaly results data from analyzer."};

RunStep ChecklistStep(const CAnomalyDetectionDoc& document) {
    return {WritePayload(CmdAnomalyChecklist,
                         [payload = BuildAnomalyChecklist(document.Table(), document.Enabled())] {
                             return std::vector<std::uint8_t>(payload.begin(), payload.end());
                         }),
            checklistFailed};
}

int RandomNumber() {
    static std::minstd_rand engine{std::random_device{}()};
    return std::uniform_int_distribution<int>(0, largestDemoRandom)(engine);
}

} // namespace

AnomalyRun::AnomalyRun(Parts parts, CAnomalyDetectionDoc& document, AnomalyObserver& observer,
                       Random random)
    : BoardRun(std::move(parts)), document_(document), observer_(observer),
      random_(random ? std::move(random) : RandomNumber) {}

void AnomalyRun::SendChecklist() {
    RunStep step = ChecklistStep(document_);
    ExchangeOrReport(Link(), std::move(step.request), Boxes(), step.failure);
}

void AnomalyRun::Start() {
    Stop();
    document_.ClearResults();
    observer_.OnResultsCleared();
    std::vector<RunStep> steps;
    steps.push_back(ChecklistStep(document_));
    steps.push_back({RunCommand(CmdStartAnomaly), startFailed});
    SendSteps(Link(), std::move(steps), Boxes());
    PollEvery(anomalyResult.period);
    on_ = true;
    observer_.OnRunning(true);
}

void AnomalyRun::Poll() {
    if (!on_) {
        return;
    }
    std::array<std::uint8_t, 1> result{};
    if (!ReadStatus(Link(), anomalyResult, result, Boxes())) {
        StopPollingIfGone();
        return;
    }
    const int check = Link().IsDemoMode() ? DemoAnomaly(random_()) : result[0];
    if (check == 0) {
        return;
    }
    document_.AddResult(check);
    if (const auto text = AnomalyText(document_.Table(), check); !text.empty()) {
        observer_.OnFound(text);
    }
}

void AnomalyRun::Stop() {
    if (!on_) {
        return;
    }
    on_ = false;
    StopPolling();
    ExchangeOrReport(Link(), RunCommand(CmdStopAnomaly), Boxes(), stopFailed);
    observer_.OnRunning(false);
}

} // namespace busquill
