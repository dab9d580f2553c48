#pragma once

#include "tracesetup/setup_wizard.h"

#include <QDialog>

#include <functional>

class QButtonGroup;
class QGroupBox;
class QLineEdit;

namespace busquill {

/// Asks what to trigger on and what to store, and replaces the setup's program by one that does so.
class CSetupWizardDialog final : public QDialog {
    Q_OBJECT
public:
    /// The setup outlives the dialog; it is not changed until all answers have been read without
    /// error.
    CSetupWizardDialog(QWidget* parent, TraceSetup& setup, Prompts& prompts,
                       const std::function<void()>& showHelp);

    void accept() override;

private:
    struct Fields {
        QButtonGroup* cycle = nullptr;
        QButtonGroup* direction = nullptr;
        QLineEdit* address = nullptr;
        QLineEdit* data = nullptr;
    };

    QGroupBox* AddQuestion(const QString& question, Fields& fields);
    /// False when one of the texts cannot be read; the user has then been told.
    [[nodiscard]] bool Read(const Fields& fields, WizardAnswer& answer);
    [[nodiscard]] bool ReadValue(QLineEdit& edit, WizardValue& value);

    TraceSetup& setup_;
    Prompts& prompts_;
    const bool isVme_;
    Fields trigger_;
    Fields store_;
};

} // namespace busquill
