#include "ui/testsuites/anomaly_view.h"

#include "platform/prompts.h"
#include "testsuites/anomaly_document.h"

namespace busquill {

namespace {

constexpr std::chrono::milliseconds startupDelay(100);

} // namespace

CAnomalyDetectionView::CAnomalyDetectionView(CAnomalyDetectionDoc& document, Parts parts)
    : CCheckSuiteView(document, std::move(parts),
                      {"Anomaly Checklist",
                       {.title = "Anomaly Detection",
                        .filter = "Anomaly Detection(*.adt)",
                        .extension = ".adt"}}),
      run_({With().link, With().prompts, std::make_unique<WindowTimer>(nullptr, With().mainThread)},
           document, *this),
      startup_(nullptr, With().mainThread) {}

void CAnomalyDetectionView::OnInitialUpdate() {
    startup_.Start(startupDelay, [this] {
        startup_.Stop();
        RefreshTree();
    });
}

void CAnomalyDetectionView::RefreshTree() {
    CCheckSuiteView::RefreshTree();
    run_.SendChecklist();
}

void CAnomalyDetectionView::OnTreeRead() {
    run_.SendChecklist();
}

void CAnomalyDetectionView::Options() {
    With().prompts.Message("No options are available.");
}

void CAnomalyDetectionView::OnRunning(bool running) {
    emit RunningChanged(running);
}

void CAnomalyDetectionView::OnResultsCleared() {
    ClearResults();
}

void CAnomalyDetectionView::OnFound(std::string_view check) {
    AddResult(check);
}

} // namespace busquill
