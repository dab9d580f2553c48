#pragma once

#include "testsuites/compliance_run.h"

#include <QDialog>

namespace busquill {

/// Shows the instructions of a test. Closing the dialog stops the run.
class CInstructionsDialog final : public QDialog {
    Q_OBJECT
public:
    CInstructionsDialog(QWidget* parent, const std::string& instructions);

    /// What the operator has pressed.
    [[nodiscard]] OperatorAnswer Result() const noexcept { return answer_; }

private:
    OperatorAnswer answer_ = OperatorAnswer::Stop;
};

} // namespace busquill
