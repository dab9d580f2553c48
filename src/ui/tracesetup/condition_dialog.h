#pragma once

#include <QDialog>

#include <cstdint>

class QCheckBox;
class QComboBox;

namespace busquill {

/// Asks to which level THEN or ELSE leads, and whether it triggers.
class CTraceConditionDialog final : public QDialog {
    Q_OBJECT
public:
    /// `level` counts from 0.
    CTraceConditionDialog(QWidget* parent, std::int32_t level, bool trigger);

    [[nodiscard]] std::int32_t Level() const;
    [[nodiscard]] bool Trigger() const;

private:
    QComboBox* level_;
    QCheckBox* trigger_;
};

} // namespace busquill
