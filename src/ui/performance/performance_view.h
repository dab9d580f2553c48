#pragma once

#include "performance/performance_run.h"
#include "performance/result_statistics.h"
#include "ui/framework/form_view.h"

#include <array>
#include <atomic>
#include <memory>

class QLabel;

namespace busquill {

class CMinMaxAverageGraph;
class CPerformanceDoc;
class CTimeGraph;
class MainThread;
class Settings;
class SignalTables;

/// Shows a measurement and runs it: a row for each item with its value, and both graphs.
class CPerformanceView final : public CFormView, private PerformanceObserver {
    Q_OBJECT
public:
    /// What the view works with; all but the timer outlive it.
    struct Parts {
        CPerformanceDoc& document;
        CAnalyzerLink& link;
        Prompts& prompts;
        const Settings& settings;
        const MainThread& mainThread;
        std::unique_ptr<PeriodicTimer> timer;
        std::function<void()> showHelp;
    };

    CPerformanceView(Parts parts, ValueDisplay display);
    /// Ends a run.
    ~CPerformanceView() override;

    void Go();
    void Stop();
    [[nodiscard]] bool IsRunning() const noexcept { return run_.IsOn(); }
    /// Chooses the number that all rows show.
    void SetValueDisplay(ValueDisplay display);

    void OnUpdate(DocumentView* sender, int hint, const HintObject* object) override;

signals:
    void RunningChanged(bool running);
    void TypeShown(std::int32_t type);
    void ResultCountChanged(qint64 count);

protected:
    void LayOut() override;
    void paintEvent(QPaintEvent* event) override;

private:
    void OnResultsCleared() override;
    void OnRunning(bool running) override;
    void OnReading(const PerformanceResults& results) override;

    void Load();
    void Save();
    void ShowRowTexts();
    void SetUpGraphs();
    void ShowValues();

    CPerformanceDoc& document_;
    CAnalyzerLink& link_;
    Prompts& prompts_;
    ValueDisplay display_;
    std::array<QLabel*, performanceItems> labels_{};
    std::array<QLabel*, performanceItems> values_{};
    CTimeGraph* timeGraph_;
    CMinMaxAverageGraph* rangeGraph_;
    RowStatistics statistics_;
    std::atomic<bool> valuesOutdated_ = false;
    PerformanceRun run_; // last: its timer's thread uses the others
};

} // namespace busquill
