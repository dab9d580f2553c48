#pragma once

#include "tracesetup/trace_setup.h"

#include <QDialog>

#include <functional>
#include <string>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QPlainTextEdit;

namespace busquill {

class CLevelPanel;
class CPatternTable;
class Prompts;
class Settings;
class WorkingDirectory;

/// Edits the setup of a trace in place: its name, events, levels and clocks. Cancel restores the
/// old one.
class CTraceSetupDialog final : public QDialog {
    Q_OBJECT
public:
    /// What the dialog works with; all outlive it.
    struct Parts {
        Settings& settings;
        Prompts& prompts;
        const WorkingDirectory& directory;
        bool isLive; // a saved trace keeps the setup that it was captured with
        std::function<bool()> isRunning;
        std::function<void()> showHelp;
        std::function<void()> showWizardHelp;
    };

    /// `path` is the file that the setup came from, or empty.
    CTraceSetupDialog(QWidget* parent, TraceSetup& setup, std::string path, Parts parts);

    /// Whether events, levels or clocks have been changed.
    [[nodiscard]] bool IsModified() const noexcept { return modified_; }
    /// Whether the file at Path holds exactly this setup, including name and description.
    [[nodiscard]] bool IsInFile() const noexcept { return inFile_; }
    /// Whether a file has been written.
    [[nodiscard]] bool IsSaved() const noexcept { return saved_; }
    /// The file that the setup was last saved to or read from, initially the one given.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

    void accept() override;
    void reject() override;

private:
    QGroupBox* MakeSetupGroup();
    QGroupBox* MakeEventGroup();
    QGroupBox* MakeControlGroup();
    void ShowFields();
    void ShowProgram();
    void ShowIndexes();
    void ReadFields();
    void Modify();
    void CheckClock();
    [[nodiscard]] std::string LastFolder() const;
    void OnOpen();
    void OnSave();
    void OnDelete();
    void OnWizard();

    TraceSetup& setup_;
    TraceSetup kept_;
    std::string path_;
    const Parts parts_;
    bool modified_ = false;
    bool inFile_;
    bool saved_ = false;

    QLineEdit* name_;
    QPlainTextEdit* description_;
    CPatternTable* events_;
    CLevelPanel* levels_;
    QComboBox* clock_;
    QComboBox* triggerPosition_;
    QComboBox* powerZoomClock_;
    QCheckBox* traceStatus_;
};

} // namespace busquill
