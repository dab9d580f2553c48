#pragma once

#include "testsuites/anomaly_run.h"
#include "ui/framework/window_timer.h"
#include "ui/testsuites/check_suite_view.h"

namespace busquill {

class CAnomalyDetectionDoc;

/// The check list of the violations that the board looks for, and those that it has found.
class CAnomalyDetectionView final : public CCheckSuiteView, private AnomalyObserver {
    Q_OBJECT
public:
    CAnomalyDetectionView(CAnomalyDetectionDoc& document, Parts parts);

    void Start() override { run_.Start(); }
    void Stop() override { run_.Stop(); }

    void OnInitialUpdate() override;

private:
    void OnRunning(bool running) override;
    void OnResultsCleared() override;
    void OnFound(std::string_view check) override;

    void Options() override;
    void RefreshTree() override;
    void OnTreeRead() override;

    AnomalyRun run_;
    WindowTimer startup_; // the board gets the check list when the window is open
};

} // namespace busquill
