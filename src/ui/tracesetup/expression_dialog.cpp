#include "ui/tracesetup/expression_dialog.h"

#include "ui/framework/help_page.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr int textCharacters = 32; // sixteen tokens, events throughout

} // namespace

CTraceExpressionDialog::CTraceExpressionDialog(QWidget* parent, const Expression& expression)
    : QDialog(parent), editor_(expression), text_(new QLineEdit) {
    setWindowTitle("Trace Expression");
    SetHelpPage(*this, "trace-setup.md#expressions");
    text_->setReadOnly(true);
    text_->setObjectName("Expression");
    text_->setMinimumWidth(text_->fontMetrics().averageCharWidth() * textCharacters);

    auto* tokens = new QGridLayout;
    for (int event = 0; event < TokenLastEvent; ++event) {
        AddToken(*tokens, event / 4, event % 4, QString("E&%1").arg(event + 1),
                 static_cast<std::uint8_t>(event + TokenFirstEvent), true);
    }
    AddToken(*tokens, 2, 0, ". (AND)", TokenAnd, false);
    AddToken(*tokens, 2, 1, "+ (OR)", TokenOr, false);
    AddToken(*tokens, 2, 2, "~ (NOT)", TokenNot, true);
    AddToken(*tokens, 2, 3, "x (XOR)", TokenXor, false);
    AddToken(*tokens, 3, 0, "(", TokenOpen, true);
    AddToken(*tokens, 3, 1, ")", TokenClose, false);

    auto* whole = new QHBoxLayout;
    whole->addWidget(AddButton("&ALL", &ExpressionEditor::SetAll));
    whole->addWidget(AddButton("&NONE", &ExpressionEditor::Clear));
    whole->addWidget(clear_ = AddButton("&Clear", &ExpressionEditor::Clear));
    whole->addWidget(backspace_ = AddButton("&Backspace", &ExpressionEditor::Backspace));

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text_);
    layout->addLayout(tokens);
    layout->addLayout(whole);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Show();
}

QPushButton* CTraceExpressionDialog::AddButton(const QString& text,
                                               void (ExpressionEditor::*change)() noexcept) {
    auto* button = new QPushButton(text);
    button->setAutoDefault(false); // Enter means OK
    connect(button, &QPushButton::clicked, this, [this, change] {
        (editor_.*change)();
        Show();
    });
    return button;
}

void CTraceExpressionDialog::AddToken(QGridLayout& layout, int row, int column, const QString& text,
                                      std::uint8_t token, bool isOperand) {
    auto* button = new QPushButton(text);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, token] {
        editor_.Add(token);
        Show();
    });
    layout.addWidget(button, row, column);
    (isOperand ? operands_ : operators_).push_back(button);
}

void CTraceExpressionDialog::Show() {
    text_->setText(QString::fromStdString(FormatExpression(editor_.Bytes())));
    for (QPushButton* button : operands_) {
        button->setEnabled(editor_.TakesOperand());
    }
    for (QPushButton* button : operators_) {
        button->setEnabled(editor_.TakesOperator());
    }
    clear_->setEnabled(editor_.CanErase());
    backspace_->setEnabled(editor_.CanErase());
}

} // namespace busquill
