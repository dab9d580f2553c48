#pragma once

#include "testsuites/config_scan.h"
#include "ui/framework/form_view.h"

class QLineEdit;

namespace busquill {

class CConfigAnalysisView;
class CConfigDoc;
class RegisterPicture;
class Settings;

/// Finds the devices of the bus and shows the header of one, as a picture and in words.
class CConfigView final : public CFormView {
    Q_OBJECT
public:
    /// What the view works with; all outlive it.
    struct Parts {
        CConfigDoc& document;
        CAnalyzerLink& link;
        Prompts& prompts;
        const Settings& settings;
        std::function<void()> showHelp;
    };

    explicit CConfigView(Parts parts);

    void OnUpdate(DocumentView* sender, int hint, const HintObject* object) override;

protected:
    void LayOut() override;

private:
    /// A button of the row above the lowest one.
    void AddUpperButton(const QString& text, int slot, std::function<void()> act);
    void Scan(ScanDirection direction);
    void Save();
    void Load();

    CConfigDoc& document_;
    CAnalyzerLink& link_;
    Prompts& prompts_;
    RegisterPicture* picture_;
    CConfigAnalysisView* analysis_;
    QLineEdit* address_;
    std::vector<QPushButton*> upperButtons_; // by their slots
};

} // namespace busquill
