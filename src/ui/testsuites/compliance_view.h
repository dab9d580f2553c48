#pragma once

#include "testsuites/check_list.h"
#include "testsuites/compliance_run.h"
#include "ui/framework/form_view.h"
#include "ui/framework/printing.h"

#include <array>

class QLineEdit;
class QPrinter;

namespace busquill {

class CCheckTree;
class CComplianceDoc;
class CResultList;
class Settings;

/// The check list, the device and the results of a compliance test, which the view runs.
class CComplianceView final : public CFormView, private ComplianceObserver {
    Q_OBJECT
public:
    /// What the view works with; all but the timer outlive it.
    struct Parts {
        CComplianceDoc& document;
        CAnalyzerLink& link;
        Prompts& prompts;
        PrinterChoice& printer;
        const Settings& settings;
        CheckList list;
        std::unique_ptr<RepeatingTimer> timer;
        std::function<void()> showHelp;
    };

    explicit CComplianceView(Parts parts);

    void Go();
    void Stop();

    void OnInitialUpdate() override;
    void OnUpdate(DocumentView* sender, int hint, const HintObject* object) override;

    /// Prints the report in the pages that the printer is set to.
    [[nodiscard]] PrintFailure PrintTo(QPrinter& printer);

signals:
    void RunningChanged(bool running);
    /// The device and the results are those of a file.
    void Loaded();

protected:
    void LayOut() override;

private:
    enum Field { VendorId, DeviceId, Function, Address, VendorName, ClassName, FieldCount };

    void OnRunning(bool running) override;
    void OnResultsCleared() override;
    void OnTestStarted(const CTestResult& test) override;
    void OnTestEnded(const CTestResult& test) override;
    OperatorAnswer AskOperator(const std::string& instructions) override;

    void Find(ScanDirection direction);
    void SelectAll(bool selected);
    void Load();
    void Save();
    void Options();
    void ShowDocument();
    void ShowDevice();
    void ShowChecks();
    void ShowResults();

    CComplianceDoc& document_;
    Prompts& prompts_;
    PrinterChoice& printer_;
    const CheckList list_;
    CCheckTree* tree_;
    CResultList* results_;
    std::array<QLineEdit*, FieldCount> fields_{};
    BusAddress targetAddress_{};
    ComplianceRun run_;
};

} // namespace busquill
