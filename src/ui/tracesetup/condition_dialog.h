#pragma once

#include <QDialog>

#include <cstdint>

class QCheckBox;
class QComboBox;

namespace busquill {

/// Where a level leads, and whether it triggers on the way.
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
