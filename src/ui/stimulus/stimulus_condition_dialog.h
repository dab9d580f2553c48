#pragma once

#include <QDialog>

#include <cstdint>

class QComboBox;
class QLineEdit;

namespace busquill {

class Prompts;

/// Where THEN or ELSE of a stimulus program leads, and how long that takes.
struct StimulusBranch {
    std::int32_t level = 0; // from 0; 15 stops
    std::int32_t duration = 1;
    std::int32_t wait = 1;
};

class CStimulusConditionDialog final : public QDialog {
    Q_OBJECT
public:
    CStimulusConditionDialog(QWidget* parent, const StimulusBranch& branch, Prompts& prompts);

    [[nodiscard]] const StimulusBranch& Result() const noexcept { return branch_; }

    /// Refuses numbers out of range, with a message.
    void accept() override;

private:
    [[nodiscard]] bool Read(QLineEdit& edit, const char* refusal, std::int32_t& number);

    Prompts& prompts_;
    StimulusBranch branch_;
    QComboBox* level_;
    QLineEdit* duration_;
    QLineEdit* wait_;
};

} // namespace busquill
