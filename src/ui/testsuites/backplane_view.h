#pragma once

#include "testsuites/backplane_run.h"
#include "ui/testsuites/check_suite_view.h"

namespace busquill {

class CBackplaneTestDoc;

/// The signals of a backplane that are tested, and what was found.
class CBackplaneTestView final : public CCheckSuiteView, private BackplaneObserver {
    Q_OBJECT
public:
    CBackplaneTestView(CBackplaneTestDoc& document, Parts parts);

    void Start() override { run_.Start(); }
    void Stop() override { run_.Stop(); }

    void OnInitialUpdate() override { ShowResults(); }
    void OnUpdate(DocumentView* sender, int hint, const HintObject* object) override;

private:
    void OnRunning(bool running) override;
    void OnResultsCleared() override;
    void OnSignal(const std::string& line) override;
    void OnResult(const std::string& line) override;

    void Options() override;
    void OnFileRead() override { ShowResults(); }
    void ShowResults();

    CBackplaneTestDoc& document_;
    BackplaneRun run_;
};

} // namespace busquill
