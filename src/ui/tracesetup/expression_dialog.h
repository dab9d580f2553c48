#pragma once

#include "tracesetup/expression_editor.h"

#include <QDialog>

#include <vector>

class QGridLayout;
class QLineEdit;
class QPushButton;

namespace busquill {

/// Edits an expression with buttons, one for each token.
class CTraceExpressionDialog final : public QDialog {
    Q_OBJECT
public:
    CTraceExpressionDialog(QWidget* parent, const Expression& expression);

    [[nodiscard]] const Expression& Result() const noexcept { return editor_.Bytes(); }

private:
    QPushButton* AddButton(const QString& text, void (ExpressionEditor::*change)() noexcept);
    void AddToken(QGridLayout& layout, int row, int column, const QString& text, std::uint8_t token,
                  bool isOperand);
    void Show();

    ExpressionEditor editor_;
    QLineEdit* text_;
    std::vector<QPushButton*> operands_;
    std::vector<QPushButton*> operators_;
    QPushButton* clear_ = nullptr;
    QPushButton* backspace_ = nullptr;
};

} // namespace busquill
