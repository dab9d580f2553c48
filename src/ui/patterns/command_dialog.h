#pragma once

#include <QDialog>

#include <optional>
#include <vector>

class QCheckBox;
class QComboBox;

namespace busquill {

class CDecodedSignalDef;

/// Asks for the command of a pattern. On PCI a check box chooses its form with a dual address
/// cycle.
class CCommandDialog final : public QDialog {
    Q_OBJECT
public:
    /// `shown` is the index of the value that the cell shows now, if any. The definition outlives
    /// the dialog.
    CCommandDialog(QWidget* parent, const CDecodedSignalDef& def, std::optional<std::size_t> shown,
                   bool hasDualAddress);

    /// Index of the chosen value in the definition; nothing if no value is chosen.
    [[nodiscard]] std::optional<std::size_t> Chosen() const;

private:
    /// The chosen value without a dual address cycle, and with one.
    [[nodiscard]] std::optional<std::size_t> Plain() const;
    [[nodiscard]] std::optional<std::size_t> Dual() const;

    const CDecodedSignalDef& def_;
    std::vector<std::size_t> offered_;
    QComboBox* values_;
    QCheckBox* dac_;
};

} // namespace busquill
