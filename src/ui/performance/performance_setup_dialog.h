#pragma once

#include "link/board_identity.h"
#include "performance/performance_setup.h"

#include <QDialog>

#include <array>
#include <functional>
#include <string>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLayout;
class QLineEdit;
class QRadioButton;

namespace busquill {

class AddressField;
class CPenStyleButton;
class ColorButton;
class Prompts;
class WorkingDirectory;

/// Edits a performance setup. It works on a copy, which OK writes back.
class CPerformanceSetupDialog final : public QDialog {
    Q_OBJECT
public:
    /// What the dialog works with; all outlive it.
    struct Parts {
        BoardTraits board;
        const WorkingDirectory& folder; // of the setups
        Prompts& prompts;
        std::function<void()> showHelp;
    };

    CPerformanceSetupDialog(QWidget* parent, PerformanceSetup& setup, Parts parts);

    /// Replaces what the dialog shows by a setup from the folder. A failure is reported, and the
    /// fields then show the defaults. Returns whether there is such a setup.
    bool Load(const std::string& name);

    void accept() override;

private:
    struct Row {
        QComboBox* item;
        QComboBox* cycle;
        AddressField* low;
        AddressField* high;
        ColorButton* color;
        CPenStyleButton* style;
    };

    QGroupBox* MakeDisplayGroup();
    QLayout* MakeRows();
    QLayout* MakeButtons();
    Row MakeRow(std::size_t index);
    void ShowAddresses(const Row& row);
    void ShowControls();
    void ReadControls();
    void OnLoad();
    void OnSave();
    void OnClear();

    PerformanceSetup& setup_;
    PerformanceSetup edited_;
    const Parts parts_;
    bool nameTyped_ = false; // since the setup was loaded or saved

    QLineEdit* name_;
    QComboBox* interval_;
    QRadioButton* bar_;
    QRadioButton* pie_;
    QCheckBox* grid_;
    std::array<Row, performanceItems> rows_{};
};

} // namespace busquill
