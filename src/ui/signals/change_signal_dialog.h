#pragma once

#include "signals/signal_tables.h"

#include <QDialog>

#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;

namespace busquill {

class ColorButton;
class CSignal;
class Prompts;

/// Asks which signal a row is to show, and how. With a signal, OK sets its colour, radix and value
/// display at once; with null, the choice is for a new row.
class CChangeSignalDialog final : public QDialog {
    Q_OBJECT
public:
    /// Offers the definitions whose flags for `mode` allow it. A new colour of the signal is also
    /// set in the tables.
    CChangeSignalDialog(QWidget* parent, SignalTables& tables, CSignal* signal, std::uint32_t mode,
                        Prompts& prompts);
    ~CChangeSignalDialog() override;

    void accept() override;

    /// After OK: the definition that the row is to show, or null to keep the present one.
    std::shared_ptr<const CSignalDef> chosenDef;
    std::int32_t radix = 1;
    bool showValue = false;
    std::int32_t firstBit = 0;
    std::int32_t lastBit = 0;
    std::uint32_t color = 0;

private:
    class RangeField;

    [[nodiscard]] const CSignalDef* Selected() const;
    [[nodiscard]] bool IsPreselected(const CSignalDef& def) const;
    void FillNames();
    void NameSelected();
    [[nodiscard]] bool ChooseBus(const CBusSignalDef& def, const std::string& currentName);

    SignalTables& tables_;
    CSignal* signal_;
    std::uint32_t mode_;
    Prompts& prompts_;
    std::vector<std::shared_ptr<const CSignalDef>> offered_; // parallel to the names
    QComboBox* type_;
    QComboBox* name_;
    RangeField* high_;
    RangeField* low_;
    QComboBox* radix_;
    QCheckBox* showValue_;
    ColorButton* color_;
    bool chosen_ = false; // by the user, rather than preselected
};

} // namespace busquill
